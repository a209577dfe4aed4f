// A table as the catalogue uses the ones that it stands in: rows found, read and changed by value.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "jet/schema/table_def.h"
#include "jet/storage/row_view.h"

namespace jet {

struct ColumnChange {
    std::size_t position = 0;  // in the definition's columns
    Value value;
};

class TableRows {
public:
    virtual ~TableRows() = default;
    virtual const TableDef& def() const = 0;
    // Rows in scan order (page, slot): the first live row after `after` (a null RowId: the first row).
    // A page of the table's map that is not the table's is damage (3049), unless damage is passed over (salvage.h).
    virtual std::optional<RowId> next_row(RowId after) const = 0;
    // Fills `into`; false when there is no such live row.
    virtual bool read(RowId row, RowView& into) const = 0;
    // Why rows can only be read, in a sentence; none when they can be written.
    virtual std::optional<std::string> why_not_writable() const = 0;
    // Adds a row; `values` by position in the definition's columns, absent positions Null. A Null
    // auto-number takes the next number. Checks sizes, required, zero length and unique indexes before
    // anything is written. One transaction of its own (or part of the caller's).
    virtual RowId insert(std::vector<Value> values) = 0;
    // Changes the named columns of a row; 3167 when it is gone.
    virtual void update(RowId row, std::span<const ColumnChange> changes) = 0;
};

}  // namespace jet
