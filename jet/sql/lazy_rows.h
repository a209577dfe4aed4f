// A record set's rows as the table or a map of one of its columns gives them, without a list. The membership of rows
// that change meanwhile is written down before they change.
#pragma once

#include <unordered_map>

#include "jet/sql/query.h"
#include "jet/sql/set_rows.h"

namespace jet::sql {

class LazyRows final : public SetRows {
public:
    // `query` is kept.
    explicit LazyRows(const Query& query);

    void restart() override { position_ = {}; }
    std::optional<RowId> next() override;
    bool delivered(RowId row) const override { return row <= furthest_ && is_member(row); }
    bool give_view(RowId row, RowView& into) override;
    void move_to(RowId row) override { position_ = row; }
    void row_inserted(RowId row) override;
    void row_changing(RowId row) override;

    // Sets with an order, or over a range of a map, are collected when they are first used, and before the first
    // change; those of one key when they are passed through again after a member has changed, since the map may have
    // lost sight of it.
    std::unique_ptr<SetRows> successor_for_use() override;
    // The map would lose sight of a member still to come.
    std::unique_ptr<SetRows> successor_before_change(RowId row) override;

private:
    enum class Source : std::uint8_t {
        kScan,     // the table, row by row
        kKey,      // the rows of one key of a column's map, row by row
        kCollect,  // a list made beforehand
    };

    std::optional<RowId> next_candidate() const;
    // Whether the map alone says that a row it gives is a member.
    bool is_keys_row() const { return source_ == Source::kKey && span_->is_condition; }
    bool is_member(RowId row) const;
    bool is_given_member(RowId row) const;
    bool meets_condition(RowId row) const { return meets(row, nullptr); }
    bool meets(RowId row, const MapSpan* given_for) const;
    bool is_beyond_end(RowId row) const { return end_ && *end_ <= row; }
    std::unique_ptr<SetRows> collect() const;

    const Query& query_;
    const std::optional<MapSpan> span_;
    Source source_ = Source::kScan;
    RowId position_;            // where next() continues
    RowId furthest_;            // rows up to here have been looked at
    std::optional<RowId> end_;  // members stand before this row
    bool a_member_changed_ = false;
    // Whether rows changed or added since the opening are members.
    std::unordered_map<std::uint32_t, bool> verdicts_;
    mutable RowView row_;     // buffer
    mutable RowId row_read_;  // the row in it; null: none
};

}  // namespace jet::sql
