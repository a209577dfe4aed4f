// Rules about usage maps and about the slots of any data page.
#include <algorithm>

#include "jet/check/check_parts.h"

namespace jet::check {

namespace data = jet4::data;
namespace usage = jet4::usage;

namespace {

// Appends the pages whose bits are set; bit 0 stands for `first`. False when some lie behind the end.
bool collect_bits(ByteSpan bitmap, std::uint64_t first, std::uint32_t page_count, std::vector<PageNumber>& members) {
    bool inside = true;
    for (std::size_t at = 0; at < bitmap.size(); ++at) {
        if (bitmap[at] == 0) continue;
        for (std::size_t bit = 0; bit < 8; ++bit) {
            if ((bitmap[at] >> bit & 1) == 0) continue;
            const std::uint64_t page = first + 8 * at + bit;
            if (page < page_count) {
                members.push_back(static_cast<PageNumber>(page));
            } else {
                inside = false;
            }
        }
    }
    return inside;
}

}  // namespace

std::optional<std::vector<CheckedSlot>> Context::read_slots(PageNumber page_no, ByteSpan bytes) {
    const Format& format = format_of(bytes);
    const std::size_t count = load_u16(bytes, format.data.slot_count);
    const std::size_t slots_end = format.slot_at(count);
    if (count > data::kMaxSlots) {
        report(page_no, -1, "slot-count", "The page has " + std::to_string(count) + " slots.");
        return std::nullopt;
    }
    std::vector<CheckedSlot> slots(count);
    std::size_t end = bytes.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t slot = load_u16(bytes, format.slot_at(i));
        const std::uint16_t offset = slot & data::kOffsetMask;
        if (offset > end || offset < slots_end) {
            report(page_no, static_cast<int>(i), "slot-order",
                   "The slot's offset " + std::to_string(offset) + " is not between the slots and the row before.");
            return std::nullopt;
        }
        const auto flags = static_cast<std::uint16_t>(slot & data::kDeletedFlags);
        slots[i] = {flags, offset, static_cast<std::uint16_t>(end - offset)};
        end = offset;
    }
    const std::size_t stored = load_u16(bytes, data::kFree);
    if (stored != end - slots_end) {
        report(page_no, -1, "page-free-count",
               "The page says " + std::to_string(stored) + " bytes are free, it has " +
                   std::to_string(end - slots_end) + ".");
    }
    return slots;
}

bool Context::claim_map_row(RowId row, std::string_view whose) {
    const bool known_page = map_rows_.count(row.page) != 0;
    if (!known_page) claim(row.page, Use::kMapRows);
    if (map_rows_[row.page].insert(row)) return true;
    report(row.page, row.slot, "map-row-twice", "A second map stands in this row: of " + std::string(whose) + ".");
    return false;
}

std::optional<std::vector<PageNumber>> Context::read_map(RowId row, std::string_view whose) {
    std::vector<PageNumber> members;
    if (row.is_null()) return members;
    if (!claim_map_row(row, whose)) {
        mark_incomplete();
        return std::nullopt;
    }
    bool inside = true;
    const bool read = guard(row.page, "map", [&] {
        const Page page = pager.read(row.page);
        const ByteSpan bytes = page.bytes();
        const std::uint32_t owner = load_u32(bytes, data::kOwner);
        const bool own = row.page == jet4::kGlobalMapPage ? owner == row.page : owner == data::kUsageMapOwner;
        if (bytes[0] != jet4::kDataPage || !own) corrupt(row.page, "the page is not one of usage maps");
        // Of the other slots finish_map_pages speaks.
        const Format& format = format_of(bytes);
        if (row.slot >= load_u16(bytes, format.data.slot_count)) corrupt(row.page, "a usage map is not there");
        const std::size_t at = format.slot_at(row.slot);
        const std::uint16_t slot = load_u16(bytes, at);
        const std::size_t end = row.slot == 0 ? bytes.size() : load_u16(bytes, at - 2) & data::kOffsetMask;
        const std::size_t begin = slot & data::kOffsetMask;
        if ((slot & data::kDeletedFlags) != 0 || begin > end) corrupt(row.page, "a usage map is not a live row");
        const ByteSpan map = slice(bytes, begin, end - begin);
        const std::uint8_t kind = load_u8(map, 0);
        if (kind == usage::kInline) {
            const PageNumber start = load_u32(map, usage::kStart);
            inside = collect_bits(map.subspan(usage::kBitmap), start, pager.page_count(), members);
            return;
        }
        if (kind != usage::kReference) corrupt(row.page, "a usage map is of an unknown kind");
        for (std::size_t k = 0; usage::kPointers + usage::kPointer * (k + 1) <= map.size(); ++k) {
            const PageNumber bitmap_no = load_u32(map, usage::kPointers + usage::kPointer * k);
            if (bitmap_no == 0) continue;
            if (!claim(bitmap_no, Use::kBitmap)) corrupt(row.page, "a usage map's bits cannot be where it says");
            const Page bitmap = pager.read(bitmap_no);
            if (bitmap.bytes()[0] != jet4::kUsageBitmapPage) corrupt(bitmap_no, "the page does not hold a map's bits");
            const ByteSpan bits = bitmap.bytes().subspan(usage::kPagePrefix);
            inside &= collect_bits(bits, std::uint64_t{k} * format.usage.pages_per_bitmap, pager.page_count(), members);
        }
    });
    if (!inside) {
        report(row.page, row.slot, "map-range", "The map of " + std::string(whose) + " names pages behind the end.");
    }
    if (read) return members;
    mark_incomplete();
    return std::nullopt;
}

void Context::check_free_map(RowId row, const std::vector<PageNumber>& owned, const std::string& whose) {
    for (const PageNumber page : read_map(row, whose).value_or(std::vector<PageNumber>{})) {
        if (has_page(owned, page)) continue;
        report(page, -1, "free-map", "The page is in the free-space map of " + whose + ", which does not own it.");
    }
}

bool has_page(const std::vector<PageNumber>& pages, PageNumber page) {
    return std::binary_search(pages.begin(), pages.end(), page);
}

void Context::finish_map_pages() {
    for (const auto& entry : map_rows_) {
        const PageNumber page_no = entry.first;
        const RowSet& rows = entry.second;
        guard(page_no, "map", [&] {
            const Page page = pager.read(page_no);
            const auto slots = read_slots(page_no, page.bytes());
            for (std::size_t i = 0; slots && i < slots->size(); ++i) {
                const auto slot = static_cast<std::uint8_t>(i);
                if ((*slots)[i].flags == 0 && !rows.contains({page_no, slot}) && !incomplete_) {
                    report(page_no, slot, "map-row-lost", "The row holds a map that belongs to nothing.");
                }
            }
        });
    }
}

}  // namespace jet::check
