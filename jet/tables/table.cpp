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
    const auto place = parts().rows.locate(row, into.view);
    if (!place) fail(errors::kRowDeleted, "The row has been deleted.");
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

// Whether the text's bytes are what the column stores, and nobody asks for its value.
bool Table::is_stored_as_is(const AsciiText& text) const {
    const ColumnDef& column = parts().def.columns.at(text.position);
    const bool is_text = column.type == ColumnType::kText || column.type == ColumnType::kMemo;
    if (!is_text || text.text.empty() || column.is_fixed() || column.is_autonumber()) return false;
    if (column.type == ColumnType::kText && text.text.size() > column.most_characters()) return false;
    return !parts().indexes.has_column(column.number);
}

void Table::store(std::size_t position, const Value& value, std::string_view text) {
    const ColumnDef& column = parts().def.columns[position];
    if (text.empty() && is_null(value)) return stored_.set_null(position);
    stored_.set(position, [&](ByteVector& to) {
        if (!column.is_long()) return text.empty() ? append_value(to, value, column) : append_ascii(to, text, column);
        LongValues long_values = storage_.long_values();
        if (!text.empty()) return long_values.append_memo(to, column, text);
        if (const auto* wide = std::get_if<std::u16string>(&value)) return long_values.append_memo(to, column, *wide);
        append_bytes(to, long_values.write(column, std::get<ByteVector>(value)));
    });
}

// The values are those of a row that stays where it is until the new one is encoded.
void Table::refer_to(const RowReader& row) {
    const std::vector<ColumnDef>& columns = parts().def.columns;
    stored_.clear(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (const auto bytes = row.stored(columns[i])) stored_.refer(i, *bytes);
    }
}

// The row of what is stored: good until the next one.
ByteSpan Table::encode_fitting(const TableDef& def) {
    const std::size_t most_bytes = def.format->data.max_row;
    encode_row(def, stored_, row_);
    LongValues long_values = storage_.long_values();
    // A row that is too long gives its inline long values away, one by one.
    for (std::size_t i = 0; i < stored_.size() && row_.size() > most_bytes; ++i) {
        const ColumnDef& column = def.columns[i];
        if (!column.is_long() || !stored_[i] || stored_[i]->size() <= jet4::long_value::kReference) continue;
        const ByteVector reference = long_values.write(column, long_values.read(*stored_[i]), false);
        stored_.set(i, [&](ByteVector& to) { append_bytes(to, reference); });
        encode_row(def, stored_, row_);
    }
    if (row_.size() > most_bytes) {
        fail(errors::kRowTooLarge, "A row of table '" + to_utf8(def.name) +
                                       "' would be too large: " + std::to_string(row_.size()) + " of at most " +
                                       std::to_string(most_bytes) + " bytes.");
    }
    return row_;
}

// Gives the texts that are stored as they are, by position; the others have become values.
std::vector<std::string_view> Table::check_row(std::vector<Value>& values, std::span<const AsciiText> texts) {
    const TableDef& def = parts().def;
    values.resize(def.columns.size());
    std::vector<std::string_view> as_is(values.size());
    for (const AsciiText& text : texts) {
        if (is_stored_as_is(text)) {
            as_is[text.position] = text.text;
        } else {
            values[text.position] = std::u16string(text.text.begin(), text.text.end());
        }
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!as_is[i].empty()) continue;
        const ColumnDef& column = def.columns[i];
        const bool numbers_itself = column.is_autonumber() && column.type == ColumnType::kLong;
        if (numbers_itself && is_null(values[i])) values[i] = take_autonumber();
        coerce_in_place(column, values[i]);
        if (numbers_itself) autonumber_ = std::max(autonumber_, std::get<std::int32_t>(values[i]));
        validate(i, values[i]);
    }
    return as_is;
}

RowId Table::insert(std::vector<Value> values, std::span<const AsciiText> texts) {
    auto& [def, rows, indexes, maps] = writable_parts();
    const std::vector<std::string_view> as_is = check_row(values, texts);
    indexes.check(values, nullptr);
    const ColumnMaps::Keys map_keys = maps.keys([&](std::size_t position) -> const Value& { return values[position]; });
    const ColumnMaps::Keys no_map_keys = maps.no_keys();

    Transaction transaction(storage_.pager());
    stored_.clear(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) store(i, values[i], as_is[i]);
    const RowId row = rows.add(encode_fitting(def));
    indexes.change({}, indexes.keys(values), row);
    ++def.row_count;
    store_counts(def);
    // Before the commit, since they may fail. Should the commit do so, they have noted a place without a row.
    for (TableWatcher* watcher : watchers_) watcher->row_inserted(row);
    transaction.commit();

    maps.change(row, no_map_keys, map_keys);
    return row;
}

// In the order of their columns, as they are stored.
std::vector<Table::NewValue> Table::check_changes(std::span<const ColumnChange> changes,
                                                  std::span<const AsciiText> texts) const {
    std::vector<NewValue> checked;
    checked.reserve(changes.size() + texts.size());
    const auto check = [&](std::size_t position, Value value) {
        coerce_in_place(parts().def.columns.at(position), value);
        validate(position, value);
        checked.push_back({position, std::move(value), {}});
    };
    auto text = texts.begin();
    const auto check_texts_before = [&](std::size_t position) {
        for (; text != texts.end() && text->position < position; ++text) {
            if (is_stored_as_is(*text)) {
                checked.push_back({text->position, {}, text->text});
            } else {
                check(text->position, std::u16string(text->text.begin(), text->text.end()));
            }
        }
    };
    for (const ColumnChange& change : changes) {
        check_texts_before(change.position);
        check(change.position, change.value);
    }
    check_texts_before(parts().def.columns.size());
    return checked;
}

void Table::update(RowId row, std::span<const ColumnChange> changes, std::span<const AsciiText> texts) {
    auto& [def, rows, indexes, maps] = writable_parts();
    OldRow old;
    find(row, old);
    const std::vector<NewValue> new_values = check_changes(changes, texts);
    for (TableWatcher* watcher : watchers_) watcher->row_changing(row);

    TableIndexes::Keys old_keys;
    std::vector<Value> key_values;
    if (!indexes.empty()) {
        key_values = indexes.key_values(old.view);
        old_keys = indexes.keys(key_values);
        for (const NewValue& changed : new_values) key_values[changed.position] = changed.value;
        indexes.check(key_values, &old_keys);
    }
    const ColumnMaps::Keys old_map_keys = maps.keys([&](std::size_t position) { return old.view.value(position); });
    const ColumnMaps::Keys new_map_keys = maps.keys([&](std::size_t position) {
        for (auto changed = new_values.rbegin(); changed != new_values.rend(); ++changed) {
            if (changed->position == position) return changed->value;
        }
        return old.view.value(position);
    });

    Transaction transaction(storage_.pager());
    refer_to(old.view.reader());
    std::vector<std::pair<std::size_t, ByteVector>> replaced;  // long values to give back
    for (const NewValue& changed : new_values) {
        const std::size_t position = changed.position;
        const auto reference = stored_[position];
        if (def.columns[position].is_long() && reference) {
            replaced.emplace_back(position, ByteVector(reference->begin(), reference->end()));
        }
        store(position, changed.value, changed.text);
    }
    rows.replace(old.place, encode_fitting(def));
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
        stored_.clear(def.columns.size());
        for (const ColumnDef& column : old_def.columns) {
            const auto position = def.column_by_number(column.number);
            const auto bytes = reader.stored(column);
            if (position && bytes) stored_.refer(*position, *bytes);
        }
        if (numbers) {
            const auto position = def.column_by_number(static_cast<std::uint16_t>(def.max_columns - 1));
            store(*position, ++number, {});
        }
        rows.replace(*place, encode_fitting(def));
    }
    if (!numbers) return;
    autonumber_ = number;
    store_counts(def);
}

}  // namespace jet
