#include "jet/pages/dirty_pages.h"

#include <algorithm>
#include <array>
#include <new>

namespace jet {
namespace {

constexpr std::size_t kRunPages = 64;

// The number of pages of a run to gather for one write; 1 when there is no memory to gather them.
std::size_t longest_run(ByteVector& run, std::size_t pages, std::size_t page_size) {
    try {
        run.reserve(std::min(pages, kRunPages) * page_size);
        return kRunPages;
    } catch (const std::bad_alloc&) {
        return 1;
    }
}

void write_one(os::File& file, const FrameRef& place, const PageCipher& cipher) {
    const MutableByteSpan page = place.page();
    const std::uint64_t at = std::uint64_t{place.frame->page_no} * page.size();
    if (!cipher.is_on()) return file.write(at, page);
    std::array<std::uint8_t, jet4::kPageSize> encoded;
    const MutableByteSpan into = MutableByteSpan(encoded).first(page.size());
    store_bytes(into, 0, page);
    cipher.apply(place.frame->page_no, into);
    file.write(at, into);
}

}  // namespace

void DirtyPages::make_room(std::size_t count) {
    if (pages_.capacity() - pages_.size() < count) pages_.reserve(std::max(pages_.size() + count, 2 * pages_.size()));
}

void DirtyPages::add(Frame& frame) {
    if (!frame.dirty) pages_.push_back(frame.page_no);
    frame.dirty = true;
}

void DirtyPages::write_to(os::File& file, const PageCache& cache, const PageCipher& cipher) {
    if (pages_.empty()) return;
    std::sort(pages_.begin(), pages_.end());
    const std::size_t page_size = cache.find(pages_.front()).page().size();
    ByteVector run;
    const std::size_t longest = longest_run(run, pages_.size(), page_size);
    for (std::size_t i = 0; i < pages_.size();) {
        std::size_t end = i + 1;
        while (end < pages_.size() && pages_[end] == pages_[end - 1] + 1 && end - i < longest) ++end;
        if (end - i == 1) {
            write_one(file, cache.find(pages_[i]), cipher);
        } else {
            run.clear();
            for (std::size_t k = i; k < end; ++k) {
                append_bytes(run, cache.find(pages_[k]).page());
                cipher.apply(pages_[k], MutableByteSpan(run).last(page_size));
            }
            file.write(std::uint64_t{pages_[i]} * page_size, run);
        }
        written_ += end - i;
        i = end;
    }
    for (const PageNumber page_no : pages_) cache.find(page_no).frame->dirty = false;
    pages_.clear();
}

}  // namespace jet
