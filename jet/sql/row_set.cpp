#include "jet/sql/row_set.h"

#include <utility>

#include "jet/sql/lazy_rows.h"

namespace jet::sql {

RowSet::RowSet(Query query) : query_(std::move(query)), rows_(std::make_unique<LazyRows>(query_)) {
    query_.table().add_watcher(this);
}

RowSet::~RowSet() { query_.table().remove_watcher(this); }

std::optional<RowId> RowSet::first_original() {
    started_ = true;
    is_among_additions_ = false;
    rows_->restart();
    return next_original();
}

std::optional<RowId> RowSet::first() {
    started_ = false;
    return next();
}

std::optional<RowId> RowSet::next() {
    if (!is_among_additions_ || !started_) {
        if (const auto row = started_ ? next_original() : first_original()) return row;
        is_among_additions_ = true;
        additions_.restart();
    }
    return additions_.next(query_.table());
}

std::optional<RowId> RowSet::next_original() {
    if (auto successor = rows_->successor_for_use()) rows_ = std::move(successor);
    return rows_->next();
}

bool RowSet::delivered(RowId row) const { return additions_.contains(row) || rows_->delivered(row); }

void RowSet::move_to(RowId row) {
    started_ = true;
    is_among_additions_ = additions_.move_to(row);
    if (!is_among_additions_) rows_->move_to(row);
}

void RowSet::row_inserted(RowId row) {
    additions_.forget(row);
    rows_->row_inserted(row);
}

void RowSet::row_changing(RowId row) {
    if (auto successor = rows_->successor_before_change(row)) rows_ = std::move(successor);
    rows_->row_changing(row);
}

}  // namespace jet::sql
