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
constexpr PageNumber kNearPages = 64;

}  // namespace

void LongValueFinder::note_page(PageNumber page_no) { long_pages_.push_back(page_no); }

void LongValueFinder::note_reference(ByteSpan reference) {
    if (reference.size() < lv::kReference) return;
    const std::uint32_t head = jet::load_u32(reference, 0);
    const std::size_t length = head & lv::kLengthMask;
    const RowId row = RowId::unpack(jet::load_u32(reference, 4));
    if ((head & lv::kKindMask) == lv::kSingle) references_[row.page].push_back({row.slot, head & lv::kLengthMask});
    if ((head & lv::kKindMask) == 0) chains_.push_back({row, length, jet::load_u32(reference, 8)});
}

const LongValueFinder::CachedPage& LongValueFinder::load(PageNumber page_no) {
    CachedPage& cached = cache_[page_no % cache_.size()];
    if (cached.page_no != page_no || cached.bytes.empty()) {
        cached.bytes.resize(pages_.page_size());
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
    settle_pages();
    settle_chains();
}

void LongValueFinder::settle_pages() {
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
        // One length alone says little, unless something else has come to the page: then its own content may be
        // elsewhere.
        const jet::ByteVector& now = load(missing).bytes;
        const bool is_displaced = now[0] >= jet::jet4::kDataPage && now[0] <= jet::jet4::kUsageBitmapPage &&
                                  now[jet::jet4::kPageKindMark] <= 1;
        if (references_.at(missing).size() < 2 && !is_displaced) continue;
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

// The piece that begins a page's rows, where the page can be one of a chain.
std::optional<LongValueFinder::Link> LongValueFinder::link_at(RowId row, std::uint32_t stamp) {
    const ByteSpan bytes = piece(row);
    if (bytes.size() <= kNextPointer || load(row.page).look.stamp != stamp) return std::nullopt;
    return Link{row.page, bytes.size() - kNextPointer, RowId::unpack(jet::load_u32(bytes, 0))};
}

// What may stand for the page that a chain goes on with, the likeliest first.
std::vector<LongValueFinder::Link> LongValueFinder::candidates(RowId expected, std::size_t left, std::uint32_t stamp,
                                                               bool looks_elsewhere) {
    std::vector<Link> found;
    const auto fits = [&](const Link& link) {
        return link.bytes <= left && (link.bytes == left) == link.next.is_null() && !chained_.contains(link.page);
    };
    if (expected.page < pages_.page_count()) {
        if (const auto link = link_at(expected, stamp); link && fits(*link)) found.push_back(*link);
    }
    if (!looks_elsewhere || expected.slot != 0) return found;
    for (const Link& link : stamp == 0 ? spare_links_ : spare_heads_) {
        const bool is_head = stamp == 0 || load(link.page).look.stamp == stamp;
        if (is_head && link.page != expected.page && fits(link)) found.push_back(link);
    }
    if (stamp != 0) return found;
    // Pages of a chain follow each other closely, as they were given out. What leads elsewhere is likely another's.
    const auto gap = [&](const Link& link) { return link.next.page - expected.page; };
    std::erase_if(found, [&](const Link& link) {
        return !link.next.is_null() && (link.next.page <= expected.page || gap(link) > kNearPages);
    });
    std::stable_sort(found.begin(), found.end(), [&](const Link& a, const Link& b) {
        return !a.next.is_null() && !b.next.is_null() && gap(a) < gap(b);
    });
    if (!found.empty() && !found.front().next.is_null()) found.resize(1);
    // Of several last pages nobody can say which it is, unless one is where it should be.
    const bool is_in_place = !found.empty() && found.front().page == expected.page;
    if (found.size() > 1 && !is_in_place) found.clear();
    if (found.size() > 1) found.resize(1);
    return found;
}

// Depth first; false when the pages found do not add up to the value.
bool LongValueFinder::follow(const Chain& chain, bool looks_elsewhere, std::vector<PageNumber>& path) {
    struct Step {
        std::vector<Link> choices;
        std::size_t left = 0;
        std::size_t tried = 0;
    };
    constexpr std::size_t kMostTries = 10000;
    std::vector<Step> steps;
    steps.push_back({candidates(chain.first, chain.length, chain.stamp, looks_elsewhere), chain.length});
    for (std::size_t tries = 0; !steps.empty() && tries < kMostTries; ++tries) {
        Step& step = steps.back();
        if (step.tried == step.choices.size()) {
            steps.pop_back();
            if (!path.empty()) path.pop_back();
            continue;
        }
        const Link link = step.choices[step.tried++];
        if (std::find(path.begin(), path.end(), link.page) != path.end()) continue;
        path.push_back(link.page);
        const std::size_t left = step.left - link.bytes;
        if (left == 0) return true;
        steps.push_back({candidates(link.next, left, 0, looks_elsewhere), left});
    }
    path.clear();
    return false;
}

// Pages of one full or last piece each that no chain has claimed.
void LongValueFinder::find_spare_links() {
    for (const PageNumber page : long_pages_) {
        const FoundPage& look = load(page).look;
        if (look.slots.size() != 1 || look.slots[0].number != 0 || chained_.contains(page)) continue;
        const std::uint32_t stamp = look.stamp;
        const auto link = link_at({page, 0}, stamp);
        if (!link || (link->bytes != pages_.format().long_value.chain_data && !link->next.is_null())) continue;
        (stamp == 0 ? spare_links_ : spare_heads_).push_back(*link);
    }
}

// First the chains that are where they should be; what they leave may be the missing pages of the others.
void LongValueFinder::settle_chains() {
    const auto settle_some = [&](bool looks_elsewhere) {
        return std::erase_if(chains_, [&](const Chain& chain) {
            std::vector<PageNumber> path;
            if (!follow(chain, looks_elsewhere, path)) return false;
            chained_.insert(path.begin(), path.end());
            paths_[std::uint64_t{chain.first.pack()} << 32 | chain.stamp] = std::move(path);
            return true;
        });
    };
    settle_some(false);
    if (chains_.empty()) return;
    find_spare_links();
    // Each chain that is found leaves less to choose from.
    while (settle_some(true) > 0) {
        const auto is_claimed = [&](const Link& link) { return chained_.contains(link.page); };
        std::erase_if(spare_links_, is_claimed);
        std::erase_if(spare_heads_, is_claimed);
    }
    chains_.clear();
}

FoundLongValue LongValueFinder::read_chain(const Chain& chain) {
    FoundLongValue value;
    const auto known = paths_.find(std::uint64_t{chain.first.pack()} << 32 | chain.stamp);
    if (known != paths_.end()) {
        RowId row = chain.first;
        for (const PageNumber page : known->second) {
            const ByteSpan bytes = piece({page, row.slot});
            jet::append_bytes(value.bytes, bytes.subspan(kNextPointer));
            row = RowId::unpack(jet::load_u32(bytes, 0));
        }
        value.is_whole = value.bytes.size() == chain.length;
        return value;
    }
    // The beginning, as far as it is there.
    std::set<PageNumber> seen;
    std::uint32_t stamp = chain.stamp;
    for (RowId next = chain.first; value.bytes.size() < chain.length; stamp = 0) {
        const auto link = next.page < pages_.page_count() ? link_at(next, stamp) : std::nullopt;
        // A page that leads far away is another chain's.
        const std::size_t left = chain.length - value.bytes.size();
        const bool is_near = link && link->next.page > next.page && link->next.page - next.page <= kNearPages;
        const bool is_right = link && !chained_.contains(link->page) &&
                              (link->next.is_null() ? link->bytes == left : link->bytes < left && is_near);
        value.is_whole = is_right && seen.insert(link->page).second;
        if (!value.is_whole) break;
        jet::append_bytes(value.bytes, piece(next).subspan(kNextPointer));
        next = link->next;
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
        default: return read_chain({row, length, jet::load_u32(reference, 8)});
    }
}

}  // namespace tools
