#include "tools/rescue/found_page.h"

#include <algorithm>

#include "jet/base/format.h"

namespace tools {
namespace {

namespace data = jet::jet4::data;
using jet::ByteSpan;

std::size_t slots_end(ByteSpan page, std::size_t count) { return jet::format_of(page).slot_at(count); }
std::size_t slot_offset(ByteSpan page, std::size_t slot) {
    return jet::load_u16(page, jet::format_of(page).slot_at(slot)) & data::kOffsetMask;
}

// Whether the first `count` slots are in order, each row below the one before it and none over the slots.
bool is_in_order(ByteSpan page, std::size_t count) {
    std::size_t end = page.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t begin = slot_offset(page, i);
        if (begin > end || begin < slots_end(page, count)) return false;
        end = begin;
    }
    return true;
}

// Whether the page's own count of free bytes says the same.
bool has_right_free_count(ByteSpan page, std::size_t count) {
    const std::size_t lowest = count == 0 ? page.size() : slot_offset(page, count - 1);
    return lowest >= slots_end(page, count) && jet::load_u16(page, data::kFree) == lowest - slots_end(page, count);
}

// The number of slots, which may be damaged itself: then the one that order and free count agree on.
std::size_t slot_count(ByteSpan page, bool& agrees) {
    const std::size_t stored = jet::load_u16(page, jet::format_of(page).data.slot_count);
    const auto fits = [&](std::size_t count) { return is_in_order(page, count) && has_right_free_count(page, count); };
    agrees = stored <= data::kMaxSlots + 1 && fits(stored);
    if (agrees) return stored;
    for (std::size_t count = 1; count <= data::kMaxSlots; ++count) {
        if (fits(count)) return count;
    }
    return std::min<std::size_t>(stored, data::kMaxSlots);
}

}  // namespace

bool FoundSlot::is_deleted() const { return (flags & data::kDeletedFlags) == data::kDeletedFlags; }
bool FoundSlot::is_body() const { return (flags & data::kDeletedFlags) == data::kBodyFlag; }
bool FoundSlot::is_pointer() const { return (flags & data::kDeletedFlags) == data::kMovedFlag; }

FoundPage look_at_page(ByteSpan bytes, std::size_t present) {
    const jet::Format& format = jet::format_of(bytes);
    FoundPage page;
    page.owner = jet::load_u32(bytes, data::kOwner);
    if (const std::size_t at = format.long_value.stamp) page.stamp = jet::load_u32(bytes, at);
    bool agrees = false;
    const std::size_t count = slot_count(bytes, agrees);
    const bool in_order = agrees || (count > 0 && is_in_order(bytes, count));
    const bool has_right_kind = bytes[0] == jet::jet4::kDataPage;
    page.is_sound = has_right_kind && agrees;
    // One wrong byte in the head does not make it another page.
    page.holds_rows = count > 0 && (has_right_kind ? in_order || bytes[jet::jet4::kPageKindMark] == 1
                                                   : bytes[jet::jet4::kPageKindMark] == 1 && in_order &&
                                                         has_right_free_count(bytes, count));
    if (!page.holds_rows) return page;
    page.slots_end = slots_end(bytes, count);
    std::size_t end = bytes.size();
    bool previous_placed = true;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t entry = jet::load_u16(bytes, format.slot_at(i));
        FoundSlot slot;
        slot.number = static_cast<std::uint8_t>(i);
        slot.flags = static_cast<std::uint16_t>(entry & ~data::kOffsetMask);
        slot.begin = entry & data::kOffsetMask;
        slot.end = end;
        const bool is_possible = slot.begin <= end && slot.begin >= page.slots_end;
        slot.is_placed = is_possible && previous_placed;
        if (is_possible) {
            end = slot.begin;
        } else {
            slot.begin = slot.end;
        }
        previous_placed = is_possible;
        if (slot.end <= present || !slot.is_placed) page.slots.push_back(slot);
    }
    return page;
}

bool is_sound_page(ByteSpan bytes) {
    const bool is_marked = bytes[jet::jet4::kPageKindMark] == 1;
    if (is_marked && bytes[0] == jet::jet4::kDataPage) {
        const FoundPage look = look_at_page(bytes, bytes.size());
        return look.holds_rows && look.is_sound;
    }
    return is_marked && bytes[0] == jet::jet4::kTableDefPage && has_definition_mark(bytes);
}

bool has_definition_mark(ByteSpan bytes) {
    namespace tdef = jet::jet4::tdef;
    if (jet::format_of(bytes).is_jet3()) return jet::load_u16(bytes, tdef::kFree) == tdef::kJet3Mark;
    return jet::load_u32(bytes, tdef::kMagic) == tdef::kMagicValue;
}

}  // namespace tools
