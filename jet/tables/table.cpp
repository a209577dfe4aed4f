#include "jet/tables/table.h"

#include <algorithm>
#include <utility>

#include "jet/pages/page_scan.h"
#include "jet/tables/coerce.h"

namespace jet {

Table::Table(Storage& storage, DefinitionStore& definitions, TableDef def)
    : storage_(storage),
      definitions_(definitions),
      parts_(storage, std::move(def)),
      autonumber_(parts_.def.last_autonumber) {}

void Table::forget() {
    stale_ = true;
    parts_.maps.clear();
}

void Table::refresh() const {
    parts_.def = definitions_.load(parts_.def.page, parts_.def.name);
    parts_.rows = RowStore(storage_, parts_.def);
    // What a transaction had taken away is back, the number of the last row as well.
    autonumber_ = std::max(autonumber_, parts_.def.last_autonumber);
    stale_ = false;
}

Table::Parts& Table::writable_parts() const {
    Parts& parts = this->parts();
    parts.indexes.require_maintainable();
    parts.indexes.prove_orders(
        [&](RowId row, RowView& into) { return parts.rows.read(row, into); },
        [&](const ColumnDef& column) { return definitions_.has_proved_order(parts.def, column); });
    return parts;
}

std::optional<std::string> Table::why_not_writable() const {
    try {
        static_cast<void>(writable_parts());
        return std::nullopt;
    } catch (const Error& error) {
        if (error.number() != errors::kCannotMaintainIndex) throw;
        return error.what();
    }
}

// Fails with 3167 when the row is gone.
void Table::find(RowId row, OldRow& into) const {
    const RowStore& rows = parts().rows;
    const auto place = rows.locate(row);
    if (!place || !rows.read(row, into.view)) fail(errors::kRowDeleted, "The row has been deleted.");
    into.place = *place;
}

Value Table::coerce(std::size_t position, Value value) const {
    const ColumnDef& column = def().columns.at(position);
    if (column.is_autonumber()) {
        fail(errors::kNotUpdatable, "The auto-number " + described_column(def(), column) + " cannot be assigned.");
    }
    return coerce_value(column, std::move(value));
}

void Table::validate(std::size_t position, const Value& value) const {
    const ColumnDef& column = def().columns.at(position);
    if (column.required && is_null(value)) {
        fail(errors::kNullNotAllowed, "A value is required in " + described_column(def(), column) + ".");
    }
    if (!column.allow_zero_length) {
        const auto* text = std::get_if<std::u16string>(&value);
        if (text && text->empty()) {
            fail(errors::kEmptyNotAllowed,
                 "A zero-length text is not allowed in " + described_column(def(), column) + ".");
        }
    }
}

std::int32_t Table::take_autonumber() {
    const TableDef& def = parts().def;  // a definition that cannot be read has no numbers to give
    if (autonumber_ == INT32_MAX) {
        fail(errors::kReserved, "The auto-numbers of table '" + to_utf8(def.name) + "' are used up.");
    }
    return ++autonumber_;
}

void Table::flush_autonumber() {
    TableDef& def = parts().def;
    if (autonumber_ == def.last_autonumber) return;
    Transaction transaction(storage_.pager());
    store_counts(def);
    transaction.commit();
}

void Table::begin_anew(std::u16string_view name) {
    parts_.def.name = name;
    autonumber_ = 0;
    forget();
}

void Table::store_counts(TableDef& def) {
    def.last_autonumber = std::max(def.last_autonumber, autonumber_);
    definitions_.store_counts(def);
}

StoredValue Table::stored_value(const ColumnDef& column, const Value& value) const {
    if (is_null(value)) return std::nullopt;
    if (!column.is_long()) return encode_value(value, column);
    const auto* text = std::get_if<std::u16string>(&value);
    return storage_.long_values().write(column,
                                        text ? LongValues::encode_memo(column, *text) : std::get<ByteVector>(value));
}

ByteVector Table::encode_fitting(const TableDef& def, std::vector<StoredValue>& stored) const {
    const std::size_t most_bytes = def.format->data.max_row;
    ByteVector row = encode_row(def, stored);
    LongValues long_values = storage_.long_values();
    // A row that is too long gives its inline long values away, one by one.
    for (std::size_t i = 0; i < stored.size() && row.size() > most_bytes; ++i) {
        const ColumnDef& column = def.columns[i];
        if (!column.is_long() || !stored[i] || stored[i]->size() <= jet4::long_value::kReference) continue;
        stored[i] = long_values.write(column, long_values.read(*stored[i]), false);
        row = encode_row(def, stored);
    }
    if (row.size() > most_bytes) {
        fail(errors::kRowTooLarge, "A row of table '" + to_utf8(def.name) +
                                       "' would be too large: " + std::to_string(row.size()) + " of at most " +
                                       std::to_string(most_bytes) + " bytes.");
    }
    return row;
}

RowId Table::insert(std::vector<Value> values) {
    auto& [def, rows, indexes, maps] = writable_parts();
    values.resize(def.columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColumnDef& column = def.columns[i];
        const bool numbers_itself = column.is_autonumber() && column.type == ColumnType::kLong;
        if (numbers_itself && is_null(values[i])) values[i] = take_autonumber();
        values[i] = coerce_value(column, std::move(values[i]));
        if (numbers_itself) autonumber_ = std::max(autonumber_, std::get<std::int32_t>(values[i]));
        validate(i, values[i]);
    }
    indexes.check(values, nullptr);
    const ColumnMaps::Keys map_keys = maps.keys([&](std::size_t position) -> const Value& { return values[position]; });
    const ColumnMaps::Keys no_map_keys = maps.no_keys();

    Transaction transaction(storage_.pager());
    std::vector<StoredValue> stored(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) stored[i] = stored_value(def.columns[i], values[i]);
    const RowId row = rows.add(encode_fitting(def, stored));
    indexes.change({}, indexes.keys(values), row);
    ++def.row_count;
    store_counts(def);
    // Before the commit, since they may fail. Should the commit do so, they have noted a place without a row.
    for (TableWatcher* watcher : watchers_) watcher->row_inserted(row);
    transaction.commit();

    maps.change(row, no_map_keys, map_keys);
    return row;
}

void Table::update(RowId row, std::span<const ColumnChange> changes) {
    auto& [def, rows, indexes, maps] = writable_parts();
    OldRow old;
    find(row, old);

    std::vector<std::pair<std::size_t, Value>> new_values;
    for (const ColumnChange& change : changes) {
        Value value = coerce_value(def.columns.at(change.position), change.value);
        validate(change.position, value);
        new_values.emplace_back(change.position, std::move(value));
    }
    for (TableWatcher* watcher : watchers_) watcher->row_changing(row);

    TableIndexes::Keys old_keys;
    std::vector<Value> key_values;
    if (!indexes.empty()) {
        key_values = indexes.key_values(old.view);
        old_keys = indexes.keys(key_values);
        for (const auto& [position, value] : new_values) key_values[position] = value;
        indexes.check(key_values, &old_keys);
    }
    std::vector<StoredValue> stored(def.columns.size());
    for (std::size_t i = 0; i < stored.size(); ++i) {
        if (const auto bytes = old.view.reader().stored(def.columns[i]))
            stored[i].emplace(bytes->begin(), bytes->end());
    }

    const ColumnMaps::Keys old_map_keys = maps.keys([&](std::size_t position) { return old.view.value(position); });
    const ColumnMaps::Keys new_map_keys = maps.keys([&](std::size_t position) {
        for (auto change = new_values.rbegin(); change != new_values.rend(); ++change) {
            if (change->first == position) return change->second;
        }
        return old.view.value(position);
    });

    Transaction transaction(storage_.pager());
    std::vector<std::pair<std::size_t, ByteVector>> replaced;  // long values to give back
    for (const auto& [position, value] : new_values) {
        const ColumnDef& column = def.columns[position];
        if (column.is_long() && stored[position]) replaced.emplace_back(position, std::move(*stored[position]));
        stored[position] = stored_value(column, value);
    }
    rows.replace(old.place, encode_fitting(def, stored));
    LongValues long_values = storage_.long_values();
    for (const auto& [position, reference] : replaced) long_values.release(def.columns[position], reference);
    if (!indexes.empty()) {
        indexes.change(old_keys, indexes.keys(key_values), row);
        store_counts(def);
    }
    transaction.commit();

    maps.change(row, old_map_keys, new_map_keys);
}

void Table::erase(RowId row) {
    auto& [def, rows, indexes, maps] = writable_parts();
    OldRow old;
    find(row, old);
    for (TableWatcher* watcher : watchers_) watcher->row_changing(row);

    const ColumnMaps::Keys map_keys = maps.keys([&](std::size_t position) { return old.view.value(position); });
    const ColumnMaps::Keys no_map_keys = maps.no_keys();
    Transaction transaction(storage_.pager());
    if (!indexes.empty()) indexes.change(indexes.keys(indexes.key_values(old.view)), {}, row);
    LongValues long_values = storage_.long_values();
    for (const ColumnDef& column : def.columns) {
        if (!column.is_long()) continue;
        if (const auto reference = old.view.reader().stored(column)) long_values.release(column, *reference);
    }
    rows.remove(old.place);
    if (def.row_count > 0) --def.row_count;
    store_counts(def);
    transaction.commit();

    maps.change(row, map_keys, no_map_keys);
}

// Takes rows into the column's map, page by page: all of them, or until one has the key that is wanted.
void Table::grow_map(std::size_t position, std::optional<std::uint64_t> wanted) {
    auto& [def, rows, indexes, maps] = parts();
    const ColumnDef& column = def.columns.at(position);
    ColumnMaps::Growing& growing = maps.of(position);
    PageScan pages(storage_.pager());
    bool found = false;
    const auto take_in = [&](RowId row, const RowReader& reader) {
        const auto stored = reader.stored(column);
        if (!stored) return;
        const std::uint64_t key = column.type == ColumnType::kLong ? ColumnMap::key_of_long(load_i32(*stored, 0))
                                                                   : ColumnMap::key_of_date(load_f64(*stored, 0));
        growing.map.insert({key, row.pack()});
        found |= key == wanted;
    };
    while (!growing.is_whole() && !found) {
        const auto page_no = rows.visit_page(growing.end, pages, take_in);
        growing.end = page_no ? *page_no + 1 : ColumnMaps::Growing::kWholeTable;
    }
}

const ColumnMap* Table::column_map(std::size_t position) {
    const ColumnType type = def().columns.at(position).type;
    if (type != ColumnType::kLong && type != ColumnType::kDate) return nullptr;
    grow_map(position, std::nullopt);
    return &parts().maps.of(position).map;
}

std::optional<RowId> Table::next_row_of_key(std::size_t position, std::uint64_t key, RowId after) {
    const ColumnMaps::Growing& growing = parts().maps.of(position);
    const ColumnMap::Entry from{key, after.is_null() ? 0 : after.pack() + 1};
    if (!after.is_null() && from.row == 0) return std::nullopt;
    for (;;) {
        const bool is_whole = growing.is_whole();
        // Pages come in the order of rows: an entry of a map that still grows is the first one.
        const auto entry = growing.map.lower_bound(from);
        if (entry && entry->key == key) return RowId::unpack(entry->row);
        if (is_whole) return std::nullopt;
        grow_map(position, key);
    }
}

void Table::rewrite_rows(const TableDef& old_def, bool numbers) {
    auto& [def, rows, indexes, maps] = parts();
    std::vector<RowId> ids;
    for (auto id = rows.next({}); id; id = rows.next(*id)) ids.push_back(*id);
    std::int32_t number = 0;
    RowView view;
    for (const RowId id : ids) {
        const auto place = rows.locate(id);
        if (!place || !rows.read(id, view)) continue;
        const RowReader reader(view.bytes(), old_def);
        std::vector<StoredValue> stored(def.columns.size());
        for (const ColumnDef& column : old_def.columns) {
            const auto position = def.column_by_number(column.number);
            const auto bytes = reader.stored(column);
            if (position && bytes) stored[*position].emplace(bytes->begin(), bytes->end());
        }
        if (numbers) {
            const auto position = def.column_by_number(static_cast<std::uint16_t>(def.max_columns - 1));
            stored[*position] = encode_value(++number, def.columns[*position]);
        }
        rows.replace(*place, encode_fitting(def, stored));
    }
    if (!numbers) return;
    autonumber_ = number;
    store_counts(def);
}

}  // namespace jet
