#include "jet/tables/table.h"

#include <algorithm>

#include "jet/indexes/index.h"
#include "jet/indexes/index_key.h"
#include "jet/storage/data_page.h"
#include "jet/storage/long_value.h"
#include "jet/tables/coerce.h"
#include "jet/tables/database.h"

namespace jet {

namespace {

// Pointers a moved row may take before it is taken for a circle.
constexpr int kMaxHops = 32;

std::string described(const TableDef& def, const ColumnDef& column) {
    return "column '" + to_utf8(column.name) + "' of table '" + to_utf8(def.name) + "'";
}

// What an index says of its keys; null: the row has no entry in it.
const ByteVector* entry_of(const ByteVector& key) { return key.empty() ? nullptr : &key; }

}  // namespace

Value RowView::value(std::size_t position) const {
    Value result;
    value(position, result);
    return result;
}

void RowView::value(std::size_t position, Value& into) const {
    const ColumnDef& column = table_->def().columns.at(position);
    try {
        const auto stored = reader_.stored(column);
        if (!stored) {
            into = Null{};
        } else if (column.is_long()) {
            const ValueId id{table_->def().page, row_, column.number};
            decode_value(table_->long_values().read(*stored, &id), column, into);
        } else {
            decode_value(*stored, column, into);
        }
    } catch (const Error& error) {
        if (!table_->database().passes_over(row_.page, error)) throw;
        into = Null{};
    }
}

// The bytes in the row; where damage is passed over, none for a value that leaves the row.
std::optional<ByteSpan> RowView::find(const ColumnDef& column) const {
    try {
        return reader_.stored(column);
    } catch (const Error& error) {
        if (!table_->database().passes_over(row_.page, error)) throw;
        return std::nullopt;
    }
}

std::optional<ByteSpan> RowView::stored(std::size_t position) const { return find(table_->def().columns.at(position)); }

std::optional<ByteSpan> RowView::stored_text(std::size_t position) const {
    const ColumnDef& column = table_->def().columns.at(position);
    if (column.type != ColumnType::kText && column.type != ColumnType::kMemo) return std::nullopt;
    const auto stored = find(column);
    if (!stored || column.type != ColumnType::kMemo) return stored;
    try {
        return LongValues::inline_bytes(*stored);
    } catch (const Error& error) {
        if (!table_->database().passes_over(row_.page, error)) throw;
        return std::nullopt;
    }
}

bool RowView::is_null(std::size_t position) const { return !stored(position).has_value(); }

void RowView::prefetch_long_values() const {
    const LongValues long_values = table_->long_values();
    try {
        for (const ColumnDef& column : table_->def().columns) {
            if (!column.is_long()) continue;
            if (const auto stored = reader_.stored(column)) long_values.prefetch(*stored);
        }
    } catch (const Error&) {
        // What is damaged concerns only who reads it.
    }
}

LongValues Table::long_values() const { return {database_.pager(), database_.allocator(), &database_.chain_owners()}; }

Table::Table(Database& database, TableDef def)
    : database_(database),
      def_(std::move(def)),
      owned_(database.pager(), database.allocator(), def_.owned_map),
      free_(database.pager(), database.allocator(), def_.free_map),
      autonumber_(def_.last_autonumber) {}

Table::~Table() = default;

void Table::forget() {
    stale_ = true;
    map_lost_ = false;
    insert_hint_ = 0;
    column_maps_.clear();
}

void Table::refresh() const {
    if (!stale_) return;
    def_ = database_.load_table_def(def_.page, def_.name);
    owned_ = UsageMap(database_.pager(), database_.allocator(), def_.owned_map);
    free_ = UsageMap(database_.pager(), database_.allocator(), def_.free_map);
    stale_ = false;
}

void Table::require_writable() const {
    refresh();
    for (const RealIndex& index : def_.real_indexes) {
        if (const auto reason = why_not_maintainable(index, def_)) {
            fail(errors::kCannotMaintainIndex,
                 "Table '" + to_utf8(def_.name) + "' cannot be written: " + *reason + ".");
        }
    }
}

void Table::add_watcher(TableWatcher* watcher) { watchers_.push_back(watcher); }
void Table::remove_watcher(TableWatcher* watcher) { std::erase(watchers_, watcher); }

std::optional<Table::Place> Table::locate(RowId row) const {
    refresh();
    if (row.is_null()) return std::nullopt;
    if (row.page >= database_.pager().page_count()) {
        require_inside_file(row.page);
        return std::nullopt;
    }
    Place place{row, row, row};
    for (int hop = 0; hop < kMaxHops; ++hop) {
        const Page page = database_.pager().read(place.body.page);
        const bool ours = hop == 0 ? is_own_page(page) : DataPage::belongs_to(page.bytes(), def_.page);
        if (hop == 0) {
            // An address from outside: not a row when nothing of the table is there.
            if (!ours || place.body.slot >= DataPage(page.bytes(), place.body.page).slot_count()) return std::nullopt;
        } else if (!ours) {
            corrupt(place.body.page, "a moved row leads to a page of another owner");
        }
        const DataPage data(page.bytes(), place.body.page);
        const Slot slot = data.slot(place.body.slot);
        if (slot.is_deleted() || (hop == 0 && slot.is_body())) {
            if (hop == 0) return std::nullopt;
            corrupt(place.body.page, "a moved row leads to a deleted one");
        }
        if (!slot.is_moved()) return place;
        place.pointer = place.body;
        place.body = RowId::unpack(load_u32(data.row(slot), 0));
        if (place.body.is_null()) corrupt(place.pointer.page, "a moved row leads nowhere");
    }
    corrupt(row.page, "the pointers of a moved row go in a circle");
}

void Table::require_inside_file(PageNumber page_no) const {
    const PageNumber end = database_.pager().page_count();
    if (page_no >= end && owned_.contains(page_no)) {
        corrupt(page_no, "from this page on, table '" + to_utf8(def_.name) + "' lies behind the end of the file");
    }
}

// Whether rows of the table may stand on the page. A page of the table's map that says it is somebody else's is damage:
// passed over in silence, its rows would be gone without a word.
bool Table::is_own_page(const Page& page) const {
    if (DataPage::belongs_to(page.bytes(), def_.page)) return true;
    if (owned_.contains(page.number())) {
        corrupt(page.number(), "the page belongs to table '" + to_utf8(def_.name) + "' and does not hold its rows");
    }
    return false;
}

// The first page of the table at or after `from`.
std::optional<PageNumber> Table::next_page(PageNumber from) const {
    while (!map_lost_) {
        try {
            return owned_.next(from);
        } catch (const Error& error) {
            if (!database_.passes_over(def_.owned_map.page, error)) throw;
            map_lost_ = true;
        }
    }
    for (; from < database_.pager().page_count(); ++from) {
        try {
            const bool ours = DataPage::belongs_to(database_.pager().read(from).bytes(), def_.page);
            if (ours && !database_.allocator().is_free(from)) return from;
        } catch (const Error& error) {
            if (!database_.passes_over(from, error)) throw;
        }
    }
    return std::nullopt;
}

// The first live row of the page at or after `from`.
std::optional<std::uint8_t> Table::next_slot(PageNumber page_no, std::size_t from) const {
    const Page page = database_.pager().read(page_no);
    if (!is_own_page(page)) return std::nullopt;
    const DataPage data(page.bytes(), page_no);
    for (; from < data.slot_count(); ++from) {
        const Slot entry = data.slot(from);
        if (!entry.is_deleted() && !entry.is_body()) return static_cast<std::uint8_t>(from);
    }
    return std::nullopt;
}

std::optional<RowId> Table::next_row(RowId after) const {
    refresh();
    std::size_t slot = after.is_null() ? 0 : after.slot + 1u;
    std::optional<PageNumber> page_no = after.is_null() ? next_page(0) : std::optional(after.page);
    for (; page_no; page_no = next_page(*page_no + 1)) {
        try {
            require_inside_file(*page_no);
            if (*page_no >= database_.pager().page_count()) return std::nullopt;
            if (const auto found = next_slot(*page_no, slot)) return RowId{*page_no, *found};
        } catch (const Error& error) {
            if (!database_.passes_over(*page_no, error)) throw;
            if (*page_no >= database_.pager().page_count()) return std::nullopt;
        }
        slot = 0;
    }
    return std::nullopt;
}

bool Table::read(RowId row, RowView& into) const {
    try {
        const auto place = locate(row);
        if (!place) return false;
        const Page page = database_.pager().read(place->body.page);
        const DataPage data(page.bytes(), place->body.page);
        const ByteSpan bytes = data.row(data.slot(place->body.slot));
        into.table_ = this;
        into.row_ = row;
        into.bytes_.assign(bytes.begin(), bytes.end());
        into.reader_ = RowReader(into.bytes_, def_);
        return true;
    } catch (const Error& error) {
        if (!database_.passes_over(row.page, error)) throw;
        return false;
    }
}

bool Table::exists(RowId row) const {
    try {
        return locate(row).has_value();
    } catch (const Error& error) {
        if (!database_.passes_over(row.page, error)) throw;
        return false;
    }
}

template <class Visitor>
void Table::visit_rows(Visitor&& visitor) const {
    RowView row;
    for (auto id = next_row({}); id; id = next_row(*id)) {
        if (read(*id, row)) visitor(*id, row.reader_);
    }
}

Value Table::coerce(std::size_t position, Value value) const {
    const ColumnDef& column = def().columns.at(position);
    if (column.is_autonumber()) {
        fail(errors::kNotUpdatable, "The auto-number " + described(def_, column) + " cannot be assigned.");
    }
    return coerce_value(column, std::move(value));
}

void Table::validate(std::size_t position, const Value& value) const {
    const ColumnDef& column = def().columns.at(position);
    if (column.required && jet::is_null(value)) {
        fail(errors::kNullNotAllowed, "A value is required in " + described(def_, column) + ".");
    }
    if (!column.allow_zero_length) {
        const auto* text = std::get_if<std::u16string>(&value);
        if (text && text->empty()) {
            fail(errors::kEmptyNotAllowed, "A zero-length text is not allowed in " + described(def_, column) + ".");
        }
    }
}

std::int32_t Table::take_autonumber() {
    refresh();
    if (autonumber_ == INT32_MAX) {
        fail(errors::kReserved, "The auto-numbers of table '" + to_utf8(def_.name) + "' are used up.");
    }
    return ++autonumber_;
}

void Table::flush_autonumber() {
    if (stale_ || autonumber_ == def_.last_autonumber) return;
    Transaction transaction(database_.pager());
    store_counts();
    transaction.commit();
}

// Row count, auto-number and index statistics, where the definition keeps them.
void Table::store_counts() {
    const MutablePage page = database_.pager().modify(def_.page);
    def_.last_autonumber = std::max(def_.last_autonumber, autonumber_);
    store_u32(page.bytes(), jet4::tdef::kRowCount, def_.row_count);
    store_u32(page.bytes(), jet4::tdef::kLastAutoNumber, static_cast<std::uint32_t>(def_.last_autonumber));
    for (std::size_t i = 0; i < def_.real_indexes.size(); ++i) {
        store_u32(page.bytes(), jet4::tdef::kFixedHeader + i * jet4::tdef::kIndexStatistics + 4,
                  def_.real_indexes[i].distinct_keys);
    }
}

ByteVector Table::encode_fitting(std::vector<StoredValue>& stored) {
    ByteVector row = encode_row(def_, stored);
    LongValues values_on_pages = long_values();
    // A row that is too long gives its inline long values away, one by one.
    for (std::size_t i = 0; i < stored.size() && row.size() > jet4::data::kMaxRow; ++i) {
        const ColumnDef& column = def_.columns[i];
        if (!column.is_long() || !stored[i] || stored[i]->size() <= jet4::long_value::kReference) continue;
        stored[i] = values_on_pages.write(column, values_on_pages.read(*stored[i]), false);
        row = encode_row(def_, stored);
    }
    if (row.size() > jet4::data::kMaxRow) {
        fail(errors::kRowTooLarge, "A row of table '" + to_utf8(def_.name) +
                                       "' would be too large: " + std::to_string(row.size()) + " of at most " +
                                       std::to_string(jet4::data::kMaxRow) + " bytes.");
    }
    return row;
}

RowId Table::place_row(ByteSpan row, std::uint16_t flags) {
    Pager& pager = database_.pager();
    const auto fits = [&](PageNumber page_no) {
        // A row on a page outside of the table's map would never be found again.
        if (!owned_.contains(page_no)) corrupt(page_no, "a page with room for rows is not one of its table");
        const Page page = pager.read(page_no);
        return is_own_page(page) && DataPage(page.bytes(), page_no).has_room(row.size());
    };
    PageNumber target = 0;
    if (insert_hint_ != 0 && fits(insert_hint_)) {
        target = insert_hint_;
    } else {
        for (auto page_no = free_.next(0); page_no; page_no = free_.next(*page_no + 1)) {
            if (fits(*page_no)) {
                target = *page_no;
                break;
            }
            // A page that could not take a row is not offered again until something on it is deleted.
            free_.remove(*page_no);
        }
    }
    if (target == 0) {
        const MutablePage page = database_.allocator().allocate();
        target = page.number();
        format_data_page(page.bytes(), def_.page);
        owned_.add(target);
        free_.add(target);
    }
    insert_hint_ = target;
    const MutablePage page = pager.modify(target);
    return {target, add_row(page.bytes(), target, row, flags)};
}

void Table::remove_slot(RowId slot) {
    const MutablePage page = database_.pager().modify(slot.page);
    delete_row(page.bytes(), slot.page, slot.slot);
    if (DataPage(page.bytes(), slot.page).all_deleted()) {
        owned_.remove(slot.page);
        free_.remove(slot.page);
        database_.allocator().free(slot.page);
        if (insert_hint_ == slot.page) insert_hint_ = 0;
    } else {
        free_.add(slot.page);
    }
}

void Table::move_row(const Place& place, ByteSpan row) {
    Pager& pager = database_.pager();
    {
        const Page page = pager.read(place.body.page);
        const DataPage data(page.bytes(), place.body.page);
        const std::size_t old_length = data.slot(place.body.slot).length;
        if (row.size() <= old_length + data.gap()) {
            const bool shrinks = row.size() < old_length;
            const MutablePage writable = pager.modify(place.body.page);
            replace_row(writable.bytes(), place.body.page, place.body.slot, row);
            if (shrinks) free_.add(place.body.page);
            return;
        }
    }
    const RowId body = place_row(row, jet4::data::kBodyFlag);
    ByteVector pointer;
    append_u32(pointer, body.pack());
    if (place.home == place.body) {
        const MutablePage page = pager.modify(place.home.page);
        replace_row(page.bytes(), place.home.page, place.home.slot, pointer);
        set_slot_flags(page.bytes(), place.home.page, place.home.slot, jet4::data::kMovedFlag);
        free_.add(place.home.page);
        return;
    }
    {
        const MutablePage page = pager.modify(place.pointer.page);
        const Slot slot = DataPage(page.bytes(), place.pointer.page).slot(place.pointer.slot);
        store_bytes(page.bytes(), slot.offset, pointer);
    }
    remove_slot(place.body);
}

// The row's values as far as an index asks for them, by position.
std::vector<Value> Table::key_values(const RowView& row) const {
    std::vector<Value> values(def_.columns.size());
    for (const RealIndex& index : def_.real_indexes) {
        for (const KeyColumn& key : index.columns) {
            if (const auto position = def_.column_by_number(key.column_number))
                values[*position] = row.value(*position);
        }
    }
    return values;
}

std::vector<ByteVector> Table::index_keys(std::span<const Value> values) const {
    std::vector<ByteVector> keys(def_.real_indexes.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RealIndex& index = def_.real_indexes[i];
        if (index.ignore_nulls() && all_null_key(index, def_, values)) continue;
        keys[i] = make_index_key(index, def_, values);
    }
    return keys;
}

// Before anything is written: no duplicate in a unique index, no Null where an index requires a value.
void Table::check_indexes(std::span<const Value> values, const std::vector<ByteVector>* old_keys) const {
    const std::vector<ByteVector> keys = index_keys(values);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RealIndex& index = def_.real_indexes[i];
        if (index.required()) {
            for (const KeyColumn& key : index.columns) {
                const auto position = def_.column_by_number(key.column_number);
                if (position && jet::is_null(values[*position])) {
                    fail(errors::kNullNotAllowed,
                         "An index requires a value in " + described(def_, def_.columns[*position]) + ".");
                }
            }
        }
        if (!index.unique() || keys[i].empty() || all_null_key(index, def_, values)) continue;
        if (old_keys && (*old_keys)[i] == keys[i]) continue;
        const Index tree(database_.pager(), database_.allocator(), def_.page, index.root, index.map);
        if (tree.find(keys[i])) {
            fail(errors::kDuplicateKey,
                 "The change would create duplicate values in a unique index of table '" + to_utf8(def_.name) + "'.");
        }
    }
}

void Table::change_index(std::size_t position, const ByteVector* old_key, const ByteVector* new_key, RowId row) {
    if (old_key && new_key && *old_key == *new_key) return;
    RealIndex& index = def_.real_indexes[position];
    Index tree(database_.pager(), database_.allocator(), def_.page, index.root, index.map);
    if (old_key) tree.erase(*old_key, row);
    if (new_key && tree.insert(*new_key, row)) ++index.distinct_keys;
}

template <class ValueAt>
Table::MapKeys Table::map_keys(const ValueAt& value_at) const {
    MapKeys keys;
    keys.reserve(column_maps_.size());
    for (const auto& [position, map] : column_maps_) keys.push_back(ColumnMap::key_of(value_at(position)));
    return keys;
}

// The row has changed for good: should there be no memory to say so in the maps, they are made anew at their next use.
void Table::move_in_maps(RowId row, const MapKeys& from, const MapKeys& to) noexcept {
    try {
        std::size_t i = 0;
        for (auto& [position, map] : column_maps_) {
            if (from[i] != to[i] && to[i]) map.insert({*to[i], row.pack()});
            if (from[i] != to[i] && from[i]) map.erase({*from[i], row.pack()});
            ++i;
        }
    } catch (const std::bad_alloc&) {
        column_maps_.clear();
    }
}

RowId Table::insert(std::vector<Value> values) {
    require_writable();
    values.resize(def_.columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColumnDef& column = def_.columns[i];
        const bool numbers_itself = column.is_autonumber() && column.type == ColumnType::kLong;
        if (numbers_itself && jet::is_null(values[i])) values[i] = take_autonumber();
        values[i] = coerce_value(column, std::move(values[i]));
        if (numbers_itself) autonumber_ = std::max(autonumber_, std::get<std::int32_t>(values[i]));
        validate(i, values[i]);
    }
    check_indexes(values, nullptr);
    const MapKeys old_map_keys(column_maps_.size());
    const MapKeys new_map_keys = map_keys([&](std::size_t position) -> const Value& { return values[position]; });

    Transaction transaction(database_.pager());
    LongValues values_on_pages = long_values();
    std::vector<StoredValue> stored(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColumnDef& column = def_.columns[i];
        if (jet::is_null(values[i])) continue;
        if (column.is_long()) {
            const auto* text = std::get_if<std::u16string>(&values[i]);
            stored[i] =
                values_on_pages.write(column, text ? LongValues::encode_memo(*text) : std::get<ByteVector>(values[i]));
        } else {
            stored[i] = encode_value(values[i], column);
        }
    }
    const RowId row = place_row(encode_fitting(stored), 0);
    const std::vector<ByteVector> keys = index_keys(values);
    for (std::size_t i = 0; i < keys.size(); ++i) change_index(i, nullptr, entry_of(keys[i]), row);
    ++def_.row_count;
    store_counts();
    // Before the commit, since they may fail. Should the commit do so, they have noted a place without a row.
    for (TableWatcher* watcher : watchers_) watcher->row_inserted(row);
    transaction.commit();

    move_in_maps(row, old_map_keys, new_map_keys);
    return row;
}

void Table::update(RowId row, std::span<const ColumnChange> changes) {
    require_writable();
    RowView old;
    const auto place = locate(row);
    if (!place || !read(row, old)) fail(errors::kRowDeleted, "The row has been deleted.");

    std::vector<std::pair<std::size_t, Value>> new_values;
    for (const ColumnChange& change : changes) {
        Value value = coerce_value(def_.columns.at(change.position), change.value);
        validate(change.position, value);
        new_values.emplace_back(change.position, std::move(value));
    }
    for (TableWatcher* watcher : watchers_) watcher->row_changing(row);

    const RowReader& reader = old.reader_;
    std::vector<ByteVector> old_keys;
    std::vector<Value> values;
    if (!def_.real_indexes.empty()) {
        values = key_values(old);
        old_keys = index_keys(values);
        for (const auto& [position, value] : new_values) values[position] = value;
        check_indexes(values, &old_keys);
    }
    std::vector<StoredValue> stored(def_.columns.size());
    for (std::size_t i = 0; i < stored.size(); ++i) {
        if (const auto bytes = reader.stored(def_.columns[i])) stored[i].emplace(bytes->begin(), bytes->end());
    }

    const MapKeys old_map_keys = map_keys([&](std::size_t position) { return old.value(position); });
    const MapKeys new_map_keys = map_keys([&](std::size_t position) {
        for (auto change = new_values.rbegin(); change != new_values.rend(); ++change) {
            if (change->first == position) return change->second;
        }
        return old.value(position);
    });

    Transaction transaction(database_.pager());
    LongValues values_on_pages = long_values();
    std::vector<std::pair<std::size_t, ByteVector>> replaced;  // long values to give back
    for (const auto& [position, value] : new_values) {
        const ColumnDef& column = def_.columns[position];
        if (column.is_long() && stored[position]) replaced.emplace_back(position, std::move(*stored[position]));
        stored[position].reset();
        if (jet::is_null(value)) continue;
        if (column.is_long()) {
            const auto* text = std::get_if<std::u16string>(&value);
            stored[position] =
                values_on_pages.write(column, text ? LongValues::encode_memo(*text) : std::get<ByteVector>(value));
        } else {
            stored[position] = encode_value(value, column);
        }
    }
    move_row(*place, encode_fitting(stored));
    for (const auto& [position, reference] : replaced) values_on_pages.release(def_.columns[position], reference);
    if (!def_.real_indexes.empty()) {
        const std::vector<ByteVector> keys = index_keys(values);
        for (std::size_t i = 0; i < keys.size(); ++i) change_index(i, entry_of(old_keys[i]), entry_of(keys[i]), row);
        store_counts();
    }
    transaction.commit();

    move_in_maps(row, old_map_keys, new_map_keys);
}

void Table::erase(RowId row) {
    require_writable();
    RowView old;
    const auto place = locate(row);
    if (!place || !read(row, old)) fail(errors::kRowDeleted, "The row has been deleted.");
    for (TableWatcher* watcher : watchers_) watcher->row_changing(row);

    const MapKeys old_map_keys = map_keys([&](std::size_t position) { return old.value(position); });
    const MapKeys new_map_keys(column_maps_.size());
    const RowReader& reader = old.reader_;
    Transaction transaction(database_.pager());
    if (!def_.real_indexes.empty()) {
        const std::vector<ByteVector> keys = index_keys(key_values(old));
        for (std::size_t i = 0; i < keys.size(); ++i) change_index(i, entry_of(keys[i]), nullptr, row);
    }
    LongValues values_on_pages = long_values();
    for (const ColumnDef& column : def_.columns) {
        if (!column.is_long()) continue;
        if (const auto reference = reader.stored(column)) values_on_pages.release(column, *reference);
    }
    // A moved row goes with every slot its pointers lead through.
    for (RowId slot = place->home; !(slot == place->body);) {
        RowId next;
        {
            const Page page = database_.pager().read(slot.page);
            const DataPage data(page.bytes(), slot.page);
            next = RowId::unpack(load_u32(data.row(data.slot(slot.slot)), 0));
        }
        remove_slot(slot);
        slot = next;
    }
    remove_slot(place->body);
    if (def_.row_count > 0) --def_.row_count;
    store_counts();
    transaction.commit();
    move_in_maps(row, old_map_keys, new_map_keys);
}

const ColumnMap* Table::column_map(std::size_t position) {
    refresh();
    const ColumnDef& column = def_.columns.at(position);
    if (column.type != ColumnType::kLong && column.type != ColumnType::kDate) return nullptr;
    const auto known = column_maps_.find(position);
    if (known != column_maps_.end()) return &known->second;
    ColumnMap map;
    visit_rows([&](RowId row, const RowReader& reader) {
        try {
            const auto stored = reader.stored(column);
            if (!stored) return;
            if (const auto key = ColumnMap::key_of(decode_value(*stored, column))) map.insert({*key, row.pack()});
        } catch (const Error& error) {
            if (!database_.passes_over(row.page, error)) throw;
        }
    });
    return &(column_maps_[position] = std::move(map));
}

}  // namespace jet
