// Usage maps: sets of pages kept as rows of data pages, inline or through bitmap pages.
#pragma once

#include <cstdint>
#include <optional>

#include "jet/base/types.h"
#include "jet/pages/pager.h"

namespace jet {

class PageAllocator;

// One map, named by the address of its row. Holds no copy of the bits: every call reads or changes the
// pages themselves.
class UsageMap {
public:
    // `row` may be null: an empty map that cannot be added to (seen for free-space maps of long values).
    UsageMap(Pager& pager, PageAllocator& allocator, RowId row) : pager_(&pager), allocator_(&allocator), row_(row) {}

    RowId row() const { return row_; }
    bool contains(PageNumber page_no) const;
    // First member >= `from`.
    std::optional<PageNumber> next(PageNumber from) const;
    // Adding a member or removing a non-member changes nothing. Inside a transaction.
    void add(PageNumber page_no);
    void remove(PageNumber page_no);
    // Frees the map's bitmap pages and releases its row. Inside a transaction. The member pages are the
    // caller's to free.
    void destroy();
    // The map's own bitmap pages (kind 5), in order; none for an inline map.
    std::vector<PageNumber> bitmap_pages() const;

private:
    Pager* pager_;
    PageAllocator* allocator_;
    RowId row_;
};

// The global map of free pages (row 0 of page 1; bit 1 = free).
class PageAllocator {
public:
    explicit PageAllocator(Pager& pager) : pager_(pager) {}

    // Takes the lowest free page, or a new one behind the end of the file; it comes zeroed. Inside a
    // transaction. 3183 when the file has reached its limit.
    MutablePage allocate();
    // Gives a page back. Inside a transaction.
    void free(PageNumber page_no);
    bool is_free(PageNumber page_no) const;
    // The global map's own bitmap pages.
    std::vector<PageNumber> bitmap_pages() const;
    // Forgets what it remembers of the map (after a rollback).
    void forget() { lowest_free_hint_ = 0; }

    // Writes a usage-map row of the usual length, with `member` in it unless 0, onto page `*page_no`
    // when there is room, otherwise onto a fresh page whose number it leaves in `*page_no` (0: start
    // with a fresh page). Returns the row's address.
    RowId create_map(PageNumber* page_no, PageNumber member = 0);

private:
    void check_unused(PageNumber page_no) const;
    // `page` is that of the map.
    void set_free(PageNumber page_no, bool is_free);
    void use_bitmap_pages(const MutablePage& page);
    void add_bitmap_page(const MutablePage& page, std::size_t k);
    Pager& pager_;
    PageNumber lowest_free_hint_ = 0;
};

}  // namespace jet
