// The code pages that Jet 3 files keep their texts in: ASCII, and above it one byte a character, or one or two.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "jet/base/bytes.h"

namespace jet {

// Characters of two bytes, by lead byte and trail byte.
struct BytePairs {
    static constexpr std::uint8_t kFirstTrail = 0x40;
    static constexpr std::uint8_t kLastTrail = 0xFE;
    static constexpr std::size_t kTrails = kLastTrail - kFirstTrail + 1;

    std::uint8_t first_lead;
    std::uint8_t last_lead;
    // Pairs of these lead bytes are written only for characters that have no other pair.
    std::uint8_t first_late_lead;
    std::uint8_t last_late_lead;
    const char16_t* units;  // kTrails for each lead byte; 0: no character
};

struct CodePage {
    std::uint16_t number;
    char16_t upper[128];     // of the bytes from 0x80 on, where they begin no pair
    const BytePairs* pairs;  // null: one byte a character
};

inline constexpr std::size_t kCodePageCount = 14;
extern const CodePage kCodePages[kCodePageCount];  // the first one is 1252

inline constexpr std::uint16_t kWesternCodePage = 1252;

// Null for a code page that is not known.
const CodePage* find_code_page(std::uint16_t number);

// The byte of a character in a code page of one byte a character; -1 where the code page lacks it.
int byte_of(char16_t c, const CodePage& page);

// A text of a code page that has been found to be known. Bytes that are no text of it become units that encode_narrow
// gives back as they were; of a character that has two pairs of bytes it writes the usual one.
void decode_narrow(ByteSpan bytes, std::uint16_t code_page, std::u16string& into);
// Each UTF-16 unit that the code page lacks becomes "?".
ByteVector encode_narrow(std::u16string_view text, std::uint16_t code_page);
// Whether the code page has every character of the text.
bool is_in_code_page(std::u16string_view text, std::uint16_t code_page);

}  // namespace jet
