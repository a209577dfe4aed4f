// Pages of kind 1: rows stacked from the end of the page, addressed by slots that are never reused.
//
// Invariants
//  1. Slot i's row lies in [offset(i), offset(i - 1)); offsets never increase with i.
//  2. The free count is the gap between the slot table and the lowest row.
#pragma once

#include <cstdint>

#include "jet/base/bytes.h"
#include "jet/base/format.h"
#include "jet/base/types.h"

namespace jet {

struct Slot {
    std::uint16_t flags = 0;   // the flag bits of jet4::data
    std::uint16_t offset = 0;  // bytes from the start of the page
    std::uint16_t length = 0;  // bytes

    bool is_live() const { return flags == 0; }
    bool is_moved() const { return (flags & jet4::data::kDeletedFlags) == jet4::data::kMovedFlag; }
    bool is_body() const { return (flags & jet4::data::kDeletedFlags) == jet4::data::kBodyFlag; }
    bool is_deleted() const { return (flags & jet4::data::kDeletedFlags) == jet4::data::kDeletedFlags; }
};

// Read access; `bytes` is a whole page. Construction checks that it is a data page whose slot table fits;
// a slot is checked when it is asked for (3049).
class DataPage {
public:
    DataPage(ByteSpan bytes, PageNumber page_no);

    // Whether the page is of kind 1 and belongs to `owner`; nothing else is checked.
    static bool belongs_to(ByteSpan bytes, std::uint32_t owner);

    std::uint32_t owner() const { return load_u32(bytes_, jet4::data::kOwner); }
    std::size_t slot_count() const { return slot_count_; }
    Slot slot(std::size_t index) const;
    ByteSpan row(const Slot& slot) const { return bytes_.subspan(slot.offset, slot.length); }
    // Bytes between the slot table and the lowest row.
    std::size_t gap() const;
    // Whether a row of `length` bytes can be added.
    bool has_room(std::size_t length) const { return slot_count_ < jet4::data::kMaxSlots && gap() >= length + 2; }
    bool all_deleted() const;

private:
    std::size_t slot_at(std::size_t index) const { return slots_ + 2 * index; }

    ByteSpan bytes_;
    PageNumber page_no_;
    std::size_t slots_;  // where they begin
    std::size_t slot_count_;
};

// Writing. Each keeps the invariants; callers have checked the room.
void format_data_page(MutableByteSpan page, std::uint32_t owner);
// Returns the new slot.
std::uint8_t add_row(MutableByteSpan page, PageNumber page_no, ByteSpan row, std::uint16_t flags = 0);
// Gives the slot's row another content and length; later rows shift.
void replace_row(MutableByteSpan page, PageNumber page_no, std::size_t slot, ByteSpan row);
// Length 0, flags "deleted".
void delete_row(MutableByteSpan page, PageNumber page_no, std::size_t slot);
void set_slot_flags(MutableByteSpan page, PageNumber page_no, std::size_t slot, std::uint16_t flags);

}  // namespace jet
