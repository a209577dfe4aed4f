#include "jet/pages/page_cache.h"

#include <algorithm>
#include <array>

#include "os/page_memory.h"

namespace jet {
namespace {

constexpr std::uint8_t kMaxUses = 3;

}  // namespace

// Frames allocated together, as many as fill a large page of memory with pages of Jet 4; those of Jet 3 fill a half.
struct PageCache::Group {
    static constexpr std::uint32_t kFrames = os::PageMemory::kLargePage / jet4::kPageSize;

    // The first group suffices for most databases; its untouched part costs nothing.
    Group(bool first, std::size_t page_size)
        : bytes(kFrames * page_size, first || page_size < jet4::kPageSize ? os::PageMemory::Source::kHeap
                                                                          : os::PageMemory::Source::kSystem) {}
    std::array<Frame, kFrames> frames;
    os::PageMemory bytes;
};

PageCache::PageCache(std::size_t pages, std::size_t page_size)
    : limit_(pages), page_size_(static_cast<std::uint16_t>(page_size)) {}

PageCache::~PageCache() = default;

FrameRef PageCache::frame_at(std::uint32_t frame_no) const {
    Group& group = *groups_[frame_no / Group::kFrames];
    const std::size_t at = frame_no % Group::kFrames;
    return {&group.frames[at], group.bytes.data() + at * page_size_};
}

FrameRef PageCache::use(PageNumber page_no) {
    const FrameRef place = find(page_no);
    if (!place) return place;
    // Consecutive reads, as an enumeration makes them, count as one use.
    if (page_no != last_used_ && place.frame->uses < kMaxUses) ++place.frame->uses;
    last_used_ = page_no;
    return place;
}

FrameRef PageCache::add(PageNumber page_no) {
    std::uint32_t frame_no = FrameTable::kNone;
    if (frame_count_ >= std::max<std::size_t>(limit_, search_from_)) frame_no = evicted_frame();
    if (frame_no == FrameTable::kNone) frame_no = added_frame();
    table_.set(page_no, frame_no);
    const FrameRef place = frame_at(frame_no);
    *place.frame = {};
    place.frame->page_no = page_no;
    place.frame->page_bytes = page_size_;
    last_used_ = page_no;
    return place;
}

void PageCache::remove(Frame& frame) {
    if (frame.page_no < jet4::kMaxPages) table_.clear(frame.page_no);
    const std::uint32_t pins = frame.pins;
    frame = {};
    frame.pins = pins;
    frame.page_bytes = page_size_;  // of whoever holds the page still
}

// Clock eviction: skips pinned, dirty and changed frames, takes the first without uses left.
std::uint32_t PageCache::evicted_frame() {
    for (std::uint64_t i = 0; i < (kMaxUses + 1) * std::uint64_t{frame_count_}; ++i) {
        const std::uint32_t frame_no = clock_hand_;
        clock_hand_ = clock_hand_ + 1 < frame_count_ ? clock_hand_ + 1 : 0;
        Frame& frame = *frame_at(frame_no).frame;
        if (frame.pins > 0 || frame.dirty || frame.saved_level > 0) continue;
        if (frame.uses > 0) {
            --frame.uses;
            continue;
        }
        remove(frame);
        return frame_no;
    }
    // One large transaction holds all frames: a new search for each of its pages would take ever longer.
    search_from_ = frame_count_ + frame_count_ / 4;
    return FrameTable::kNone;
}

std::uint32_t PageCache::added_frame() {
    if (frame_count_ == groups_.size() * Group::kFrames)
        groups_.push_back(std::make_unique<Group>(groups_.empty(), page_size_));
    return frame_count_++;
}

}  // namespace jet
