#include "jet/storage/row_view.h"

#include "jet/storage/long_value.h"

namespace jet {

void RowView::fill(Storage& storage, const RowShape& shape, RowId row, ByteSpan bytes) {
    storage_ = &storage;
    shape_ = &shape;
    row_ = row;
    bytes_.assign(bytes.begin(), bytes.end());
    reader_ = RowReader(bytes_, shape);
}

Value RowView::value(std::size_t position) const {
    Value result;
    value(position, result);
    return result;
}

void RowView::value(std::size_t position, Value& into) const {
    const ColumnDef& column = shape_->columns.at(position);
    try {
        const auto stored = reader_.stored(column);
        if (!stored) {
            into = Null{};
        } else if (column.is_long()) {
            const ValueId id{shape_->page, row_, column.number};
            decode_value(storage_->long_values().read(*stored, &id), column, into);
        } else {
            decode_value(*stored, column, into);
        }
    } catch (const Error& error) {
        if (!storage_->passes_over(row_.page, error)) throw;
        into = Null{};
    }
}

// The bytes in the row; where damage is passed over, none for a value that leaves the row.
std::optional<ByteSpan> RowView::find(const ColumnDef& column) const {
    try {
        return reader_.stored(column);
    } catch (const Error& error) {
        if (!storage_->passes_over(row_.page, error)) throw;
        return std::nullopt;
    }
}

std::optional<ByteSpan> RowView::stored(std::size_t position) const { return find(shape_->columns.at(position)); }

std::optional<ByteSpan> RowView::stored_text(std::size_t position) const {
    const ColumnDef& column = shape_->columns.at(position);
    if (column.type != ColumnType::kText && column.type != ColumnType::kMemo) return std::nullopt;
    if (column.code_page != 0) return std::nullopt;
    const auto stored = find(column);
    if (!stored || column.type != ColumnType::kMemo) return stored;
    try {
        return LongValues::inline_bytes(*stored);
    } catch (const Error& error) {
        if (!storage_->passes_over(row_.page, error)) throw;
        return std::nullopt;
    }
}

bool RowView::is_null(std::size_t position) const { return !stored(position).has_value(); }

void RowView::prefetch_long_values() const {
    const LongValues long_values = storage_->long_values();
    try {
        for (const ColumnDef& column : shape_->columns) {
            if (!column.is_long()) continue;
            if (const auto stored = reader_.stored(column)) long_values.prefetch(*stored);
        }
    } catch (const Error&) {
        // What is damaged concerns only who reads it.
    }
}

}  // namespace jet
