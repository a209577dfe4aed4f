#include "jet/sql/row_set.h"

#include <algorithm>
#include <numeric>

#include "jet/sql/candidates.h"
#include "jet/sql/scalar.h"
#include "jet/tables/database.h"

namespace jet::sql {

namespace {

constexpr RowId kBeyondAllRows{0xFFFFFFFF, 0xFF};
constexpr std::size_t kFewVerdicts = 16;

}  // namespace

RowSet::RowSet(Query query) : query_(std::move(query)), span_(query_.span()) {
    const bool one_key = span_ && span_->first_key == span_->last_key;
    if (!query_.order().empty() || (span_ && !one_key)) {
        source_ = Source::kCollect;
    } else if (one_key) {
        source_ = Source::kKey;
    }
    query_.table().add_watcher(this);
}

RowSet::~RowSet() { query_.table().remove_watcher(this); }

std::optional<RowId> RowSet::first() {
    started_ = true;
    position_ = {};
    index_ = 0;
    in_added_ = false;
    added_index_ = 0;
    return advance();
}

std::optional<RowId> RowSet::next() { return started_ ? advance() : first(); }

std::optional<RowId> RowSet::advance() {
    if (!in_added_) {
        if (const auto row = next_member()) return row;
        in_added_ = true;
        added_index_ = 0;
    }
    while (added_index_ < added_.size()) {
        const RowId row = added_[added_index_++];
        if (query_.table().exists(row)) return row;
    }
    return std::nullopt;
}

std::optional<RowId> RowSet::next_member() {
    if (source_ == Source::kCollect && !collected_) collect();
    if (collected_) {
        while (index_ < rows_.size()) {
            const RowId row = rows_[index_++];
            const bool replaced = !verdicts_.empty() && verdicts_.contains(row.pack());
            if (!replaced && query_.table().exists(row)) return row;
        }
        return std::nullopt;
    }
    while (const auto row = next_candidate()) {
        position_ = *row;
        furthest_ = std::max(furthest_, position_);
        if (is_member(*row)) return row;
    }
    furthest_ = kBeyondAllRows;
    return std::nullopt;
}

// The live row behind position_ that may be a member.
std::optional<RowId> RowSet::next_candidate() const {
    std::optional<RowId> row;
    if (source_ == Source::kScan) {
        row = query_.table().next_row(position_);
    } else if (const ColumnMap* map = query_.table().column_map(span_->position)) {
        const auto from = entry_after({span_->first_key, position_.pack()});
        const auto entry = from ? map->lower_bound(*from) : std::nullopt;
        if (entry && entry->key == span_->first_key) row = RowId::unpack(entry->row);
    }
    if (row && is_beyond_end(*row)) row.reset();
    return row;
}

bool RowSet::meets_condition(RowId row) const {
    if (!query_.has_condition()) return true;
    return query_.table().read(row, row_) && query_.matches(row_);
}

// By what was written down before changes, else by the row as it is. For uncollected sets.
bool RowSet::is_member(RowId row) const {
    if (!verdicts_.empty()) {
        const auto verdict = verdicts_.find(row.pack());
        if (verdict != verdicts_.end()) return verdict->second;
    }
    return !is_beyond_end(row) && meets_condition(row);
}

void RowSet::collect() {
    rows_.clear();
    visit_candidates(query_.table(), span_, [this](RowId row) {
        if (is_member(row)) rows_.push_back(row);
    });
    // Members whose new values lead the map elsewhere; members among rows that are gone do no harm.
    for (const auto& [packed, member] : verdicts_) {
        if (member) rows_.push_back(RowId::unpack(packed));
    }
    std::sort(rows_.begin(), rows_.end());
    rows_.erase(std::unique(rows_.begin(), rows_.end()), rows_.end());
    last_row_ = rows_.empty() ? RowId{} : rows_.back();
    index_ = static_cast<std::size_t>(std::upper_bound(rows_.begin(), rows_.end(), position_) - rows_.begin());
    verdicts_.clear();
    collected_ = true;
    if (!query_.order().empty()) put_in_order();
}

void RowSet::put_in_order() {
    const std::vector<OrderKey>& order = query_.order();
    std::vector<Value> keys;
    keys.reserve(rows_.size() * order.size());
    // Each stands somewhere in the file, a character in a byte at least; rows that share their bytes are damage.
    std::size_t room = order.size() * query_.table().storage().pager().page_count() * jet4::kPageSize;
    for (const RowId row : rows_) {
        const bool exists = query_.table().read(row, row_);
        for (const OrderKey& key : order) {
            keys.push_back(exists ? row_.value(key.position) : Value());
            const auto* text = std::get_if<std::u16string>(&keys.back());
            if (text && (room -= std::min(room, text->size())) == 0) {
                corrupt(query_.table().def().page, "the rows of a table hold more text than the file");
            }
        }
    }
    std::vector<std::size_t> places(rows_.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
        for (std::size_t i = 0; i < order.size(); ++i) {
            const auto compared = compare_for_order(keys[a * order.size() + i], keys[b * order.size() + i]);
            if (compared != 0) return order[i].descending ? compared > 0 : compared < 0;
        }
        return false;
    });
    std::vector<RowId> ordered;
    ordered.reserve(rows_.size());
    for (const std::size_t place : places) ordered.push_back(rows_[place]);
    rows_ = std::move(ordered);
    index_ = 0;
}

std::optional<std::size_t> RowSet::find_collected(RowId row) const {
    if (query_.order().empty()) {
        const auto found = std::lower_bound(rows_.begin(), rows_.end(), row);
        if (found == rows_.end() || *found != row) return std::nullopt;
        return static_cast<std::size_t>(found - rows_.begin());
    }
    if (by_row_.size() != rows_.size()) {
        by_row_.resize(rows_.size());
        std::iota(by_row_.begin(), by_row_.end(), std::size_t{0});
        std::sort(by_row_.begin(), by_row_.end(), [this](std::size_t a, std::size_t b) { return rows_[a] < rows_[b]; });
    }
    const auto found = std::lower_bound(by_row_.begin(), by_row_.end(), row,
                                        [this](std::size_t index, RowId wanted) { return rows_[index] < wanted; });
    if (found == by_row_.end() || rows_[*found] != row) return std::nullopt;
    return *found;
}

void RowSet::append(RowId row) {
    added_.push_back(row);
    last_added_ = std::max(last_added_, row);
}

bool RowSet::delivered(RowId row) const {
    if (std::find(added_.rbegin(), added_.rend(), row) != added_.rend()) return true;
    if (collected_) return find_collected(row) && !verdicts_.contains(row.pack());
    return started_ && row <= furthest_ && is_member(row);
}

void RowSet::move_to(RowId row) {
    const auto added = std::find(added_.rbegin(), added_.rend(), row);
    in_added_ = added != added_.rend();
    if (in_added_) {
        added_index_ = static_cast<std::size_t>(added_.rend() - added);
        started_ = true;
    } else if (collected_) {
        if (const auto index = find_collected(row)) index_ = *index + 1;
    } else {
        position_ = row;
    }
}

// A row may come to stand where a member or an own addition stood before it was deleted.
void RowSet::row_inserted(RowId row) {
    if (row <= last_added_) {
        const auto found = std::find(added_.begin(), added_.end(), row);
        if (found != added_.end()) {
            if (static_cast<std::size_t>(found - added_.begin()) < added_index_) --added_index_;
            added_.erase(found);
        }
    }
    if (collected_) {
        if (row <= last_row_ && find_collected(row)) verdicts_[row.pack()] = false;
        return;
    }
    if (is_beyond_end(row)) return;
    // Rows added at the table's end need no verdict each once it is known where the members end.
    if (!end_ && verdicts_.size() >= kFewVerdicts && !query_.table().next_row(row)) {
        end_ = row;
    } else {
        verdicts_[row.pack()] = false;
    }
}

void RowSet::row_changing(RowId row) {
    if (collected_) return;
    if (source_ == Source::kCollect) {
        collect();
        return;
    }
    if (!query_.has_condition() || is_beyond_end(row) || verdicts_.contains(row.pack())) return;
    const bool member = meets_condition(row);
    // The map would lose sight of a member still to come.
    if (member && source_ == Source::kKey && furthest_ < row) {
        collect();
    } else {
        verdicts_[row.pack()] = member;
    }
}

}  // namespace jet::sql
