// The keys that texts have in an index.
#pragma once

#include <cstdint>
#include <string_view>

#include "jet/base/bytes.h"

namespace jet {

// The orders that keys are known for.
enum class TextOrder : std::uint8_t {
    kGeneral97,  // Jet 3, over the bytes of code page 1252
    kGeneral,    // Jet 4: LCID 1033, version 0
    kGeneral1,   // LCID 1033, version 1: Access 2010 and later
};

// By which rule a key is made. New entries are made by the first; by the others programs have made entries that files
// still hold.
enum class KeyRule : std::uint8_t {
    kOwn,                 // accents have a position for each weight of a letter that expands (ss, ae)
    kOnePosition,         // and here one for the letter
    kOnePositionNoMarks,  // the same, and kana leave no mark once their flags are trimmed to nothing
};
inline constexpr KeyRule kFormerKeyRules[] = {KeyRule::kOnePosition, KeyRule::kOnePositionNoMarks};

// Appends the sort key of the first 255 characters without trailing blanks, without the leading flag byte. Ascending
// form. Sources of the weights: jet/indexes/collation_table*.cpp (generated).
void append_sort_key(ByteVector& to, std::u16string_view text, TextOrder order = TextOrder::kGeneral,
                     KeyRule rule = KeyRule::kOwn);
// The descending form (inverted; in Jet 4 with its own terminator), without the leading flag byte.
void append_descending_sort_key(ByteVector& to, std::u16string_view text, TextOrder order = TextOrder::kGeneral,
                                KeyRule rule = KeyRule::kOwn);

// A key of the General order, version 0, over a whole text, without the 00 at its end.
void append_sections(ByteVector& to, std::u16string_view text);

}  // namespace jet
