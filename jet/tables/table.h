// An open table: its rows by value, and whatever must stay true when they change (indexes, pages of long
// values, row count, auto-number, column maps).
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "jet/base/types.h"
#include "jet/schema/definition_store.h"
#include "jet/schema/table_def.h"
#include "jet/schema/table_rows.h"
#include "jet/storage/row_view.h"
#include "jet/storage/storage.h"
#include "jet/storage/stored_values.h"
#include "jet/tables/ascii_text.h"
#include "jet/tables/column_maps.h"
#include "jet/tables/row_store.h"
#include "jet/tables/table_indexes.h"

namespace jet {

// Told before and after rows change, so that open sets keep the membership they were opened with.
class TableWatcher {
public:
    virtual ~TableWatcher() = default;
    virtual void row_inserted(RowId row) = 0;
    // Called while the row still has its old values.
    virtual void row_changing(RowId row) = 0;
};

class Table final : public TableRows {
public:
    Table(Storage& storage, DefinitionStore& definitions, TableDef def);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const TableDef& def() const override { return parts().def; }
    Storage& storage() const { return storage_; }

    std::optional<RowId> next_row(RowId after) const override { return parts().rows.next(after); }
    bool read(RowId row, RowView& into) const override { return parts().rows.read(row, into); }
    // The next row, with its content where it is at hand: `is_read` tells.
    std::optional<RowId> next_row(RowId after, RowView& into, bool& is_read) const {
        return parts().rows.next(after, into, is_read);
    }
    bool exists(RowId row) const { return parts().rows.exists(row); }

    // Why nothing can be written: an index of the table is in an order that this engine does not keep. None when it
    // can.
    std::optional<std::string> why_not_writable() const override;
    RowId insert(std::vector<Value> values) override { return insert(std::move(values), {}); }
    void update(RowId row, std::span<const ColumnChange> changes) override { update(row, changes, {}); }
    // As above, where each of `texts` stands for its column's value, which is not looked at, and must not be among the
    // changes. Texts and changes are in the order of their columns. What is stored, and every error, is as if the texts
    // were values; where the column allows it, their bytes go straight into the row.
    RowId insert(std::vector<Value> values, std::span<const AsciiText> texts);
    void update(RowId row, std::span<const ColumnChange> changes, std::span<const AsciiText> texts);
    void erase(RowId row);

    // The next auto-number, never handed out again.
    std::int32_t take_autonumber();
    // Stores an auto-number taken but not yet stored with a row, so that it is not handed out after a
    // reopening either. Part of closing.
    void flush_autonumber();

    // Converts and checks a value for a column as assignment does: 3163 too long, 3421 no conversion,
    // 3164 an auto-number. Returns the value in the column's own type.
    Value coerce(std::size_t position, Value value) const;
    // What storing a value checks besides: 3314 and 3315.
    void validate(std::size_t position, const Value& value) const;

    // The ordered map of a Long or Date column, built when first asked for; null for other types.
    const ColumnMap* column_map(std::size_t position);
    // The first row after `after` whose Long or Date column has this key in its map; a null RowId: the first of all.
    // The map is built only as far as it takes to tell.
    std::optional<RowId> next_row_of_key(std::size_t position, std::uint64_t key, RowId after);

    void add_watcher(TableWatcher* watcher) { watchers_.push_back(watcher); }
    void remove_watcher(TableWatcher* watcher) { std::erase(watchers_, watcher); }
    bool watched() const { return !watchers_.empty(); }

    // Pages of the table in order, for checks.
    const UsageMap& owned_pages() const { return parts().rows.pages(); }

    // What is derived from pages may no longer be true (a rollback, a changed definition): the next use
    // reads it again.
    void forget();
    // The definition has changed from `old_def`, and rows of its shape are to be brought into the new one; with
    // `numbers`, the last column numbers them in their order. Inside a transaction.
    void rewrite_rows(const TableDef& old_def, bool numbers);
    // The auto-number is gone: another one will begin anew.
    void restart_autonumbers() { autonumber_ = 0; }
    // A new table has come to the page of this one, whose making was taken back.
    void begin_anew(std::u16string_view name);

private:
    // What is derived from the table's pages. Nobody comes to it but through `parts`, which reads it again when it has
    // been forgotten; its address stays.
    struct Parts {
        Parts(Storage& storage, TableDef definition)
            : def(std::move(definition)), rows(storage, def), indexes(storage, def) {}
        Parts(const Parts&) = delete;
        Parts& operator=(const Parts&) = delete;

        TableDef def;
        RowStore rows;
        TableIndexes indexes;
        ColumnMaps maps;
    };

    // A row that is about to change.
    struct OldRow {
        RowStore::Place place;
        RowView view;
    };

    Parts& parts() const {
        if (stale_) refresh();
        return parts_;
    }
    Parts& writable_parts() const;
    void refresh() const;
    void find(RowId row, OldRow& into) const;

    // A checked value: a text in its narrow form, or where that is empty `value`.
    struct NewValue {
        std::size_t position = 0;
        Value value;
        std::string_view text;
    };
    bool is_stored_as_is(const AsciiText& text) const;
    std::vector<std::string_view> check_row(std::vector<Value>& values, std::span<const AsciiText> texts);
    std::vector<NewValue> check_changes(std::span<const ColumnChange> changes, std::span<const AsciiText> texts) const;
    void store(std::size_t position, const Value& value, std::string_view text);
    void refer_to(const RowReader& row);
    ByteSpan encode_fitting(const TableDef& def);
    void store_counts(TableDef& def);
    void grow_map(std::size_t position, std::optional<std::uint64_t> wanted);

    Storage& storage_;
    DefinitionStore& definitions_;
    mutable Parts parts_;
    mutable bool stale_ = false;
    mutable std::int32_t autonumber_ = 0;  // highest one handed out
    std::vector<TableWatcher*> watchers_;
    // Of the row that is being written; for their memory.
    StoredValues stored_;
    ByteVector row_;
};

}  // namespace jet
