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
    // A row's key in each tree, in their order; an empty one where the row has no entry.
    using Keys = std::vector<ByteVector>;

    // Both are kept. The counts of distinct keys in `def` follow the trees.
    TableIndexes(Storage& storage, TableDef& def) : storage_(&storage), def_(&def) {}

    bool empty() const { return def_->real_indexes.empty(); }
    // Whether a key takes the value of the column with this number.
    bool has_column(std::uint16_t number) const;
    // Fails where a tree is in an order that this engine does not know.
    void require_maintainable() const;
    // Compares all entries of the trees in an order whose weights are proved for few letters with what the rows give,
    // once for each: 3616 where one differs. `read` gives a row.
    void prove_orders(const std::function<bool(RowId, RowView&)>& read) const;
    // The row's values as far as an index asks for them, by position.
    std::vector<Value> key_values(const RowView& row) const;
    Keys keys(std::span<const Value> values) const;
    // Before anything is written: no duplicate in a unique index (3022), no Null where an index requires a value
    // (3314). `old_keys` are those that the row has already, or null.
    void check(std::span<const Value> values, const Keys* old_keys) const;
    // Inside a transaction. No keys at all: the row is new, or goes.
    void change(const Keys& from, const Keys& to, RowId row);

private:
    Index tree(const RealIndex& index) const;
    void erase_entry(const RealIndex& index, ByteSpan key, RowId row);
    void prove(const RealIndex& index, const std::function<bool(RowId, RowView&)>& read) const;

    mutable std::set<PageNumber> proved_;  // roots of trees
    Storage* storage_;
    TableDef* def_;
};

}  // namespace jet
