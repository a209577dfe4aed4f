#include "jet/tables/table_indexes.h"

#include <algorithm>

#include "jet/indexes/index_key.h"
#include "jet/indexes/index_page.h"

namespace jet {

Index TableIndexes::tree(const RealIndex& index) const {
    return {storage_->pager(), storage_->allocator(), def_->page, index.root, index.map};
}

bool TableIndexes::has_column(std::uint16_t number) const {
    for (const RealIndex& index : def_->real_indexes) {
        for (const KeyColumn& key : index.columns) {
            if (key.column_number == number) return true;
        }
    }
    return false;
}

void TableIndexes::require_maintainable() const {
    for (const RealIndex& index : def_->real_indexes) {
        if (const auto reason = why_not_maintainable(index, *def_)) {
            fail(errors::kCannotMaintainIndex,
                 "Table '" + to_utf8(def_->name) + "' cannot be written: " + *reason + ".");
        }
    }
}

const ColumnDef* TableIndexes::doubtful_column(const RealIndex& index) const {
    for (const KeyColumn& key : index.columns) {
        const auto position = def_->column_by_number(key.column_number);
        if (!position) continue;
        const ColumnDef& column = def_->columns[*position];
        if (column.type != ColumnType::kText && column.type != ColumnType::kMemo) continue;
        const auto order = text_order(column);
        if (order && is_to_be_proved(*order)) return &column;
    }
    return nullptr;
}

void TableIndexes::prove_orders(const ReadRow& read,
                                const std::function<bool(const ColumnDef&)>& is_proved_elsewhere) const {
    for (const RealIndex& index : def_->real_indexes) {
        const ColumnDef* const doubtful = doubtful_column(index);
        if (doubtful == nullptr || proved_.count(index.root) != 0) continue;
        const bool is_compared = prove(index, *doubtful, read) > 0;
        if (!is_compared && text_order(*doubtful) == TextOrder::kLatin97 && !is_proved_elsewhere(*doubtful)) {
            fail(errors::kCannotMaintainIndex, "Table '" + to_utf8(def_->name) + "' cannot be written: column '" +
                                                   to_utf8(doubtful->name) + "' is sorted by " +
                                                   described_order(*doubtful) +
                                                   ", and no entry of its index tells whether this engine knows it.");
        }
        proved_.insert(index.root);
    }
}

std::size_t TableIndexes::prove(const RealIndex& index, const ColumnDef& doubtful, const ReadRow& read) const {
    std::size_t compared = 0;
    RowView view;
    tree(index).visit([&](ByteSpan key, RowId row) {
        if (read(row, view)) {
            const std::vector<Value> values = key_values(view);
            if (!is_key_known(index, *def_, values)) return true;
            ++compared;
            if (compare_entries(make_index_key(index, *def_, values), key) == 0) return true;
        }
        fail(errors::kCannotMaintainIndex, "Table '" + to_utf8(def_->name) +
                                               "' cannot be written: one of its indexes is sorted by " +
                                               described_order(doubtful) +
                                               ", and an entry of it is not what this engine would make of the row on "
                                               "page " +
                                               std::to_string(row.page) + ".");
    });
    return compared;
}

std::vector<Value> TableIndexes::key_values(const RowView& row) const {
    std::vector<Value> values(def_->columns.size());
    for (const RealIndex& index : def_->real_indexes) {
        for (const KeyColumn& key : index.columns) {
            if (const auto position = def_->column_by_number(key.column_number)) {
                values[*position] = row.value(*position);
            }
        }
    }
    return values;
}

namespace {

// Differs for values that differ; no key.
ByteVector stand_in(const RealIndex& index, const TableDef& def, std::span<const Value> values) {
    ByteVector bytes;
    for (const KeyColumn& key : index.columns) {
        const auto position = def.column_by_number(key.column_number);
        const auto* text = position ? std::get_if<std::u16string>(&values[*position]) : nullptr;
        if (text == nullptr) {
            RealIndex alone;
            alone.columns.push_back(key);
            append_bytes(bytes, make_index_key(alone, def, values));
            continue;
        }
        append_be(bytes, text->size(), 4);
        for (const char16_t c : *text) append_be(bytes, c, 2);
    }
    return bytes;
}

}  // namespace

TableIndexes::Keys TableIndexes::keys(std::span<const Value> values) const {
    Keys keys(def_->real_indexes.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RealIndex& index = def_->real_indexes[i];
        if (index.ignore_nulls() && all_null_key(index, *def_, values)) continue;
        keys[i].is_known = is_key_known(index, *def_, values);
        keys[i].bytes = keys[i].is_known ? make_index_key(index, *def_, values) : stand_in(index, *def_, values);
    }
    return keys;
}

void TableIndexes::check(std::span<const Value> values, const Keys* old_keys) const {
    const Keys new_keys = keys(values);
    for (std::size_t i = 0; i < new_keys.size(); ++i) {
        const RealIndex& index = def_->real_indexes[i];
        for (const KeyColumn& key : index.columns) {
            const auto position = def_->column_by_number(key.column_number);
            if (index.required() && position && is_null(values[*position])) {
                fail(errors::kNullNotAllowed,
                     "An index requires a value in " + described_column(*def_, def_->columns[*position]) + ".");
            }
        }
        if (old_keys && (*old_keys)[i] == new_keys[i]) continue;
        if (!new_keys[i].is_known) make_index_key(index, *def_, values);  // fails, and says why
        if (!index.unique() || new_keys[i].bytes.empty() || all_null_key(index, *def_, values)) continue;
        const Index held = tree(index);
        const std::vector<ByteVector> former = former_index_keys(index, *def_, values);
        const bool is_taken =
            held.find(new_keys[i].bytes) ||
            std::any_of(former.begin(), former.end(), [&](ByteSpan key) { return held.find(key).has_value(); });
        if (is_taken) {
            fail(errors::kDuplicateKey,
                 "The change would create duplicate values in a unique index of table '" + to_utf8(def_->name) + "'.");
        }
    }
}

// Other programs, and this engine in the past, have made keys of some letters by another rule: an entry that is not
// where the values would put it is looked for by its row.
void TableIndexes::erase_entry(const RealIndex& index, const Key& key, RowId row) {
    Index changed = tree(index);
    if (!key.is_known || (has_text(index, *def_) && !changed.contains(key.bytes, row))) {
        changed.erase_by_row(row);
    } else {
        changed.erase(key.bytes, row);
    }
}

void TableIndexes::change(const Keys& from, const Keys& to, RowId row) {
    static const Key kNone;
    for (std::size_t i = 0; i < def_->real_indexes.size(); ++i) {
        const Key& old_key = from.empty() ? kNone : from[i];
        const Key& new_key = to.empty() ? kNone : to[i];
        if (old_key == new_key) continue;
        RealIndex& index = def_->real_indexes[i];
        Index changed = tree(index);
        if (!old_key.bytes.empty()) erase_entry(index, old_key, row);
        if (!new_key.bytes.empty() && changed.insert(new_key.bytes, row)) ++index.distinct_keys;
    }
}

}  // namespace jet
