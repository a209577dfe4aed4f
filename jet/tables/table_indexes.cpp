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

void TableIndexes::prove_orders(const std::function<bool(RowId, RowView&)>& read) const {
    for (const RealIndex& index : def_->real_indexes) {
        const bool is_doubtful = std::any_of(index.columns.begin(), index.columns.end(), [&](const KeyColumn& key) {
            const auto position = def_->column_by_number(key.column_number);
            return position && def_->columns[*position].sort_version == jet4::kGeneralVersion1 &&
                   has_text(index, *def_);
        });
        if (!is_doubtful || proved_.count(index.root) != 0) continue;
        prove(index, read);
        proved_.insert(index.root);
    }
}

void TableIndexes::prove(const RealIndex& index, const std::function<bool(RowId, RowView&)>& read) const {
    RowView view;
    tree(index).visit([&](ByteSpan key, RowId row) {
        const bool is_same =
            read(row, view) && compare_entries(make_index_key(index, *def_, key_values(view)), key) == 0;
        if (is_same) return true;
        fail(errors::kCannotMaintainIndex,
             "Table '" + to_utf8(def_->name) +
                 "' cannot be written: one of its indexes is sorted by the General order, version 1, and an entry of "
                 "it is not what this engine would make of the row on page " +
                 std::to_string(row.page) + ".");
    });
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

TableIndexes::Keys TableIndexes::keys(std::span<const Value> values) const {
    Keys keys(def_->real_indexes.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RealIndex& index = def_->real_indexes[i];
        if (index.ignore_nulls() && all_null_key(index, *def_, values)) continue;
        keys[i] = make_index_key(index, *def_, values);
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
        if (!index.unique() || new_keys[i].empty() || all_null_key(index, *def_, values)) continue;
        if (old_keys && (*old_keys)[i] == new_keys[i]) continue;
        const Index held = tree(index);
        const std::vector<ByteVector> former = former_index_keys(index, *def_, values);
        const bool is_taken = held.find(new_keys[i]) || std::any_of(former.begin(), former.end(), [&](ByteSpan key) {
                                  return held.find(key).has_value();
                              });
        if (is_taken) {
            fail(errors::kDuplicateKey,
                 "The change would create duplicate values in a unique index of table '" + to_utf8(def_->name) + "'.");
        }
    }
}

// Other programs, and this engine in the past, have made keys of some letters by another rule: an entry that is not
// where the values would put it is looked for by its row.
void TableIndexes::erase_entry(const RealIndex& index, ByteSpan key, RowId row) {
    Index changed = tree(index);
    if (has_text(index, *def_) && !changed.contains(key, row)) {
        changed.erase_by_row(row);
    } else {
        changed.erase(key, row);
    }
}

void TableIndexes::change(const Keys& from, const Keys& to, RowId row) {
    for (std::size_t i = 0; i < def_->real_indexes.size(); ++i) {
        const ByteSpan old_key = from.empty() ? ByteSpan() : ByteSpan(from[i]);
        const ByteSpan new_key = to.empty() ? ByteSpan() : ByteSpan(to[i]);
        if (std::equal(old_key.begin(), old_key.end(), new_key.begin(), new_key.end())) continue;
        RealIndex& index = def_->real_indexes[i];
        Index changed = tree(index);
        if (!old_key.empty()) erase_entry(index, old_key, row);
        if (!new_key.empty() && changed.insert(new_key, row)) ++index.distinct_keys;
    }
}

}  // namespace jet
