// The weight of a character in the General order, version 1.
#pragma once

#include "jet/indexes/weights.h"

namespace jet::collation {

struct Weight1 {
    Kind kind = Kind::kIgnored;
    std::uint8_t lengths = 0;
    std::uint8_t flag = 0;
    std::uint32_t extra = 0;
    std::uint64_t value = 0;

    int inline_length() const { return lengths & 0x0F; }
    int extra_length() const { return lengths >> 4; }
};

inline Weight1 weight_1_of(char16_t c) {
    if (is_surrogate(c)) return {Kind::kAccented, 0x12, 0, kSurrogateExtra, surrogate_value(c)};
    const Range1* first = kRanges1 + kFirstRange1[c >> 8];
    const Range1* last = kRanges1 + std::min<std::size_t>(kFirstRange1[(c >> 8) + 1] + 1u, kRangeCount1);
    const Range1* next =
        std::upper_bound(first, last, c, [](char16_t unit, const Range1& range) { return unit < range.first; });
    const Range1& range = *(next - 1);
    const std::uint64_t grown = range.kind == Kind::kSimple ? static_cast<std::uint64_t>(c - range.first) : 0;
    return {range.kind, range.lengths, static_cast<std::uint8_t>(range.extra >> 24), range.extra & 0xFFFFFF,
            range.value + grown};
}

}  // namespace jet::collation
