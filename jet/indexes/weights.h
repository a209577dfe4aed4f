// The weight of a character in the General order, version 0.
#pragma once

#include <algorithm>

#include "jet/indexes/collation_table.h"

namespace jet::collation {

inline bool is_surrogate(char16_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// Surrogates have no rows in the tables: their weights, the same in both versions, follow from the code unit. The value
// is two inline bytes; the extra byte is kSurrogateExtra.
inline constexpr std::uint8_t kSurrogateExtra = 0x3F;
inline std::uint32_t surrogate_value(char16_t c) {
    if (c < 0xDC00) return c - 10238u;
    const unsigned offset = c - 0xDC00u;
    const unsigned less = offset < 8 ? 9992 : offset < 262 ? 9990 : offset < 516 ? 9988 : offset < 770 ? 9986 : 9984;
    return c - less;
}

inline Weight wide_weight(char16_t c) {
    if (is_surrogate(c)) return {Kind::kAccented, 0x12, surrogate_value(c), kSurrogateExtra, 0};
    const Range* first = kRanges + kFirstRange[c >> 8];
    const Range* last = kRanges + std::min<std::size_t>(kFirstRange[(c >> 8) + 1] + 1u, kRangeCount);
    const Range* next =
        std::upper_bound(first, last, c, [](char16_t unit, const Range& range) { return unit < range.first; });
    const Range& range = *(next - 1);
    Weight weight = range.weight;
    if (weight.kind == Kind::kSimple) weight.value += static_cast<std::uint32_t>(c - range.first);
    return weight;
}

inline Weight weight_of(char16_t c) { return c < 256 ? kLatin[c] : wide_weight(c); }

inline bool has_inline_bytes(Kind kind) {
    return kind == Kind::kSimple || kind == Kind::kAccented || kind == Kind::kKana;
}

}  // namespace jet::collation
