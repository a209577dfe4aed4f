// Comparison in the General text order (LCID 1033, version 0) of Jet 4. Keys of it and of others: sort_key.h.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace jet {

// Equality and order of the General order over whole texts, trailing blanks ignored. No length limit
// of an index applies: texts of any length are compared whole.
bool equal_text(std::u16string_view a, std::u16string_view b);
int compare_text(std::u16string_view a, std::u16string_view b);  // <0, 0, >0
// The same for a text of one byte a character (U+0000..U+00FF), where the first difference decides alone; none where a
// closer look is needed.
std::optional<int> compare_latin(std::span<const std::uint8_t> a, std::u16string_view b);

// Whether two names of objects or columns are the same: as the catalogue's unique index sees them, so exactly when it
// refuses one.
inline bool same_name(std::u16string_view a, std::u16string_view b) { return equal_text(a, b); }

// For pattern matching of single characters: equal without regard to case, accents distinguished.
bool equal_character(char16_t a, char16_t b);
// Order of single characters ignoring case, accented letters after their base letter.
int compare_character(char16_t a, char16_t b);

}  // namespace jet
