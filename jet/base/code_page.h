// The code pages that Jet 3 files keep their texts in: one byte a character, the lower half ASCII.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "jet/base/bytes.h"

namespace jet {

struct CodePage {
    std::uint16_t number;
    char16_t upper[128];  // of the bytes from 0x80 on
};

inline constexpr std::size_t kCodePageCount = 10;
extern const CodePage kCodePages[kCodePageCount];  // the first one is 1252

inline constexpr std::uint16_t kWesternCodePage = 1252;

// Null for a code page that is not known, those of two bytes a character among them.
const CodePage* find_code_page(std::uint16_t number);

// The byte of a character; -1 where the code page lacks it.
int byte_of(char16_t c, const CodePage& page);

// A text of a code page that has been found to be known.
void decode_narrow(ByteSpan bytes, std::uint16_t code_page, std::u16string& into);
// Each UTF-16 unit that the code page lacks becomes "?".
ByteVector encode_narrow(std::u16string_view text, std::uint16_t code_page);

}  // namespace jet
