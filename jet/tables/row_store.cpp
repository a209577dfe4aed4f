#include "jet/tables/row_store.h"

#include <algorithm>

#include "jet/base/prefetch.h"

namespace jet {

namespace {

// Pointers a moved row may take before it is taken for a circle.
constexpr int kMaxHops = 32;

}  // namespace

RowStore::RowStore(Storage& storage, const TableDef& def)
    : storage_(&storage), def_(&def), owned_(storage.map(def.owned_map)), free_(storage.map(def.free_map)) {}

std::optional<RowStore::Place> RowStore::locate(RowId row, Page& body) const {
    if (row.is_null()) return std::nullopt;
    if (row.page >= storage_->pager().page_count()) {
        require_inside_file(row.page);
        return std::nullopt;
    }
    Place place{row, row, row};
    for (int hop = 0; hop < kMaxHops; ++hop) {
        body = storage_->pager().read(place.body.page);
        const bool ours =
            hop == 0 ? is_own_page(body.bytes(), row.page) : DataPage::belongs_to(body.bytes(), def_->page);
        if (hop == 0 && !ours) return std::nullopt;
        if (!ours) corrupt(place.body.page, "a moved row leads to a page of another owner");
        const DataPage data(body.bytes(), place.body.page);
        // An address from outside: not a row when nothing of the table is there.
        if (hop == 0 && row.slot >= data.slot_count()) return std::nullopt;
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

void RowStore::require_inside_file(PageNumber page_no) const {
    const PageNumber end = storage_->pager().page_count();
    if (page_no >= end && owned_.contains(page_no)) {
        corrupt(page_no, "from this page on, table '" + to_utf8(def_->name) + "' lies behind the end of the file");
    }
}

// Whether rows of the table may stand on the page. A page of the table's map that says it is somebody else's is damage:
// passed over in silence, its rows would be gone without a word.
bool RowStore::is_own_page(ByteSpan page, PageNumber page_no) const {
    if (DataPage::belongs_to(page, def_->page)) return true;
    if (owned_.contains(page_no)) {
        corrupt(page_no, "the page belongs to table '" + to_utf8(def_->name) + "' and does not hold its rows");
    }
    return false;
}

// The first page of the table at or after `from`.
std::optional<PageNumber> RowStore::next_page(PageNumber from) const {
    while (!map_lost_) {
        try {
            return owned_.next(from);
        } catch (const Error& error) {
            if (!storage_->passes_over(def_->owned_map.page, error)) throw;
            map_lost_ = true;
        }
    }
    for (; from < storage_->pager().page_count(); ++from) {
        try {
            const bool ours = DataPage::belongs_to(storage_->pager().read(from).bytes(), def_->page);
            if (ours && !storage_->allocator().is_free(from)) return from;
        } catch (const Error& error) {
            if (!storage_->passes_over(from, error)) throw;
        }
    }
    return std::nullopt;
}

// The first live row of the page at or after `from`.
std::optional<std::uint8_t> RowStore::next_slot(PageNumber page_no, std::size_t from, Reading* reading) const {
    const Page page = storage_->pager().read(page_no);
    if (!is_own_page(page.bytes(), page_no)) return std::nullopt;
    const DataPage data(page.bytes(), page_no);
    for (; from < data.slot_count(); ++from) {
        const Slot entry = data.slot(from);
        if (entry.is_deleted() || entry.is_body()) continue;
        // Its neighbour, which is next, lies before it and is about as long.
        const std::size_t before = std::min<std::size_t>(entry.length, entry.offset);
        prefetch_bytes(page.bytes().subspan(entry.offset - before, before));
        const auto slot = static_cast<std::uint8_t>(from);
        if (reading != nullptr && !entry.is_moved()) read_here({page_no, slot}, data.row(entry), *reading);
        return slot;
    }
    return std::nullopt;
}

// A row that cannot be read for damage is there all the same.
void RowStore::read_here(RowId row, ByteSpan bytes, const Reading& reading) const {
    try {
        reading.into.fill(*storage_, *def_, row, bytes);
        reading.is_done = true;
    } catch (const Error&) {
        // Who wants its values will be told.
    }
}

std::optional<RowId> RowStore::next(RowId after, Reading* reading) const {
    std::size_t slot = after.is_null() ? 0 : after.slot + 1u;
    std::optional<PageNumber> page_no = after.is_null() ? next_page(0) : std::optional(after.page);
    for (; page_no; page_no = next_page(*page_no + 1)) {
        try {
            require_inside_file(*page_no);
            if (*page_no >= storage_->pager().page_count()) return std::nullopt;
            if (const auto found = next_slot(*page_no, slot, reading)) return RowId{*page_no, *found};
        } catch (const Error& error) {
            if (!storage_->passes_over(*page_no, error)) throw;
            if (*page_no >= storage_->pager().page_count()) return std::nullopt;
        }
        slot = 0;
    }
    return std::nullopt;
}

std::optional<RowStore::Place> RowStore::locate(RowId row, RowView& into) const {
    Page page;
    const auto place = locate(row, page);
    if (!place) return std::nullopt;
    const DataPage data(page.bytes(), place->body.page);
    into.fill(*storage_, *def_, row, data.row(data.slot(place->body.slot)));
    return place;
}

bool RowStore::read(RowId row, RowView& into) const {
    try {
        return locate(row, into).has_value();
    } catch (const Error& error) {
        if (!storage_->passes_over(row.page, error)) throw;
        return false;
    }
}

std::optional<PageNumber> RowStore::visit_page(PageNumber from, PageScan& pages, const Visit& visit) const {
    const std::optional<PageNumber> page_no = next_page(from);
    if (!page_no) return std::nullopt;
    try {
        require_inside_file(*page_no);
        if (*page_no >= storage_->pager().page_count()) return std::nullopt;
        const ByteSpan page = pages.read(*page_no);
        if (is_own_page(page, *page_no)) visit_rows(DataPage(page, *page_no), *page_no, visit);
    } catch (const Error& error) {
        if (!storage_->passes_over(*page_no, error)) throw;
        if (*page_no >= storage_->pager().page_count()) return std::nullopt;
    }
    return page_no;
}

void RowStore::visit_rows(const DataPage& page, PageNumber page_no, const Visit& visit) const {
    for (std::size_t i = 0; i < page.slot_count(); ++i) {
        const Slot slot = page.slot(i);
        if (slot.is_deleted() || slot.is_body()) continue;
        const RowId row{page_no, static_cast<std::uint8_t>(i)};
        try {
            if (!slot.is_moved()) {
                visit(row, RowReader(page.row(slot), *def_));
                continue;
            }
            RowView moved;
            if (read(row, moved)) visit(row, moved.reader());
        } catch (const Error& error) {
            if (!storage_->passes_over(page_no, error)) throw;
        }
    }
}

bool RowStore::exists(RowId row) const {
    try {
        return locate(row).has_value();
    } catch (const Error& error) {
        if (!storage_->passes_over(row.page, error)) throw;
        return false;
    }
}

bool RowStore::fits(PageNumber page_no, std::size_t length) const {
    // A row on a page outside of the table's map would never be found again.
    if (!owned_.contains(page_no)) corrupt(page_no, "a page with room for rows is not one of its table");
    const Page page = storage_->pager().read(page_no);
    return is_own_page(page.bytes(), page_no) && DataPage(page.bytes(), page_no).has_room(length);
}

PageNumber RowStore::page_with_room(std::size_t length) {
    if (insert_hint_ != 0 && fits(insert_hint_, length)) return insert_hint_;
    for (auto page_no = free_.next(0); page_no; page_no = free_.next(*page_no + 1)) {
        if (fits(*page_no, length)) return *page_no;
        free_.remove(*page_no);
    }
    const MutablePage page = storage_->allocator().allocate();
    format_data_page(page.bytes(), def_->page);
    owned_.add(page.number());
    free_.add(page.number());
    return page.number();
}

RowId RowStore::place(ByteSpan row, std::uint16_t flags) {
    insert_hint_ = page_with_room(row.size());
    const MutablePage page = storage_->pager().modify(insert_hint_);
    return {insert_hint_, add_row(page.bytes(), insert_hint_, row, flags)};
}

// False when the row's page has no room for its new length.
bool RowStore::replace_in_place(RowId body, ByteSpan row) {
    std::size_t old_length = 0;
    {
        const Page page = storage_->pager().read(body.page);
        const DataPage data(page.bytes(), body.page);
        old_length = data.slot(body.slot).length;
        if (row.size() > old_length + data.gap()) return false;
    }
    const MutablePage page = storage_->pager().modify(body.page);
    replace_row(page.bytes(), body.page, body.slot, row);
    if (row.size() < old_length) free_.add(body.page);
    return true;
}

void RowStore::replace(const Place& place, ByteSpan row) {
    if (replace_in_place(place.body, row)) return;
    const RowId body = this->place(row, jet4::data::kBodyFlag);
    ByteVector pointer;
    append_u32(pointer, body.pack());
    if (place.home == place.body) {
        const MutablePage page = storage_->pager().modify(place.home.page);
        replace_row(page.bytes(), place.home.page, place.home.slot, pointer);
        set_slot_flags(page.bytes(), place.home.page, place.home.slot, jet4::data::kMovedFlag);
        free_.add(place.home.page);
        return;
    }
    {
        const MutablePage page = storage_->pager().modify(place.pointer.page);
        const Slot slot = DataPage(page.bytes(), place.pointer.page).slot(place.pointer.slot);
        store_bytes(page.bytes(), slot.offset, pointer);
    }
    remove_slot(place.body);
}

RowId RowStore::pointed_at(RowId slot) const {
    const Page page = storage_->pager().read(slot.page);
    const DataPage data(page.bytes(), slot.page);
    return RowId::unpack(load_u32(data.row(data.slot(slot.slot)), 0));
}

void RowStore::remove(const Place& place) {
    for (RowId slot = place.home; !(slot == place.body);) {
        const RowId next = pointed_at(slot);
        remove_slot(slot);
        slot = next;
    }
    remove_slot(place.body);
}

void RowStore::remove_slot(RowId slot) {
    const MutablePage page = storage_->pager().modify(slot.page);
    delete_row(page.bytes(), slot.page, slot.slot);
    if (!DataPage(page.bytes(), slot.page).all_deleted()) {
        free_.add(slot.page);
        return;
    }
    owned_.remove(slot.page);
    free_.remove(slot.page);
    storage_->allocator().free(slot.page);
    if (insert_hint_ == slot.page) insert_hint_ = 0;
}

}  // namespace jet
