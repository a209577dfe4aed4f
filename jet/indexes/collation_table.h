// The weights of the General text order as data; jet/indexes/collation_table.cpp is generated from the published
// weight list. Ranges are sorted and cover every code unit from U+0100 up, surrogates excepted.
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet::collation {

enum class Kind : std::uint8_t {
    kIgnored,
    kSimple,       // inline bytes; in a range they grow by one per code unit
    kAccented,     // inline bytes of the base letter and one or two extra bytes
    kUnprintable,  // the value is the code for the list of unprintables
    kModifier,     // the value is added to the extra byte before it
    kKana,         // inline bytes, maybe an extra byte, and a flag
};

struct Weight {
    Kind kind = Kind::kIgnored;
    std::uint8_t lengths = 0;  // bytes: low nibble inline, high nibble extra
    std::uint32_t value = 0;   // inline bytes, the last one in the low byte
    std::uint16_t extra = 0;
    std::uint8_t flag = 0;

    int inline_length() const { return lengths & 0x0F; }
    int extra_length() const { return lengths >> 4; }
    friend bool operator==(const Weight&, const Weight&) = default;
};

struct Range {
    char16_t first;
    Weight weight;  // of `first`
};

extern const Weight kLatin[256];              // U+0000..U+00FF
extern const std::uint16_t kFirstRange[257];  // by high byte: the range that holds its first code unit
extern const std::size_t kRangeCount;
extern const Range kRanges[];

// Jet 3: the weights of the bytes of code page 1252.
struct Weight97 {
    std::uint16_t value;     // one inline byte, or two
    std::uint8_t positions;  // that accents could stand at
    std::uint8_t accent;     // 0: none
};
extern const Weight97 kWeights97[256];

// Version 1, whose weights are longer. Ranges are sorted and cover every code unit, surrogates excepted.
struct Range1 {
    std::uint64_t value;  // inline bytes, the last one in the low byte
    std::uint32_t extra;  // three bytes at most, and the flag of kana in the highest one
    char16_t first;
    Kind kind;
    std::uint8_t lengths;  // bytes: low nibble inline, high nibble extra
};
extern const std::uint16_t kFirstRange1[257];  // by high byte: the range that holds its first code unit
extern const std::size_t kRangeCount1;
extern const Range1 kRanges1[];

}  // namespace jet::collation
