// The rows that a record set was opened with, without its own additions: looked for as they are asked for, or
// collected.
#pragma once

#include <memory>
#include <optional>

#include "jet/base/types.h"
#include "jet/storage/row_view.h"

namespace jet::sql {

class SetRows {
public:
    virtual ~SetRows() = default;

    virtual void restart() = 0;
    // The next row that still exists.
    virtual std::optional<RowId> next() = 0;
    // Whether `row` is a member as far as the set has been collected or delivered; a member deleted meanwhile still is
    // one.
    virtual bool delivered(RowId row) const = 0;
    // The row delivered last, where it has been read for its membership and has not changed since; false when not.
    virtual bool give_view(RowId, RowView&) { return false; }
    // next() goes on behind `row`, delivered before.
    virtual void move_to(RowId row) = 0;

    // A row has come to stand at `row`.
    virtual void row_inserted(RowId row) = 0;
    // The row is about to change, or to go.
    virtual void row_changing(RowId row) = 0;

    // What takes this one's place from now on, at the same position; null: nothing.
    virtual std::unique_ptr<SetRows> successor_for_use() { return nullptr; }
    virtual std::unique_ptr<SetRows> successor_before_change(RowId) { return nullptr; }
};

}  // namespace jet::sql
