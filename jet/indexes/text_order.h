// The text orders that keys are known for, and the rules by which keys have been made.
#pragma once

#include <cstdint>

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

}  // namespace jet
