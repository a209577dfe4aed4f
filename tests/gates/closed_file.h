// A database file of the component, looked at and changed with the engine alone while no gate has it open.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "jet/tables/database.h"

namespace testing_support {

struct ClosedColumn {
    jet::ColumnType type = jet::ColumnType::kLong;
    jet::Value value;
};
// Column by name.
using ClosedRow = std::map<std::string, ClosedColumn>;

// The rows of a table by the value of their key column.
std::map<std::int32_t, ClosedRow> rows_of(const std::string& path, const std::string& table, const std::string& key);

void delete_column(const std::string& path, const std::string& table, const std::string& column);

}  // namespace testing_support
