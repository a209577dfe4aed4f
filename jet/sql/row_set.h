// The rows of a query: fixed when it opens, collected only when needed.
//
// Invariants
//  1. Membership is that of the moment of opening, whatever changes afterwards; own additions join at the end.
//  2. Values are those the row has when they are read.
//  3. Rows deleted meanwhile are skipped by moving on; moving on from a row never throws for what others did.
//
// Rows in scan order are delivered as the table or a map gives them, without a list: the membership of rows
// that change meanwhile is written down before they change. Sets with an order, or over a range of dates, are
// collected when they are first used or before the first change.
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
    // Whether `row` is a member as far as the set has been collected or delivered; a member deleted
    // meanwhile still is one.
    bool delivered(RowId row) const;
    // Makes `row`, delivered before, the one that next() continues after.
    void move_to(RowId row);

    void row_inserted(RowId row) override;
    void row_changing(RowId row) override;

private:
    enum class Source : std::uint8_t {
        kScan,     // the table, row by row
        kKey,      // the rows of one key of a column's map, row by row
        kCollect,  // a list made beforehand
    };

    std::optional<RowId> advance();
    std::optional<RowId> next_member();
    std::optional<RowId> next_candidate() const;
    bool is_member(RowId row) const;
    bool meets_condition(RowId row) const;
    bool is_beyond_end(RowId row) const { return end_ && *end_ <= row; }
    void collect();
    void put_in_order();
    std::optional<std::size_t> find_collected(RowId row) const;

    Query query_;
    std::optional<MapSpan> span_;
    Source source_ = Source::kScan;
    bool started_ = false;
    RowId position_;            // uncollected: where next() continues
    RowId furthest_;            // uncollected: rows up to here have been looked at
    std::optional<RowId> end_;  // uncollected: members stand before this row
    bool collected_ = false;
    std::vector<RowId> rows_;                  // collected members
    std::size_t index_ = 0;                    // into rows_, of the next one
    mutable std::vector<std::size_t> by_row_;  // indexes into rows_ by row, made for sets with an order
    RowId last_row_;                           // the highest in rows_
    std::vector<RowId> added_;
    RowId last_added_;  // the highest in added_
    std::size_t added_index_ = 0;
    bool in_added_ = false;
    // Uncollected: whether rows changed or added since the opening are members. Collected: false for rows
    // added in the place of members deleted before.
    std::unordered_map<std::uint32_t, bool> verdicts_;
    mutable RowView row_;  // buffer
};

}  // namespace jet::sql
