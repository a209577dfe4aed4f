// One index page in memory: its header fields and its entries, whole (the shared prefix restored).
// Parsing bounds everything; writing shortens the entries again when they would not fit otherwise.
#pragma once

#include <cstdint>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/format.h"
#include "jet/base/types.h"

namespace jet {

class IndexPage {
public:
    // An entry is the key and the row pointer: what is compared. A node's child page is kept beside it.
    // The longest one leaves room for two on a node.
    static std::size_t max_entry(const Format& format) { return format.entry_bytes() / 2 - jet4::index::kChildPointer; }

    IndexPage(bool leaf, std::uint8_t level, PageNumber table_page, const Format& format = kJet4)
        : format_(&format), table_page_(table_page), level_(level), leaf_(leaf) {}
    // 3049 unless `bytes` is an index page of that table whose entries lie within it. The order of the
    // entries is not looked at.
    static IndexPage parse(ByteSpan bytes, PageNumber page_no, PageNumber table_page);

    // Whether the entries fit on a page, shortened where that helps.
    bool fits() const { return encoded_bytes() <= format_->entry_bytes(); }
    // Replaces the whole page; `fits()` is true.
    void write(MutableByteSpan page) const;

    bool is_leaf() const { return leaf_; }
    std::uint8_t level() const { return level_; }
    // Number of entries; a node with a tail has one child more.
    std::size_t size() const { return ends_.size(); }
    std::size_t child_count() const { return leaf_ ? 0 : size() + (tail != 0 ? 1u : 0u); }
    ByteSpan entry(std::size_t index) const;
    ByteSpan last_entry() const { return entry(size() - 1); }
    // The child below entry `index`; behind the last entry the tail. 0 in a leaf.
    PageNumber child(std::size_t index) const { return leaf_ ? 0 : index < size() ? children_[index] : tail; }
    // First entry that is not less than `target`; size() when there is none.
    std::size_t lower_bound(ByteSpan target) const;
    // Strictly ascending.
    bool is_sorted() const;

    void insert(std::size_t index, ByteSpan bytes, PageNumber child_page = 0);
    void erase(std::size_t index);
    void replace(std::size_t index, ByteSpan bytes);
    void clear();
    // Makes the last entry's child the tail, where a node of several children has none.
    void normalize_tail();

    // Where to cut an overflowing page of sorted entries, so that both parts fit: the number of entries
    // that stay left. In a node the entry at that place is between the parts and goes up. `append`: all
    // but the last entry, if that can be.
    // 3049 when there is no such place, which takes a page this engine would not have written.
    std::size_t choose_cut(bool append, PageNumber page_no) const;
    // Takes the first `count` entries away into a page of the same kind. In a node the entry after them
    // goes too: its child becomes that page's tail, it itself is left in `separator`. In a leaf
    // `separator` is the last entry taken.
    IndexPage split_front(std::size_t count, ByteVector& separator);

    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;
    // Of the page as parsed: bytes of its entry area in use.
    std::size_t stored_bytes = 0;

private:
    std::size_t suffix_bytes() const { return leaf_ ? 0 : jet4::index::kChildPointer; }
    std::size_t begin_of(std::size_t index) const { return index == 0 ? 0 : ends_[index - 1]; }
    std::size_t raw_bytes() const { return bytes_.size() + size() * suffix_bytes(); }
    std::size_t shared_prefix() const;
    std::size_t encoded_bytes() const;

    std::size_t longest_prefix() const { return format_->index.prefix_bytes == 1 ? 0xFF : format_->page_size; }

    const Format* format_;
    PageNumber table_page_;
    std::uint8_t level_;
    bool leaf_;
    ByteVector bytes_;                  // all entries, one after the other
    std::vector<std::uint32_t> ends_;   // of each entry in bytes_
    std::vector<PageNumber> children_;  // nodes: of each entry
};

// Order of entries: unsigned bytes, a shorter one before a longer one that begins with it.
int compare_entries(ByteSpan a, ByteSpan b);

}  // namespace jet
