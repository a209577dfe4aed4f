// The byte ranges in which two images of a page differ.
#pragma once

#include <array>
#include <cstdint>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"

namespace jet {

struct PageRange {
    std::uint16_t at;
    std::uint16_t bytes;
};

// Ranges in ascending order, at least kGap equal bytes apart. Allocates no memory.
class PageRanges {
public:
    // Fewer equal bytes do not justify a range of their own.
    static constexpr std::size_t kGap = 9;

    // Each image is `page_size` bytes long, a multiple of 256 and at most jet4::kPageSize.
    PageRanges(const std::uint8_t* now, const std::uint8_t* before, std::size_t page_size = jet4::kPageSize);

    const PageRange* begin() const { return ranges_.data(); }
    const PageRange* end() const { return ranges_.data() + count_; }
    std::size_t size() const { return count_; }
    // Of all ranges together.
    std::size_t bytes() const;

private:
    void add(std::size_t first, std::size_t end);

    std::size_t count_ = 0;
    std::array<PageRange, jet4::kPageSize / (1 + kGap) + 1> ranges_;
};

}  // namespace jet
