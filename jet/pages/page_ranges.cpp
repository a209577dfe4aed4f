#include "jet/pages/page_ranges.h"

#include <bit>
#include <cstring>

#include "jet/base/format.h"

namespace jet {
namespace {

constexpr std::size_t kWord = 8;
constexpr std::size_t kBlock = 256;  // compared at once; most of a page is unchanged
static_assert(kJet3.page_size % kBlock == 0 && kJet4.page_size % kBlock == 0);

std::uint64_t difference(const std::uint8_t* a, const std::uint8_t* b) {
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::memcpy(&x, a, kWord);
    std::memcpy(&y, b, kWord);
    return x ^ y;
}

// Number of zero bytes at the start, and at the end, of a word in memory order.
std::size_t bytes_before(std::uint64_t word) {
    return static_cast<std::size_t>(std::endian::native == std::endian::little ? std::countr_zero(word)
                                                                               : std::countl_zero(word)) /
           8;
}
std::size_t bytes_after(std::uint64_t word) {
    return static_cast<std::size_t>(std::endian::native == std::endian::little ? std::countl_zero(word)
                                                                               : std::countr_zero(word)) /
           8;
}

}  // namespace

PageRanges::PageRanges(const std::uint8_t* now, const std::uint8_t* before, std::size_t page_size) {
    for (std::size_t block = 0; block < page_size; block += kBlock) {
        if (std::memcmp(now + block, before + block, kBlock) == 0) continue;
        for (std::size_t at = block; at < block + kBlock; at += kWord) {
            const std::uint64_t word = difference(now + at, before + at);
            if (word != 0) add(at + bytes_before(word), at + kWord - bytes_after(word));
        }
    }
}

void PageRanges::add(std::size_t first, std::size_t end) {
    if (count_ > 0) {
        PageRange& last = ranges_[count_ - 1];
        if (first - (std::size_t{last.at} + last.bytes) < kGap) {
            last.bytes = static_cast<std::uint16_t>(end - last.at);
            return;
        }
    }
    ranges_[count_++] = {static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(end - first)};
}

std::size_t PageRanges::bytes() const {
    std::size_t sum = 0;
    for (const PageRange& range : *this) sum += range.bytes;
    return sum;
}

}  // namespace jet
