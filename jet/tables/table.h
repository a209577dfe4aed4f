// An open table: its rows, their values, and whatever must stay true when they change (indexes, maps of
// long values, row count, auto-number, properties).
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "jet/pages/pager.h"
#include "jet/schema/table_def.h"
#include "jet/storage/long_value.h"
#include "jet/storage/row_codec.h"
#include "jet/storage/usage_map.h"
#include "jet/tables/column_map.h"

namespace jet {

class Database;

// The bytes of one stored row, copied from its page, and the way to its values.
class RowView {
public:
    RowView() = default;
    RowView(const RowView&) = delete;
    RowView& operator=(const RowView&) = delete;

    // Stored bytes of the column at `position` in the definition's columns, as RowReader gives them; they stay
    // while the view is not filled again.
    std::optional<ByteSpan> stored(std::size_t position) const;
    // The stored text of a column that holds texts, with a memo's where the row itself holds it; none for every
    // other value.
    std::optional<ByteSpan> stored_text(std::size_t position) const;
    // Value of the column at `position` in the definition's columns; long values are fetched.
    Value value(std::size_t position) const;
    // As above, into a value whose memory is used again.
    void value(std::size_t position, Value& into) const;
    bool is_null(std::size_t position) const;
    // Says that all values will soon be read.
    void prefetch_long_values() const;

private:
    friend class Table;
    friend class SchemaEditor;
    std::optional<ByteSpan> find(const ColumnDef& column) const;
    const class Table* table_ = nullptr;
    RowId row_;
    ByteVector bytes_;
    RowReader reader_;  // of bytes_
};

// Told before and after rows change, so that open sets keep the membership they were opened with.
class TableWatcher {
public:
    virtual ~TableWatcher() = default;
    virtual void row_inserted(RowId row) = 0;
    // Called while the row still has its old values.
    virtual void row_changing(RowId row) = 0;
};

struct ColumnChange {
    std::size_t position = 0;  // in the definition's columns
    Value value;
};

class Table {
public:
    Table(Database& database, TableDef def);
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const TableDef& def() const {
        if (stale_) refresh();
        return def_;
    }
    Database& database() const { return database_; }

    // Rows in scan order (page, slot): the first live row after `after` (a null RowId: the first row).
    // A page of the table's map that is not the table's is damage (3049), unless damage is passed over (salvage.h).
    std::optional<RowId> next_row(RowId after) const;
    // Fills `into`; false when there is no such live row.
    bool read(RowId row, RowView& into) const;
    bool exists(RowId row) const;

    // Adds a row; `values` by position in the definition's columns, absent positions Null. A Null
    // auto-number takes the next number. Checks sizes, required, zero length and unique indexes before
    // anything is written. One transaction of its own (or part of the caller's).
    RowId insert(std::vector<Value> values);
    // Changes the named columns of a row; 3167 when it is gone.
    void update(RowId row, std::span<const ColumnChange> changes);
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

    void add_watcher(TableWatcher* watcher);
    void remove_watcher(TableWatcher* watcher);
    bool watched() const { return !watchers_.empty(); }

    // Pages of the table in order, for checks.
    const UsageMap& owned_pages() const { return owned_; }

    // What is derived from pages may no longer be true (a rollback, a changed definition): the next use
    // reads it again.
    void forget();

private:
    friend class RowView;
    friend class SchemaEditor;

    // Where a row address leads: the slot it names and the slot that holds the row (the same, unless the row
    // has moved); `pointer` is the slot whose pointer leads to the body.
    struct Place {
        RowId home;
        RowId pointer;
        RowId body;
    };

    // A row's key in each of the column maps, in their order.
    using MapKeys = std::vector<std::optional<std::uint64_t>>;

    void refresh() const;
    LongValues long_values() const;
    void require_writable() const;
    std::optional<Place> locate(RowId row) const;
    bool is_own_page(const Page& page) const;
    std::optional<PageNumber> next_page(PageNumber from) const;
    std::optional<std::uint8_t> next_slot(PageNumber page_no, std::size_t from) const;
    void require_inside_file(PageNumber page_no) const;
    template <class Visitor>
    void visit_rows(Visitor&& visitor) const;
    ByteVector encode_fitting(std::vector<StoredValue>& stored);
    RowId place_row(ByteSpan row, std::uint16_t flags);
    void move_row(const Place& place, ByteSpan row);
    void remove_slot(RowId slot);
    void check_indexes(std::span<const Value> values, const std::vector<ByteVector>* old_keys) const;
    std::vector<Value> key_values(const RowView& row) const;
    std::vector<ByteVector> index_keys(std::span<const Value> values) const;
    void change_index(std::size_t index, const ByteVector* old_key, const ByteVector* new_key, RowId row);
    void store_counts();
    template <class ValueAt>
    MapKeys map_keys(const ValueAt& value_at) const;
    void move_in_maps(RowId row, const MapKeys& from, const MapKeys& to) noexcept;

    Database& database_;
    mutable TableDef def_;
    mutable UsageMap owned_;
    mutable UsageMap free_;
    mutable bool stale_ = false;
    mutable bool map_lost_ = false;  // damage is passed over, and the map of the table's pages is damaged
    std::int32_t autonumber_ = 0;    // highest one handed out
    PageNumber insert_hint_ = 0;     // page that took the last new row; 0: none
    mutable std::map<std::size_t, ColumnMap> column_maps_;
    std::vector<TableWatcher*> watchers_;
};

}  // namespace jet
