#include "jet/storage/usage_map.h"

#include <algorithm>
#include <bit>

#include "jet/storage/data_page.h"

namespace jet {

namespace usage = jet4::usage;

namespace {

// First set bit at or after `from`, in bits from the start of `bitmap`.
std::optional<std::size_t> next_bit(ByteSpan bitmap, std::size_t from) {
    std::size_t byte = from / 8;
    if (byte >= bitmap.size()) return std::nullopt;
    if (const unsigned rest = bitmap[byte] >> (from % 8)) {
        return from + static_cast<std::size_t>(std::countr_zero(rest));
    }
    for (++byte; byte < bitmap.size() && byte % 8 != 0; ++byte) {
        if (bitmap[byte] != 0) return 8 * byte + static_cast<std::size_t>(std::countr_zero(unsigned{bitmap[byte]}));
    }
    for (; byte + 8 <= bitmap.size(); byte += 8) {
        if (const std::uint64_t word = load_u64(bitmap, byte)) {
            return 8 * byte + static_cast<std::size_t>(std::countr_zero(word));
        }
    }
    for (; byte < bitmap.size(); ++byte) {
        if (bitmap[byte] != 0) return 8 * byte + static_cast<std::size_t>(std::countr_zero(unsigned{bitmap[byte]}));
    }
    return std::nullopt;
}

bool test_bit(ByteSpan bitmap, std::size_t bit) { return (load_u8(bitmap, bit / 8) >> (bit % 8) & 1) != 0; }
void set_bit(MutableByteSpan bitmap, std::size_t bit, bool on) {
    check_range(bitmap, bit / 8, 1);
    const auto mask = static_cast<std::uint8_t>(1 << (bit % 8));
    bitmap[bit / 8] = static_cast<std::uint8_t>(on ? bitmap[bit / 8] | mask : bitmap[bit / 8] & ~mask);
}

// A map row, taken apart: the one place where a map is loaded, and where all its numbers are checked.
//  - The row is a live one on a page of usage maps, and holds the head of a map of a known kind.
//  - A window begins inside the largest file, so that no page number in it wraps around.
//  - Bitmap pages lie inside the largest file, behind its fixed pages, and none stands for two blocks. That they are
//    bitmap pages of this file is seen when they are read (bitmap_of).
struct MapRow {
    const Format* format;
    ByteSpan bytes;
    bool reference = false;
    PageNumber start = 0;  // inline only
    ByteSpan bitmap;       // inline only

    MapRow(ByteSpan page, RowId row) : format(&format_of(page)), bytes(live_row(page, row)) {
        if (bytes.size() < usage::kBitmap) corrupt(row.page, "a usage map is shorter than its head");
        if (bytes[0] > usage::kReference) corrupt(row.page, "a usage map is of an unknown kind");
        reference = bytes[0] == usage::kReference;
        if (reference) {
            check_pointers(row.page);
            return;
        }
        start = load_u32(bytes, usage::kStart);
        if (start >= jet4::kMaxPages) corrupt(row.page, "a usage map begins behind the largest file");
        bitmap = bytes.subspan(usage::kBitmap);
    }
    // What lies behind the last block of the largest file is nobody's.
    std::size_t pointers() const {
        return std::min((bytes.size() - usage::kPointers) / usage::kPointer, format->max_bitmaps());
    }
    PageNumber pointer(std::size_t k) const { return load_u32(bytes, usage::kPointers + usage::kPointer * k); }
    std::uint32_t pages_per_bitmap() const { return format->usage.pages_per_bitmap; }
    bool covers(PageNumber page_no) const { return page_no >= start && page_no - start < 8 * bitmap.size(); }

private:
    static ByteSpan live_row(ByteSpan page, RowId row) {
        const PageNumber owner = row.page == jet4::kGlobalMapPage ? row.page : jet4::data::kUsageMapOwner;
        if (!DataPage::belongs_to(page, owner)) corrupt(row.page, "a usage map is on a page that holds none");
        const DataPage data(page, row.page);
        const Slot slot = data.slot(row.slot);
        if (!slot.is_live()) corrupt(row.page, "a usage map is not a live row");
        return data.row(slot);
    }
    void check_pointers(PageNumber page_no) const {
        for (std::size_t k = 0; k < pointers(); ++k) {
            if (pointer(k) == 0) continue;
            if (pointer(k) <= jet4::kRelationshipsPage || pointer(k) >= jet4::kMaxPages) {
                corrupt(page_no, "the bits of a usage map cannot be where it says");
            }
            for (std::size_t before = 0; before < k; ++before) {
                if (pointer(before) == pointer(k)) corrupt(page_no, "a usage map names a page of bits twice");
            }
        }
    }
};

// The bytes of a map row that has been loaded.
MutableByteSpan map_bytes(const MutablePage& page, RowId row) {
    const Slot slot = DataPage(page.bytes(), row.page).slot(row.slot);
    return page.bytes().subspan(slot.offset, slot.length);
}

ByteSpan bitmap_of(const Page& page) {
    if (page.bytes()[0] != jet4::kUsageBitmapPage) corrupt(page.number(), "a bitmap page was expected");
    return page.bytes().subspan(usage::kPagePrefix);
}

bool map_contains(Pager& pager, RowId row, PageNumber page_no) {
    const Page page = pager.read(row.page);
    const MapRow map(page.bytes(), row);
    if (!map.reference) return map.covers(page_no) && test_bit(map.bitmap, page_no - map.start);
    const std::size_t k = page_no / map.pages_per_bitmap();
    if (k >= map.pointers() || map.pointer(k) == 0) return false;
    return test_bit(bitmap_of(pager.read(map.pointer(k))), page_no % map.pages_per_bitmap());
}

std::optional<PageNumber> map_next(Pager& pager, RowId row, PageNumber from) {
    const Page page = pager.read(row.page);
    const MapRow map(page.bytes(), row);
    if (!map.reference) {
        const auto bit = next_bit(map.bitmap, from > map.start ? from - map.start : 0);
        if (!bit || std::uint64_t{*bit} + map.start >= jet4::kMaxPages) return std::nullopt;
        return map.start + static_cast<PageNumber>(*bit);
    }
    const std::uint32_t per_bitmap = map.pages_per_bitmap();
    for (std::size_t k = from / per_bitmap; k < map.pointers(); ++k) {
        if (map.pointer(k) != 0) {
            const Page bitmap = pager.read(map.pointer(k));
            if (const auto bit = next_bit(bitmap_of(bitmap), from % per_bitmap)) {
                return static_cast<PageNumber>(k * per_bitmap + *bit);
            }
        }
        from = static_cast<PageNumber>((k + 1) * per_bitmap);
    }
    return std::nullopt;
}

std::vector<PageNumber> map_bitmap_pages(Pager& pager, RowId row) {
    std::vector<PageNumber> pages;
    if (row.is_null()) return pages;
    const Page page = pager.read(row.page);
    const MapRow map(page.bytes(), row);
    for (std::size_t k = 0; map.reference && k < map.pointers(); ++k) {
        if (map.pointer(k) == 0) continue;
        bitmap_of(pager.read(map.pointer(k)));
        pages.push_back(map.pointer(k));
    }
    return pages;
}

void format_bitmap_page(MutableByteSpan page, std::uint8_t fill) {
    std::fill(page.begin(), page.end(), fill);
    page[0] = jet4::kUsageBitmapPage;
    page[1] = 1;
    page[2] = page[3] = 0;
}

}  // namespace

bool UsageMap::contains(PageNumber page_no) const { return !row_.is_null() && map_contains(*pager_, row_, page_no); }

std::optional<PageNumber> UsageMap::next(PageNumber from) const {
    if (row_.is_null()) return std::nullopt;
    return map_next(*pager_, row_, from);
}

std::vector<PageNumber> UsageMap::bitmap_pages() const { return map_bitmap_pages(*pager_, row_); }

void UsageMap::remove(PageNumber page_no) {
    if (!contains(page_no)) return;
    const Page page = pager_->read(row_.page);
    const MapRow map(page.bytes(), row_);
    if (map.reference) {
        const MutablePage bitmap = pager_->modify(map.pointer(page_no / map.pages_per_bitmap()));
        set_bit(bitmap.bytes().subspan(usage::kPagePrefix), page_no % map.pages_per_bitmap(), false);
    } else {
        const MutablePage writable = pager_->modify(row_.page);
        set_bit(map_bytes(writable, row_).subspan(usage::kBitmap), page_no - map.start, false);
    }
}

void UsageMap::add(PageNumber page_no) {
    if (row_.is_null()) corrupt(page_no, "a page was to be added to a usage map that is not there");
    if (contains(page_no)) return;
    const std::uint32_t per_bitmap = pager_->format().usage.pages_per_bitmap;
    const std::size_t k = page_no / per_bitmap;
    {
        // Where the map's bitmap page is there already, it alone changes.
        const Page page = pager_->read(row_.page);
        const MapRow map(page.bytes(), row_);
        if (map.reference && k < map.pointers() && map.pointer(k) != 0) {
            const MutablePage bitmap = pager_->modify(map.pointer(k));
            bitmap_of(bitmap);
            set_bit(bitmap.bytes().subspan(usage::kPagePrefix), page_no % per_bitmap, true);
            return;
        }
    }
    const MutablePage page = pager_->modify(row_.page);
    const MapRow map(page.bytes(), row_);
    const MutableByteSpan row = map_bytes(page, row_);
    if (!map.reference) {
        if (map.covers(page_no)) {
            set_bit(row.subspan(usage::kBitmap), page_no - map.start, true);
            return;
        }
        // Out of its reach: move the window when all members still fit, else go over to bitmap pages.
        std::vector<PageNumber> members;
        for (auto bit = next_bit(map.bitmap, 0); bit; bit = next_bit(map.bitmap, *bit + 1)) {
            members.push_back(map.start + static_cast<PageNumber>(*bit));
        }
        if (!members.empty() && members.back() >= jet4::kMaxPages) {
            corrupt(row_.page, "a usage map names a page behind the largest file");
        }
        members.insert(std::upper_bound(members.begin(), members.end(), page_no), page_no);
        const PageNumber start = members.front() & ~7u;
        std::fill(row.begin(), row.end(), std::uint8_t{0});
        if (members.back() - start < 8 * (row.size() - usage::kBitmap)) {
            store_u32(row, usage::kStart, start);
            for (PageNumber member : members) set_bit(row.subspan(usage::kBitmap), member - start, true);
            return;
        }
        row[0] = usage::kReference;
        for (PageNumber member : members) add(member);
        return;
    }
    if (k >= map.pointers()) corrupt(row_.page, "a usage map has no room for a page of its file");
    const MutablePage bitmap = allocator_->allocate();
    format_bitmap_page(bitmap.bytes(), 0);
    set_bit(bitmap.bytes().subspan(usage::kPagePrefix), page_no % per_bitmap, true);
    store_u32(row, usage::kPointers + usage::kPointer * k, bitmap.number());
}

void UsageMap::destroy() {
    if (row_.is_null()) return;
    for (PageNumber bitmap : bitmap_pages()) allocator_->free(bitmap);
    const MutablePage page = pager_->modify(row_.page);
    delete_row(page.bytes(), row_.page, row_.slot);
    if (DataPage(page.bytes(), row_.page).all_deleted() && row_.page != jet4::kGlobalMapPage)
        allocator_->free(row_.page);
    row_ = {};
}

namespace {
constexpr RowId kGlobalMapRow{jet4::kGlobalMapPage, 0};
}

bool PageAllocator::is_free(PageNumber page_no) const {
    return page_no >= pager_.page_count() || map_contains(pager_, kGlobalMapRow, page_no);
}

std::vector<PageNumber> PageAllocator::bitmap_pages() const { return map_bitmap_pages(pager_, kGlobalMapRow); }

// What a page marked free shows of being in use all the same: handed out, it would lose what stands on it.
void PageAllocator::check_unused(PageNumber page_no) const {
    if (page_no <= jet4::kRelationshipsPage) corrupt(page_no, "a page of the catalogue is marked free");
    const Page page = pager_.read(page_no);
    if (page.bytes()[0] == jet4::kUsageBitmapPage) {
        const std::vector<PageNumber> bitmaps = bitmap_pages();
        if (std::find(bitmaps.begin(), bitmaps.end(), page_no) != bitmaps.end()) {
            corrupt(page_no, "a page of the map of free pages is marked free");
        }
    }
    if (page.bytes()[0] != jet4::kDataPage) return;
    // Rows of a table: the table's own map says whether they are still its. Most freed pages have none.
    const PageNumber owner = load_u32(page.bytes(), jet4::data::kOwner);
    if (owner < jet4::kObjectsPage || owner >= pager_.page_count()) return;
    bool in_use = false;
    try {
        if (DataPage(page.bytes(), page_no).all_deleted()) return;
        const Page definition = pager_.read(owner);
        if (definition.bytes()[0] != jet4::kTableDefPage) return;
        const RowId map = RowId::unpack(load_u32(definition.bytes(), pager_.format().definition.owned_map));
        in_use = map_contains(pager_, map, page_no);
    } catch (const Error& error) {
        // What a free page holds need not make sense.
        if (error.number() != errors::kDamaged) throw;
    }
    if (in_use) corrupt(page_no, "the page holds rows of a table and is marked free");
}

MutablePage PageAllocator::allocate() {
    const auto lowest =
        map_next(pager_, kGlobalMapRow, std::max<PageNumber>(lowest_free_hint_, jet4::kGlobalMapPage + 1));
    if (lowest && *lowest < pager_.page_count()) {
        check_unused(*lowest);
        set_free(*lowest, false);
        lowest_free_hint_ = *lowest + 1;
        MutablePage page = pager_.modify(*lowest);
        std::fill(page.bytes().begin(), page.bytes().end(), std::uint8_t{0});
        return page;
    }
    lowest_free_hint_ = pager_.page_count();
    MutablePage page = pager_.extend();
    set_free(page.number(), false);
    return page;
}

void PageAllocator::free(PageNumber page_no) {
    if (page_no <= jet4::kRelationshipsPage || page_no >= pager_.page_count()) {
        corrupt(page_no, "a page was to be freed that cannot be free");
    }
    lowest_free_hint_ = std::min(lowest_free_hint_, page_no);
    set_free(page_no, true);
}

// Where the map says nothing of the page yet, it grows.
void PageAllocator::set_free(PageNumber page_no, bool is_free) {
    const MutablePage page = pager_.modify(jet4::kGlobalMapPage);
    const MapRow map(page.bytes(), kGlobalMapRow);
    if (!map.reference) {
        if (map.covers(page_no)) {
            set_bit(map_bytes(page, kGlobalMapRow).subspan(usage::kBitmap), page_no - map.start, is_free);
            return;
        }
        // What lies before a window that another program has moved is in use as it is.
        if (!is_free && page_no < map.start) return;
        use_bitmap_pages(page);
        return set_free(page_no, is_free);
    }
    const std::uint32_t per_bitmap = map.pages_per_bitmap();
    const std::size_t k = page_no / per_bitmap;
    if (k >= map.pointers()) corrupt(jet4::kGlobalMapPage, "the map of free pages has no room for a page of its file");
    if (map.pointer(k) == 0) {
        add_bitmap_page(page, k);
        return set_free(page_no, is_free);
    }
    const MutablePage bitmap = pager_.modify(map.pointer(k));
    bitmap_of(bitmap);
    set_bit(bitmap.bytes().subspan(usage::kPagePrefix), page_no % per_bitmap, is_free);
}

// Beyond the inline bits: from now on through bitmap pages, which take over the bits of the window wherever it is.
void PageAllocator::use_bitmap_pages(const MutablePage& page) {
    const MutableByteSpan row = map_bytes(page, kGlobalMapRow);
    const PageNumber start = MapRow(page.bytes(), kGlobalMapRow).start;
    const ByteVector bits(row.begin() + usage::kBitmap, row.end());
    const std::uint64_t end = std::min<std::uint64_t>(start + 8 * std::uint64_t{bits.size()}, jet4::kMaxPages);
    std::fill(row.begin(), row.end(), std::uint8_t{0});
    row[0] = usage::kReference;
    const std::uint32_t per_bitmap = pager_.format().usage.pages_per_bitmap;
    for (std::size_t k = start / per_bitmap; std::uint64_t{k} * per_bitmap < end; ++k) {
        const MapRow map(page.bytes(), kGlobalMapRow);
        if (k >= map.pointers()) corrupt(jet4::kGlobalMapPage, "the map of free pages has no room for its own pages");
        if (map.pointer(k) == 0) add_bitmap_page(page, k);
    }
    const std::vector<PageNumber> bitmaps = bitmap_pages();
    for (std::uint64_t member = start; member < end; ++member) {
        const auto page_no = static_cast<PageNumber>(member);
        if (std::find(bitmaps.begin(), bitmaps.end(), page_no) != bitmaps.end()) continue;
        set_free(page_no, test_bit(bits, page_no - start));
    }
}

// A page of bits for a block that has none: pages of the file are in use, as the map has said so far, those behind its
// end are free.
void PageAllocator::add_bitmap_page(const MutablePage& page, std::size_t k) {
    const std::uint32_t per_bitmap = pager_.format().usage.pages_per_bitmap;
    const std::uint64_t first = std::uint64_t{k} * per_bitmap;
    const MutablePage bitmap = pager_.extend();
    format_bitmap_page(bitmap.bytes(), 0xFF);
    const std::uint64_t end = std::min<std::uint64_t>(pager_.page_count(), first + per_bitmap);
    for (std::uint64_t member = first; member < end; ++member) {
        set_bit(bitmap.bytes().subspan(usage::kPagePrefix), static_cast<std::size_t>(member - first), false);
    }
    store_u32(map_bytes(page, kGlobalMapRow), usage::kPointers + usage::kPointer * k, bitmap.number());
    if (bitmap.number() / per_bitmap != k) set_free(bitmap.number(), false);
}

RowId PageAllocator::create_map(PageNumber* page_no, PageNumber member) {
    ByteVector row(pager_.format().usage.default_row, 0);
    if (member != 0) {
        store_u32(row, usage::kStart, member & ~7u);
        set_bit(MutableByteSpan(row).subspan(usage::kBitmap), member & 7u, true);
    }
    if (*page_no != 0) {
        const Page page = pager_.read(*page_no);
        if (!DataPage(page.bytes(), *page_no).has_room(row.size())) *page_no = 0;
    }
    if (*page_no == 0) {
        const MutablePage page = allocate();
        format_data_page(page.bytes(), jet4::data::kUsageMapOwner);
        *page_no = page.number();
    }
    const MutablePage page = pager_.modify(*page_no);
    return {*page_no, add_row(page.bytes(), *page_no, row)};
}

}  // namespace jet
