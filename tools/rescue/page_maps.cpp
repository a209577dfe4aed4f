#include "tools/rescue/page_maps.h"

#include "jet/base/jet4.h"
#include "tools/rescue/found_page.h"

namespace tools {
namespace {

namespace usage = jet::jet4::usage;
using jet::PageNumber;

void collect(jet::ByteSpan bits, std::uint64_t first, std::vector<bool>& members) {
    for (std::size_t at = 0; at < bits.size(); ++at) {
        for (std::size_t bit = 0; bits[at] != 0 && bit < 8; ++bit) {
            const std::uint64_t page = first + 8 * at + bit;
            if ((bits[at] >> bit & 1) != 0 && page < members.size()) members[static_cast<std::size_t>(page)] = true;
        }
    }
}

}  // namespace

std::optional<std::vector<bool>> read_page_map(const PageSource& pages, jet::RowId row) {
    if (row.is_null() || row.page >= pages.page_count()) return std::nullopt;
    const jet::ByteVector page = pages.page(row.page);
    const FoundPage found = look_at_page(page, pages.present(row.page));
    if (!found.holds_rows) return std::nullopt;
    for (const FoundSlot& slot : found.slots) {
        if (slot.number != row.slot) continue;
        if (slot.flags != 0 || !slot.is_placed || slot.end - slot.begin < usage::kBitmap) return std::nullopt;
        const jet::ByteSpan map = jet::ByteSpan(page).subspan(slot.begin, slot.end - slot.begin);
        std::vector<bool> members(pages.page_count());
        if (map[0] == usage::kInline) {
            collect(map.subspan(usage::kBitmap), jet::load_u32(map, usage::kStart), members);
            return members;
        }
        if (map[0] != usage::kReference) return std::nullopt;
        for (std::size_t k = 0; 1 + 4 * (k + 1) <= map.size(); ++k) {
            const PageNumber bitmap_no = jet::load_u32(map, 1 + 4 * k);
            if (bitmap_no == 0) continue;
            if (bitmap_no >= pages.page_count()) return std::nullopt;
            const jet::ByteVector bitmap = pages.page(bitmap_no);
            if (bitmap[0] != jet::jet4::kUsageBitmapPage) return std::nullopt;
            collect(jet::ByteSpan(bitmap).subspan(usage::kPagePrefix),
                    std::uint64_t{k} * pages.format().usage.pages_per_bitmap, members);
        }
        return members;
    }
    return std::nullopt;
}

}  // namespace tools
