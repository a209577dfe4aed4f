// A whole file as the engine reads it, and its comparison with the two other readers.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "jet/tables/database.h"
#include "tests/interop/readers.h"

namespace interop {

struct OurRow {
    jet::RowId id;
    std::vector<jet::Value> values;
    bool moved = false;  // stored on another page than its address says
};

struct OurTable {
    jet::TableDef def;
    bool system = false;
    std::vector<OurRow> rows;
};

// Every table of the catalogue, system tables included, with its rows in scan order.
std::vector<OurTable> read_with_engine(jet::Database& database);

struct Comparison {
    std::size_t tables = 0;
    std::size_t rows = 0;
    std::size_t values = 0;
    std::map<std::string, std::size_t> faults;  // how often each known fault explained a difference
};

// Fails the running test for every difference that no known fault explains, and for every value that neither reader
// prints like ours. The file must be closed.
Comparison compare_with_other_readers(const std::string& path, const std::vector<OurTable>& tables);
// Opens the file read-only, with any password, and compares.
Comparison compare_with_other_readers(const std::string& path);

// For files that our engine created: the other readers' view of the definitions equals ours. Checks the row counts of
// all tables, and of the user tables the columns with their order, types, sizes, auto-number and whether a text may be
// empty.
void compare_definitions(const std::string& path, const std::vector<OurTable>& tables);

}  // namespace interop
