// diff: what two files hold otherwise, row by row. Rows of tables with automatic numbers are paired by them, others by
// all that they hold.
//
// Memory grows with the rows of the largest table, 24 bytes for each of either file; values are read when a row is
// told.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/open_file.h"

namespace tools {

struct ChangedValue {
    std::string column;
    jet::Value before;
    jet::Value after;
};

struct RowDifference {
    enum class Kind { kAdded, kRemoved, kChanged };
    Kind kind = Kind::kAdded;
    std::string table;
    std::optional<std::int32_t> key;
    // Of an added or removed row all values (in `after` or `before`) that are not Null, of a changed one those that
    // differ.
    std::vector<ChangedValue> values;
};

struct DiffVisitor {
    std::function<void(const RowDifference& row)> row;
    // Tables or columns that only one of both has, as one sentence.
    std::function<void(const std::string& table, const std::string& what)> schema;
};

// Whether they hold the same. What cannot be read of either is told (tools/damage.h) and not compared.
bool diff_databases(const OpenedFile& a, const OpenedFile& b, const DiffVisitor& visitor);

}  // namespace tools
