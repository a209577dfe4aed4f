// The rows of a query: fixed when it opens, collected only when needed.
//
// Invariants
//  1. Membership is that of the moment of opening, whatever changes afterwards; own additions join at the end.
//  2. Values are those the row has when they are read.
//  3. Rows deleted meanwhile are skipped by moving on; moving on from a row never throws for what others did.
#pragma once

#include <memory>
#include <optional>

#include "jet/sql/additions.h"
#include "jet/sql/query.h"
#include "jet/sql/set_rows.h"

namespace jet::sql {

class RowSet final : public TableWatcher {
public:
    explicit RowSet(Query query);
    ~RowSet() override;
    RowSet(const RowSet&) = delete;
    RowSet& operator=(const RowSet&) = delete;

    const Query& query() const { return query_; }
    Additions& additions() { return additions_; }

    // The first row of the set that still exists; none when there is none. Restarts from the beginning.
    std::optional<RowId> first();
    // As above, own additions left out.
    std::optional<RowId> first_original();
    // The next one after the row delivered last.
    std::optional<RowId> next();
    // The content of `row`, delivered last, where the set has read it already; false when it must be read.
    bool give_view(RowId row, RowView& into) { return !is_among_additions_ && rows_->give_view(row, into); }
    // Whether the row delivered last, or moved to, is an own addition.
    bool is_among_additions() const { return is_among_additions_; }
    // Whether `row` is a member as far as the set has been collected or delivered; a member deleted
    // meanwhile still is one.
    bool delivered(RowId row) const;
    // Makes `row`, delivered before, the one that next() continues after.
    void move_to(RowId row);

    void row_inserted(RowId row) override;
    void row_changing(RowId row) override;

private:
    std::optional<RowId> next_original();

    Query query_;
    std::unique_ptr<SetRows> rows_;
    Additions additions_;
    bool started_ = false;
    bool is_among_additions_ = false;
};

}  // namespace jet::sql
