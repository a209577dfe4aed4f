#include "jet/sql/lazy_rows.h"

#include <algorithm>
#include <utility>

#include "jet/sql/candidates.h"
#include "jet/sql/collected_rows.h"

namespace jet::sql {

namespace {

constexpr RowId kBeyondAllRows{0xFFFFFFFF, 0xFF};
constexpr std::size_t kFewVerdicts = 16;

}  // namespace

LazyRows::LazyRows(const Query& query) : query_(query), span_(query.span()) {
    const bool one_key = span_ && span_->first_key == span_->last_key;
    if (!query_.order().empty() || (span_ && !one_key)) {
        source_ = Source::kCollect;
    } else if (one_key) {
        source_ = Source::kKey;
    }
}

std::optional<RowId> LazyRows::next() {
    while (const auto row = next_candidate()) {
        position_ = *row;
        furthest_ = std::max(furthest_, position_);
        if (is_given_member(*row)) return row;
    }
    furthest_ = kBeyondAllRows;
    return std::nullopt;
}

// The live row behind position_ that may be a member.
std::optional<RowId> LazyRows::next_candidate() const {
    std::optional<RowId> row;
    row_read_ = {};
    if (source_ == Source::kScan) {
        bool is_read = false;
        row = query_.table().next_row(position_, row_, is_read);
        if (row && is_read) row_read_ = *row;
    } else {
        row = query_.table().next_row_of_key(span_->position, span_->first_key, position_);
    }
    if (row && is_beyond_end(*row)) row.reset();
    return row;
}

// Of a row that next_candidate() has given.
bool LazyRows::is_given_member(RowId row) const {
    if (!verdicts_.empty()) return is_member(row);
    return is_keys_row() || meets(row, source_ == Source::kKey ? &*span_ : nullptr);
}

// `given_for`, where not null: the span of the map that has given the row as it is.
bool LazyRows::meets(RowId row, const MapSpan* given_for) const {
    if (!query_.has_condition()) return true;
    if (row_read_.is_null() || row_read_ != row) {
        row_read_ = {};
        if (!query_.table().read(row, row_)) return false;
        row_read_ = row;
    }
    return given_for != nullptr ? query_.matches(row_, *given_for) : query_.matches(row_);
}

bool LazyRows::give_view(RowId row, RowView& into) {
    if (row_read_.is_null() || row_read_ != row) return false;
    std::swap(into, row_);
    row_read_ = {};
    return true;
}

// By what was written down before changes, else by the row as it is.
bool LazyRows::is_member(RowId row) const {
    if (!verdicts_.empty()) {
        const auto verdict = verdicts_.find(row.pack());
        if (verdict != verdicts_.end()) return verdict->second;
    }
    return !is_beyond_end(row) && meets_condition(row);
}

// A row may come to stand where a member stood before it was deleted.
void LazyRows::row_inserted(RowId row) {
    if (row_read_ == row) row_read_ = {};
    if (is_beyond_end(row)) return;
    // Rows added at the table's end need no verdict each once it is known where the members end.
    if (!end_ && verdicts_.size() >= kFewVerdicts && !query_.table().next_row(row)) {
        end_ = row;
    } else {
        verdicts_[row.pack()] = false;
    }
}

void LazyRows::row_changing(RowId row) {
    if (query_.has_condition() && !is_beyond_end(row) && !verdicts_.contains(row.pack())) {
        const bool member = meets_condition(row);
        verdicts_[row.pack()] = member;
        a_member_changed_ = a_member_changed_ || member;
    }
    row_read_ = {};  // its values are the old ones from now on
}

std::unique_ptr<SetRows> LazyRows::successor_for_use() {
    const bool members_may_be_lost = source_ == Source::kKey && a_member_changed_ && position_ < furthest_;
    return source_ == Source::kCollect || members_may_be_lost ? collect() : nullptr;
}

std::unique_ptr<SetRows> LazyRows::successor_before_change(RowId row) {
    if (source_ == Source::kCollect) return collect();
    if (source_ == Source::kScan || row <= furthest_ || is_beyond_end(row) || verdicts_.contains(row.pack())) {
        return nullptr;
    }
    return meets_condition(row) ? collect() : nullptr;
}

std::unique_ptr<SetRows> LazyRows::collect() const {
    std::vector<RowId> rows;
    visit_candidates(query_.table(), span_, [&](RowId row) {
        if (is_member(row)) rows.push_back(row);
    });
    // Members whose new values lead the map elsewhere; members among rows that are gone do no harm.
    for (const auto& [packed, member] : verdicts_) {
        if (member) rows.push_back(RowId::unpack(packed));
    }
    return std::make_unique<CollectedRows>(query_, std::move(rows), position_);
}

}  // namespace jet::sql
