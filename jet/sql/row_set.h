// The rows of a query: fixed when it opens, collected only when needed.
//
// Invariants
//  1. Membership is that of the moment of opening, whatever changes afterwards; own additions join at the end.
//  2. Values are those the row has when they are read.
//  3. Rows deleted meanwhile are skipped by moving on; moving on from a row never throws for what others did.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "jet/sql/query.h"

namespace jet::sql {

class RowSet final : public TableWatcher {
public:
    explicit RowSet(Query query);
    ~RowSet() override;
    RowSet(const RowSet&) = delete;
    RowSet& operator=(const RowSet&) = delete;

    const Query& query() const { return query_; }

    // The first row of the set that still exists; none when there is none. Restarts from the beginning.
    std::optional<RowId> first();
    // The next one after the row delivered last.
    std::optional<RowId> next();
    // Appends an own addition at the end.
    void append(RowId row);
    // Whether `row` is a member as far as the set has been collected or delivered.
    bool delivered(RowId row) const;
    // Makes `row`, delivered before, the one that next() continues after.
    void move_to(RowId row);

    void row_inserted(RowId row) override;
    void row_changing(RowId row) override;

private:
    std::optional<RowId> advance();
    void collect();

    Query query_;
    bool collected_ = false;
    bool started_ = false;
    RowId position_;                                    // lazily delivered up to here
    std::optional<ColumnMap::Entry> map_position_;
    std::size_t index_ = 0;                             // into rows_ when collected
    std::vector<RowId> rows_;                           // collected members
    std::vector<RowId> added_;
    std::size_t added_index_ = 0;
    bool in_added_ = false;
    std::unordered_map<std::uint32_t, bool> verdicts_;  // rows changed before they were looked at
};

}  // namespace jet::sql
