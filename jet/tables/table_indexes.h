// The index trees of a table, kept right as its rows change.
#pragma once

#include <functional>
#include <set>
#include <span>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/indexes/index.h"
#include "jet/schema/table_def.h"
#include "jet/storage/row_view.h"
#include "jet/storage/storage.h"

namespace jet {

class TableIndexes {
public:
    struct Key {
        ByteVector bytes;      // empty where the row has no entry
        bool is_known = true;  // otherwise the bytes only tell it from other values', and the entry is found by its row

        friend bool operator==(const Key&, const Key&) = default;
    };
    // A row's key in each tree, in their order.
    using Keys = std::vector<Key>;
    using ReadRow = std::function<bool(RowId, RowView&)>;

    // Both are kept. The counts of distinct keys in `def` follow the trees.
    TableIndexes(Storage& storage, TableDef& def) : storage_(&storage), def_(&def) {}

    bool empty() const { return def_->real_indexes.empty(); }
    // Whether a key takes the value of the column with this number.
    bool has_column(std::uint16_t number) const;
    // Fails where a tree is in an order that this engine does not know.
    void require_maintainable() const;
    // Compares all entries of the trees in an order that is to be proved with what the rows give, as far as that is
    // known, once for each: 3616 where one differs. `read` gives a row. `is_proved_elsewhere` says whether the order of
    // a column holds in another tree of the file, which is asked where a tree has no entry to compare.
    void prove_orders(const ReadRow& read, const std::function<bool(const ColumnDef&)>& is_proved_elsewhere) const;
    // The row's values as far as an index asks for them, by position.
    std::vector<Value> key_values(const RowView& row) const;
    Keys keys(std::span<const Value> values) const;
    // Before anything is written: no duplicate in a unique index (3022), no Null where an index requires a value
    // (3314), no new entry in a place that is not known (3616). `old_keys` are those that the row has already, or null.
    void check(std::span<const Value> values, const Keys* old_keys) const;
    // Inside a transaction. No keys at all: the row is new, or goes.
    void change(const Keys& from, const Keys& to, RowId row);

private:
    Index tree(const RealIndex& index) const;
    void erase_entry(const RealIndex& index, const Key& key, RowId row);
    // The first column of the index that is sorted by an order to be proved; null when there is none.
    const ColumnDef* doubtful_column(const RealIndex& index) const;
    // Returns how many entries were compared.
    std::size_t prove(const RealIndex& index, const ColumnDef& doubtful, const ReadRow& read) const;

    mutable std::set<PageNumber> proved_;  // roots of trees
    Storage* storage_;
    TableDef* def_;
};

}  // namespace jet
