// The page cache: frames, the page in each of them, and eviction.
//
// Invariants
//  1. A frame never moves. A frame that is pinned, dirty or changed by an open transaction is not evicted.
//  2. The cache reads and writes no file and knows nothing of transactions beyond the fields of a frame.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/types.h"
#include "jet/pages/frame_table.h"

namespace jet {

// Stored apart from the page's bytes, so that the frames of many pages share a cache line.
struct Frame {
    PageNumber page_no = jet4::kMaxPages;  // kMaxPages: free
    std::uint32_t pins = 0;
    std::int32_t saved_level = 0;  // innermost open transaction that holds a before-image; 0: none
    std::uint32_t generation = 0;  // journal generation that holds the whole page; 0: none since it was read
    bool dirty = false;            // committed, not yet in the .mdb
    std::uint8_t uses = 0;         // recent uses, counted up to a small limit
    std::uint16_t page_bytes = 0;
};

// A frame and its page; empty when `frame` is null.
struct FrameRef {
    Frame* frame = nullptr;
    std::uint8_t* bytes = nullptr;

    explicit operator bool() const { return frame != nullptr; }
    MutableByteSpan page() const { return {bytes, frame->page_bytes}; }
};

// A pinned page: its bytes stay in place while the object lives. `bytes()` is always a whole page.
class Page {
public:
    Page() = default;
    Page(Page&& other) noexcept : place_(std::exchange(other.place_, {})) {}
    Page& operator=(Page&& other) noexcept {
        std::swap(place_, other.place_);
        return *this;
    }
    ~Page() {
        if (place_) --place_.frame->pins;
    }

    ByteSpan bytes() const { return place_.page(); }
    PageNumber number() const { return place_.frame->page_no; }

protected:
    friend class Pager;
    explicit Page(FrameRef place) : place_(place) { ++place_.frame->pins; }
    FrameRef place_;
};

// A pinned page of the open transaction that may be written.
class MutablePage : public Page {
public:
    MutablePage() = default;
    MutableByteSpan bytes() const { return place_.page(); }

private:
    friend class Pager;
    using Page::Page;
};

class PageCache {
public:
    // Holds up to `pages` pages, each of at most jet4::kPageSize, and more only while none of them can be evicted.
    explicit PageCache(std::size_t pages, std::size_t page_size = jet4::kPageSize);
    ~PageCache();
    PageCache(const PageCache&) = delete;
    PageCache& operator=(const PageCache&) = delete;

    // The page's frame; empty when the page is not in memory.
    FrameRef find(PageNumber page_no) const {
        const std::uint32_t frame_no = table_.find(page_no);
        return frame_no != FrameTable::kNone ? frame_at(frame_no) : FrameRef{};
    }
    // As find(), and counts a use: pages used by several calls outlive those that an enumeration reads once.
    FrameRef use(PageNumber page_no);
    // Allocates a frame for a page that has none. Its bytes are undefined. Throws std::bad_alloc.
    FrameRef add(PageNumber page_no);
    // Frees the frame; needs no memory.
    void remove(Frame& frame);
    // Call after frames have become evictable: restarts the search for one.
    void search_again() { search_from_ = 0; }

private:
    struct Group;

    FrameRef frame_at(std::uint32_t frame_no) const;
    std::uint32_t evicted_frame();
    std::uint32_t added_frame();

    const std::size_t limit_;
    const std::uint16_t page_size_;
    FrameTable table_;
    std::vector<std::unique_ptr<Group>> groups_;
    std::uint32_t frame_count_ = 0;  // frames in use, from the first group on
    std::uint32_t clock_hand_ = 0;
    std::uint32_t search_from_ = 0;  // below this frame count a search for an evictable frame is futile
    PageNumber last_used_ = jet4::kMaxPages;
};

}  // namespace jet
