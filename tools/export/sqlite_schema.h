// A studio in SQLite: its tables, keys, indexes and views as statements, and values as SQLite keeps them.
//
// A column of money is declared without a type: with one, SQLite would round what a double cannot hold. Amounts of up
// to 15 digits are numbers there, longer ones texts with all their digits. Dates are ISO 8601 texts. The table
// kvdb_columns tells the types that the columns had.
#pragma once

#include <span>
#include <string>
#include <variant>
#include <vector>

#include "tools/export/export_table.h"

namespace tools {

std::string sqlite_create_table(const ExportTable& table);
// Indexes on the columns that lead to other tables.
std::vector<std::string> sqlite_indexes(const ExportTable& table);
// Views of a studio's tables under names that a person knows, with the names of what a record belongs to.
std::vector<std::string> sqlite_views(std::span<const ExportTable> tables);
// kvdb_columns, with its rows.
std::vector<std::string> sqlite_column_list(std::span<const ExportTable> tables);

using SqliteValue = std::variant<std::monostate, std::int64_t, double, std::string, std::vector<std::uint8_t>>;
SqliteValue sqlite_value(const jet::Value& value);

}  // namespace tools
