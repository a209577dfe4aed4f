#include "jet/indexes/index_page.h"

#include <algorithm>
#include <bit>

namespace jet {

namespace {

namespace layout = jet4::index;

// Bytes that two entries share at their beginning, at most `limit`.
std::size_t common_bytes(ByteSpan a, ByteSpan b, std::size_t limit) {
    limit = std::min({limit, a.size(), b.size()});
    std::size_t count = 0;
    while (count < limit && a[count] == b[count]) ++count;
    return count;
}

void store_be32(MutableByteSpan bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) store_u8(bytes, at + i, static_cast<std::uint8_t>(value >> (24 - 8 * i)));
}

// The prefix never reaches into the row pointer.
std::size_t key_bytes(ByteSpan entry) { return entry.size() - layout::kRowPointer; }

}  // namespace

int compare_entries(ByteSpan a, ByteSpan b) {
    const std::size_t shared = std::min(a.size(), b.size());
    const int order = shared == 0 ? 0 : std::memcmp(a.data(), b.data(), shared);
    if (order != 0) return order;
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

IndexPage IndexPage::parse(ByteSpan bytes, PageNumber page_no, PageNumber table_page) {
    const Format& format = format_of(bytes);
    if (bytes.size() != format.page_size) corrupt(page_no, "the page is not whole");
    const std::uint8_t kind = bytes[0];
    if (kind != jet4::kIndexNodePage && kind != jet4::kIndexLeafPage) {
        corrupt(page_no, "an index page is expected here");
    }
    if (load_u32(bytes, layout::kOwner) != table_page) corrupt(page_no, "the index page belongs to another table");
    IndexPage page(kind == jet4::kIndexLeafPage, load_u8(bytes, format.index.level), table_page, format);
    page.previous = load_u32(bytes, format.index.previous);
    page.next = load_u32(bytes, format.index.next);
    if (!page.leaf_) page.tail = load_u32(bytes, format.index.tail);

    const std::size_t prefix =
        format.index.prefix_bytes == 1 ? load_u8(bytes, format.index.prefix) : load_u16(bytes, format.index.prefix);
    const std::size_t suffix = page.suffix_bytes();
    const ByteSpan area = bytes.subspan(format.index.entries);
    page.ends_.reserve(format.entry_bytes() / 8);
    std::size_t begin = 0;
    for (std::size_t at = 0; at < format.index.bitmap_bytes; ++at) {
        for (unsigned bits = bytes[format.index.bitmap + at]; bits != 0; bits &= bits - 1) {
            const std::size_t end = 8 * at + static_cast<std::size_t>(std::countr_zero(bits));
            if (end > area.size()) corrupt(page_no, "an index entry leaves the page");
            if (end < begin + layout::kRowPointer + suffix) corrupt(page_no, "an index entry is too short");
            page.ends_.push_back(static_cast<std::uint32_t>(end));
            begin = end;
        }
    }
    page.stored_bytes = begin;
    if (page.size() > 1 && prefix + layout::kRowPointer + suffix > page.ends_[0]) {
        corrupt(page_no, "the shared part of the index entries is longer than the first one");
    }
    if (prefix == 0 && page.leaf_) {
        page.bytes_.assign(area.begin(), area.begin() + static_cast<std::ptrdiff_t>(begin));
        return page;
    }
    begin = 0;
    page.bytes_.reserve(format.page_size);
    for (std::uint32_t& end : page.ends_) {
        if (begin > 0) append_bytes(page.bytes_, area.first(prefix));
        append_bytes(page.bytes_, area.subspan(begin, end - begin - suffix));
        if (!page.leaf_) page.children_.push_back(load_be32(area, end - suffix));
        begin = end;
        end = static_cast<std::uint32_t>(page.bytes_.size());
    }
    return page;
}

void IndexPage::write(MutableByteSpan page) const {
    const Format& format = *format_;
    const std::size_t prefix = raw_bytes() > format.entry_bytes() ? shared_prefix() : 0;
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    page[0] = leaf_ ? jet4::kIndexLeafPage : jet4::kIndexNodePage;
    page[jet4::kPageKindMark] = 1;
    store_u32(page, layout::kOwner, table_page_);
    store_u32(page, format.index.previous, previous);
    store_u32(page, format.index.next, next);
    store_u32(page, format.index.tail, tail);
    store_u8(page, format.index.prefix, static_cast<std::uint8_t>(prefix));
    if (format.index.prefix_bytes == 2) store_u16(page, format.index.prefix, static_cast<std::uint16_t>(prefix));
    store_u8(page, format.index.level, level_);
    const MutableByteSpan area = page.subspan(format.index.entries);
    std::size_t at = 0;
    for (std::size_t i = 0; i < size(); ++i) {
        const ByteSpan own = entry(i).subspan(i == 0 ? 0 : prefix);
        store_bytes(area, at, own);
        at += own.size();
        if (!leaf_) {
            store_be32(area, at, children_[i]);
            at += layout::kChildPointer;
        }
        page[format.index.bitmap + at / 8] |= static_cast<std::uint8_t>(1u << (at % 8));
    }
    store_u16(page, layout::kFree, static_cast<std::uint16_t>(format.entry_bytes() - at));
}

ByteSpan IndexPage::entry(std::size_t index) const {
    return ByteSpan(bytes_).subspan(begin_of(index), ends_[index] - begin_of(index));
}

std::size_t IndexPage::lower_bound(ByteSpan target) const {
    std::size_t low = 0;
    std::size_t high = size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (compare_entries(entry(middle), target) < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

bool IndexPage::is_sorted() const {
    // Done for every page on the way to an entry, hence without the comfort of spans.
    const std::uint8_t* bytes = bytes_.data();
    std::size_t before = 0;
    for (std::size_t i = 1; i < ends_.size(); ++i) {
        const std::size_t begin = ends_[i - 1];
        const std::size_t length_before = begin - before;
        const std::size_t length = ends_[i] - begin;
        const int order = std::memcmp(bytes + before, bytes + begin, std::min(length_before, length));
        if (order > 0 || (order == 0 && length_before >= length)) return false;
        before = begin;
    }
    return true;
}

void IndexPage::insert(std::size_t index, ByteSpan bytes, PageNumber child_page) {
    const std::size_t begin = begin_of(index);
    bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(begin), bytes.begin(), bytes.end());
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(index), static_cast<std::uint32_t>(begin));
    for (std::size_t i = index; i < size(); ++i) ends_[i] += static_cast<std::uint32_t>(bytes.size());
    if (!leaf_) children_.insert(children_.begin() + static_cast<std::ptrdiff_t>(index), child_page);
}

void IndexPage::erase(std::size_t index) {
    const std::size_t begin = begin_of(index);
    const std::size_t length = ends_[index] - begin;
    bytes_.erase(bytes_.begin() + static_cast<std::ptrdiff_t>(begin),
                 bytes_.begin() + static_cast<std::ptrdiff_t>(begin + length));
    ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(index));
    for (std::size_t i = index; i < size(); ++i) ends_[i] -= static_cast<std::uint32_t>(length);
    if (!leaf_) children_.erase(children_.begin() + static_cast<std::ptrdiff_t>(index));
}

void IndexPage::replace(std::size_t index, ByteSpan bytes) {
    const PageNumber child_page = leaf_ ? 0 : children_[index];
    erase(index);
    insert(index, bytes, child_page);
}

void IndexPage::clear() {
    bytes_.clear();
    ends_.clear();
    children_.clear();
    tail = 0;
}

void IndexPage::normalize_tail() {
    if (leaf_ || tail != 0 || size() < 2) return;
    const PageNumber last = children_.back();
    erase(size() - 1);
    tail = last;
}

std::size_t IndexPage::shared_prefix() const {
    if (size() < 2) return 0;
    std::size_t shared = common_bytes(entry(0), last_entry(), longest_prefix());
    for (std::size_t i = 0; i < size(); ++i) shared = std::min(shared, key_bytes(entry(i)));
    return shared;
}

std::size_t IndexPage::encoded_bytes() const {
    const std::size_t raw = raw_bytes();
    return raw <= format_->entry_bytes() || size() < 2 ? raw : raw - (size() - 1) * shared_prefix();
}

std::size_t IndexPage::choose_cut(bool append, PageNumber page_no) const {
    const std::size_t count = size();
    // Bytes on a page of the entries [0, i) and [i, count).
    std::vector<std::size_t> front(count + 1);
    std::vector<std::size_t> back(count + 1);
    std::size_t raw = 0;
    std::size_t shared = longest_prefix();
    for (std::size_t i = 0; i < count; ++i) {
        shared = std::min(shared, key_bytes(entry(i)));
        shared = common_bytes(entry(0), entry(i), shared);
        raw += entry(i).size() + suffix_bytes();
        front[i + 1] = raw - i * shared;
    }
    raw = 0;
    shared = longest_prefix();
    for (std::size_t i = count; i-- > 0;) {
        shared = std::min(shared, key_bytes(entry(i)));
        shared = common_bytes(entry(count - 1), entry(i), shared);
        raw += entry(i).size() + suffix_bytes();
        back[i] = raw - (count - 1 - i) * shared;
    }

    const std::size_t between = leaf_ ? 0 : 1;  // entries that go up
    std::size_t best = 0;
    std::size_t best_difference = format_->page_size;
    const std::size_t room = format_->entry_bytes();
    for (std::size_t cut = 1; cut + between < count; ++cut) {
        const std::size_t left = front[cut];
        const std::size_t right = back[cut + between];
        if (left > room || right > room) continue;
        if (append && cut + 1 == count) return cut;
        const std::size_t difference = left > right ? left - right : right - left;
        if (difference < best_difference) {
            best = cut;
            best_difference = difference;
        }
    }
    if (best == 0) corrupt(page_no, "the index page cannot be split");
    return best;
}

IndexPage IndexPage::split_front(std::size_t count, ByteVector& separator) {
    IndexPage front(leaf_, level_, table_page_, *format_);
    for (std::size_t i = 0; i < count; ++i) front.insert(i, entry(i), child(i));
    const ByteSpan up = entry(leaf_ ? count - 1 : count);
    separator.assign(up.begin(), up.end());
    if (!leaf_) front.tail = child(count++);

    const std::uint32_t taken = ends_[count - 1];
    const auto drop = [count](auto& from) {
        from.erase(from.begin(), from.begin() + static_cast<std::ptrdiff_t>(count));
    };
    bytes_.erase(bytes_.begin(), bytes_.begin() + taken);
    drop(ends_);
    if (!leaf_) drop(children_);
    for (std::uint32_t& end : ends_) end -= taken;
    return front;
}

}  // namespace jet
