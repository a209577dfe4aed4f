// A record set's rows as a list: in the order of the file, or in one that the statement asks for.
#pragma once

#include <unordered_set>
#include <vector>

#include "jet/sql/query.h"
#include "jet/sql/set_rows.h"

namespace jet::sql {

class CollectedRows final : public SetRows {
public:
    // `rows` in any order, no matter how often. next() begins behind `position`; a set with an order begins anew.
    // `query` is kept.
    CollectedRows(const Query& query, std::vector<RowId> rows, RowId position);

    void restart() override { index_ = 0; }
    std::optional<RowId> next() override;
    bool delivered(RowId row) const override { return find(row) && !replaced_.contains(row.pack()); }
    void move_to(RowId row) override;
    void row_inserted(RowId row) override;
    void row_changing(RowId) override {}

private:
    void put_in_order();
    std::optional<std::size_t> find(RowId row) const;

    const Query& query_;
    std::vector<RowId> rows_;
    std::size_t index_ = 0;                       // into rows_, of the next one
    mutable std::vector<std::size_t> by_row_;     // indexes into rows_ by row, made for sets with an order
    RowId last_;                                  // the highest in rows_
    std::unordered_set<std::uint32_t> replaced_;  // places of deleted members that others were given
};

}  // namespace jet::sql
