#include "jet/pages/dirty_pages.h"

#include <algorithm>
#include <new>

namespace jet {
namespace {

constexpr std::size_t kRunPages = 64;

// The number of pages of a run to gather for one write; 1 when there is no memory to gather them.
std::size_t longest_run(ByteVector& run, std::size_t pages) {
    try {
        run.reserve(std::min(pages, kRunPages) * jet4::kPageSize);
        return kRunPages;
    } catch (const std::bad_alloc&) {
        return 1;
    }
}

}  // namespace

void DirtyPages::make_room(std::size_t count) {
    if (pages_.capacity() - pages_.size() < count) pages_.reserve(std::max(pages_.size() + count, 2 * pages_.size()));
}

void DirtyPages::add(Frame& frame) {
    if (!frame.dirty) pages_.push_back(frame.page_no);
    frame.dirty = true;
}

void DirtyPages::write_to(os::File& file, const PageCache& cache) {
    std::sort(pages_.begin(), pages_.end());
    ByteVector run;
    const std::size_t longest = longest_run(run, pages_.size());
    for (std::size_t i = 0; i < pages_.size();) {
        std::size_t end = i + 1;
        while (end < pages_.size() && pages_[end] == pages_[end - 1] + 1 && end - i < longest) ++end;
        const std::uint64_t at = std::uint64_t{pages_[i]} * jet4::kPageSize;
        if (end - i == 1) {
            file.write(at, cache.find(pages_[i]).page());
        } else {
            run.clear();
            for (std::size_t k = i; k < end; ++k) append_bytes(run, cache.find(pages_[k]).page());
            file.write(at, run);
        }
        written_ += end - i;
        i = end;
    }
    for (const PageNumber page_no : pages_) cache.find(page_no).frame->dirty = false;
    pages_.clear();
}

}  // namespace jet
