// The records of a studio's table, read from the file that holds it: exact values, one row at a time, nothing opened
// for writing. What columns a record has, and how its enumeration filters, is known from the gates' declarations.
#pragma once

#include <memory>
#include <string>

#include "tools/gate_table.h"
#include "tools/open_file.h"
#include "tools/row_selection.h"

namespace tools {

class RecordReader {
public:
    // The studio must be whole and of the current version: CommandError. UsageError where options do not go with the
    // table.
    RecordReader(const GateTable& table, const std::string& folder, const SelectionOptions& options = {});

    const Names& names() const { return names_; }
    // Rows of the statement, which is one of the table's own.
    void for_each(const std::string& statement, const RowVisitor& visit) const;
    // The record with the key, or the one with that number on paper; CommandError when there is none.
    Row find(const std::string& key) const;

private:
    const GateTable& table_;
    OpenedFile file_;
    std::unique_ptr<RowSelection> selection_;  // null: the file has no such table, which then has no rows
    Names names_;
};

}  // namespace tools
