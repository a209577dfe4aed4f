#include "jet/sql/collected_rows.h"

#include <algorithm>
#include <numeric>

#include "jet/sql/scalar.h"

namespace jet::sql {

CollectedRows::CollectedRows(const Query& query, std::vector<RowId> rows, RowId position)
    : query_(query), rows_(std::move(rows)) {
    std::sort(rows_.begin(), rows_.end());
    rows_.erase(std::unique(rows_.begin(), rows_.end()), rows_.end());
    if (!rows_.empty()) last_ = rows_.back();
    if (query_.order().empty()) {
        index_ = static_cast<std::size_t>(std::upper_bound(rows_.begin(), rows_.end(), position) - rows_.begin());
    } else {
        put_in_order();
    }
}

std::optional<RowId> CollectedRows::next() {
    while (index_ < rows_.size()) {
        const RowId row = rows_[index_++];
        const bool replaced = !replaced_.empty() && replaced_.contains(row.pack());
        if (!replaced && query_.table().exists(row)) return row;
    }
    return std::nullopt;
}

void CollectedRows::move_to(RowId row) {
    if (const auto index = find(row)) index_ = *index + 1;
}

// A row may come to stand where a member stood before it was deleted.
void CollectedRows::row_inserted(RowId row) {
    if (row <= last_ && find(row)) replaced_.insert(row.pack());
}

void CollectedRows::put_in_order() {
    const std::vector<OrderKey>& order = query_.order();
    std::vector<Value> keys;
    keys.reserve(rows_.size() * order.size());
    // Each stands somewhere in the file, a character in a byte at least; rows that share their bytes are damage.
    std::size_t room = order.size() * query_.table().storage().pager().page_count() *
                       query_.table().storage().pager().format().page_size;
    RowView view;
    for (const RowId row : rows_) {
        const bool exists = query_.table().read(row, view);
        for (const OrderKey& key : order) {
            keys.push_back(exists ? view.value(key.position) : Value());
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
}

std::optional<std::size_t> CollectedRows::find(RowId row) const {
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

}  // namespace jet::sql
