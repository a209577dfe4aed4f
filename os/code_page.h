// The two code pages that are the same on every platform. The third, the system's own on Windows, is left to the
// system.
#pragma once

#include <string>
#include <string_view>

namespace os::detail {

// What a byte becomes that its code page does not know. Not "?", which in a pattern stands for every character.
inline constexpr char16_t kUnknownCharacter = 0xFFFD;

// UTF-8 to UTF-16. Every byte that is not part of a well-formed character becomes one U+FFFD: stray and
// missing continuation bytes, overlong forms, surrogates, and values past U+10FFFF.
std::u16string utf8_to_utf16(std::string_view narrow);
// UTF-16 to UTF-8. A surrogate without its partner becomes "?".
std::string utf16_to_utf8(std::u16string_view wide);

// Windows-1252; its five unassigned bytes stand for the code points of the same value.
std::u16string windows_1252_to_utf16(std::string_view narrow);
// Each 16-bit unit without an equivalent becomes one "?", so a surrogate pair becomes two.
std::string utf16_to_windows_1252(std::u16string_view wide);

}  // namespace os::detail
