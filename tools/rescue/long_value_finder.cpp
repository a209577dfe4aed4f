#include "tools/rescue/long_value_finder.h"

#include <algorithm>

#include "jet/base/jet4.h"

namespace tools {
namespace {

namespace data = jet::jet4::data;
namespace lv = jet::jet4::long_value;
using jet::ByteSpan;
using jet::PageNumber;
using jet::RowId;

constexpr std::size_t kNextPointer = 4;

}  // namespace

void LongValueFinder::note_page(PageNumber page_no, const FoundPage& page) {
    long_pages_.push_back(page_no);
    if (page.stamp != 0) stamps_[page.stamp].push_back(page_no);
}

void LongValueFinder::note_reference(ByteSpan reference) {
    if (reference.size() < lv::kReference) return;
    const std::uint32_t head = jet::load_u32(reference, 0);
    if ((head & lv::kKindMask) != lv::kSingle) return;
    const RowId row = RowId::unpack(jet::load_u32(reference, 4));
    references_[row.page].push_back({row.slot, head & lv::kLengthMask});
}

const LongValueFinder::CachedPage& LongValueFinder::load(PageNumber page_no) {
    CachedPage& cached = cache_[page_no % cache_.size()];
    if (cached.page_no != page_no || cached.bytes.empty()) {
        cached.bytes.resize(jet::jet4::kPageSize);
        pages_.read(page_no, cached.bytes);
        cached.page_no = page_no;
        cached.look = look_at_page(cached.bytes, pages_.present(page_no));
    }
    return cached;
}

ByteSpan LongValueFinder::piece(RowId row) {
    if (row.is_null() || row.page >= pages_.page_count()) return {};
    const CachedPage& page = load(row.page);
    if (!page.look.holds_rows) return {};
    for (const FoundSlot& slot : page.look.slots) {
        if (slot.number != row.slot) continue;
        if (slot.flags != 0 || !slot.is_placed) return {};
        return ByteSpan(page.bytes).subspan(slot.begin, slot.end - slot.begin);
    }
    return {};
}

std::size_t LongValueFinder::agreeing(PageNumber page_no, const std::vector<Wanted>& wanted) {
    return static_cast<std::size_t>(std::count_if(wanted.begin(), wanted.end(), [&](const Wanted& one) {
        return piece({page_no, one.slot}).size() == one.length && one.length > 0;
    }));
}

// Every row of the page is wanted, and every wanted one is there.
bool LongValueFinder::is_exactly(PageNumber page_no, const std::vector<Wanted>& wanted) {
    const FoundPage& page = load(page_no).look;
    const auto live =
        std::count_if(page.slots.begin(), page.slots.end(), [](const FoundSlot& s) { return s.flags == 0; });
    return static_cast<std::size_t>(live) == wanted.size() && agreeing(page_no, wanted) == wanted.size();
}

void LongValueFinder::settle() {
    for (const auto& [page_no, wanted] : references_) {
        if (2 * agreeing(page_no, wanted) < wanted.size()) distrusted_.insert(page_no);
    }
    // What stands in the place of another page is on no page that is believed itself.
    for (const PageNumber missing : distrusted_) {
        std::vector<PageNumber> found;
        for (const PageNumber candidate : long_pages_) {
            const bool is_free = !references_.contains(candidate) || distrusted_.contains(candidate);
            if (is_free && is_exactly(candidate, references_.at(missing))) found.push_back(candidate);
        }
        if (found.size() == 1) displaced_[missing] = found.front();
    }
    references_.clear();
}

PageNumber LongValueFinder::place_of(PageNumber page_no) const {
    const auto moved = displaced_.find(page_no);
    return moved == displaced_.end() ? page_no : moved->second;
}

FoundLongValue LongValueFinder::read_single(RowId row, std::size_t length) {
    const PageNumber place = place_of(row.page);
    if (place == row.page && distrusted_.contains(row.page)) return {{}, false};
    const ByteSpan bytes = piece({place, row.slot});
    if (bytes.size() != length) return {{}, false};
    return {jet::ByteVector(bytes.begin(), bytes.end()), true};
}

FoundLongValue LongValueFinder::read_chain(RowId row, std::size_t length, std::uint32_t stamp) {
    FoundLongValue value;
    RowId next = row;
    // The first page carries the stamp that its reference names, wherever it lies now.
    const auto stamped = stamps_.find(stamp);
    const bool is_in_its_place = next.page < pages_.page_count() && load(next.page).look.stamp == stamp;
    if (stamp != 0 && !is_in_its_place && stamped != stamps_.end() && stamped->second.size() == 1) {
        next.page = stamped->second.front();
    }
    for (bool is_first = true; value.bytes.size() < length; is_first = false) {
        const ByteSpan bytes = piece(next);
        const std::size_t left = length - value.bytes.size();
        const bool is_right = bytes.size() > kNextPointer && bytes.size() - kNextPointer <= left &&
                              load(next.page).look.stamp == (is_first ? stamp : 0);
        if (!is_right || !chained_.insert(next.page).second) {
            value.is_whole = false;
            break;
        }
        jet::append_bytes(value.bytes, bytes.subspan(kNextPointer));
        next = RowId::unpack(jet::load_u32(bytes, 0));
    }
    return value;
}

FoundLongValue LongValueFinder::read(ByteSpan reference) {
    if (reference.empty()) return {};
    const std::uint32_t head = jet::load_u32(reference, 0);
    const std::size_t length = head & lv::kLengthMask;
    const RowId row = RowId::unpack(jet::load_u32(reference, 4));
    switch (head & lv::kKindMask) {
        case lv::kInline: {
            const ByteSpan bytes = reference.subspan(lv::kReference);
            return {jet::ByteVector(bytes.begin(), bytes.end()), true};
        }
        case lv::kSingle: return read_single(row, length);
        default: return read_chain(row, length, jet::load_u32(reference, 8));
    }
}

}  // namespace tools
