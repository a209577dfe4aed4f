#include "jet/storage/data_page.h"

#include <algorithm>

namespace jet {

namespace data = jet4::data;

namespace {

// Shifts the rows behind `slot` so that its length becomes `length`.
void resize_row(MutableByteSpan page, PageNumber page_no, std::size_t index, std::size_t length) {
    const Format& format = format_of(page);
    const DataPage view(page, page_no);
    const Slot slot = view.slot(index);
    std::size_t lowest = slot.offset;
    for (std::size_t i = index + 1; i < view.slot_count(); ++i) lowest = view.slot(i).offset;
    if (length > slot.length && length - slot.length > lowest - format.slot_at(view.slot_count())) {
        corrupt(page_no, "a row was to grow beyond the room of its page");
    }
    const int shift = static_cast<int>(slot.length) - static_cast<int>(length);  // upwards when positive
    std::memmove(page.data() + lowest + shift, page.data() + lowest, slot.offset - lowest);
    if (shift > 0) std::fill_n(page.begin() + static_cast<std::ptrdiff_t>(lowest), shift, std::uint8_t{0});
    for (std::size_t i = index; i < view.slot_count(); ++i) {
        const std::size_t at = format.slot_at(i);
        store_u16(page, at, static_cast<std::uint16_t>(load_u16(page, at) + shift));
    }
    store_u16(page, data::kFree, static_cast<std::uint16_t>(lowest + shift - format.slot_at(view.slot_count())));
}

}  // namespace

DataPage::DataPage(ByteSpan bytes, PageNumber page_no)
    : bytes_(bytes), page_no_(page_no), slots_(format_of(bytes).data.slots) {
    if (bytes[0] != jet4::kDataPage) corrupt(page_no, "a page of rows was expected");
    slot_count_ = load_u16(bytes, format_of(bytes).data.slot_count);
    // A row's address has one byte for the slot.
    if (slot_count_ > data::kMaxSlots + 1) corrupt(page_no, "the page has more rows than it can have");
}

bool DataPage::belongs_to(ByteSpan bytes, std::uint32_t owner) {
    return bytes[0] == jet4::kDataPage && load_u32(bytes, data::kOwner) == owner;
}

Slot DataPage::slot(std::size_t index) const {
    if (index >= slot_count_) corrupt(page_no_, "a row pointer names a slot that is not there");
    const std::uint16_t entry = load_u16(bytes_, slot_at(index));
    const std::size_t offset = entry & data::kOffsetMask;
    const std::size_t end =
        index == 0 ? bytes_.size() : static_cast<std::size_t>(load_u16(bytes_, slot_at(index - 1)) & data::kOffsetMask);
    if (end > bytes_.size() || offset > end || offset < slot_at(slot_count_)) {
        corrupt(page_no_, "row offsets are out of order");
    }
    return {static_cast<std::uint16_t>(entry & ~data::kOffsetMask), static_cast<std::uint16_t>(offset),
            static_cast<std::uint16_t>(end - offset)};
}

std::size_t DataPage::gap() const {
    const std::size_t lowest = slot_count_ == 0 ? bytes_.size() : slot(slot_count_ - 1).offset;
    return lowest - slot_at(slot_count_);
}

bool DataPage::all_deleted() const {
    for (std::size_t i = 0; i < slot_count_; ++i) {
        if (!slot(i).is_deleted()) return false;
    }
    return true;
}

void format_data_page(MutableByteSpan page, std::uint32_t owner) {
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    page[0] = jet4::kDataPage;
    page[jet4::kPageKindMark] = 1;
    store_u16(page, data::kFree, static_cast<std::uint16_t>(page.size() - format_of(page).data.slots));
    store_u32(page, data::kOwner, owner);
}

std::uint8_t add_row(MutableByteSpan page, PageNumber page_no, ByteSpan row, std::uint16_t flags) {
    const DataPage view(page, page_no);
    if (!view.has_room(row.size())) corrupt(page_no, "a row was to be added beyond the room of its page");
    const std::size_t index = view.slot_count();
    const Format& format = format_of(page);
    const std::size_t offset = view.gap() + format.slot_at(index) - row.size();
    store_bytes(page, offset, row);
    store_u16(page, format.slot_at(index), static_cast<std::uint16_t>(offset | flags));
    store_u16(page, format.data.slot_count, static_cast<std::uint16_t>(index + 1));
    store_u16(page, data::kFree, static_cast<std::uint16_t>(offset - format.slot_at(index + 1)));
    return static_cast<std::uint8_t>(index);
}

void replace_row(MutableByteSpan page, PageNumber page_no, std::size_t slot, ByteSpan row) {
    resize_row(page, page_no, slot, row.size());
    store_bytes(page, load_u16(page, format_of(page).slot_at(slot)) & data::kOffsetMask, row);
}

void delete_row(MutableByteSpan page, PageNumber page_no, std::size_t slot) {
    resize_row(page, page_no, slot, 0);
    set_slot_flags(page, page_no, slot, data::kDeletedFlags);
}

void set_slot_flags(MutableByteSpan page, PageNumber page_no, std::size_t slot, std::uint16_t flags) {
    const Slot now = DataPage(page, page_no).slot(slot);
    store_u16(page, format_of(page).slot_at(slot), static_cast<std::uint16_t>(now.offset | flags));
}

}  // namespace jet
