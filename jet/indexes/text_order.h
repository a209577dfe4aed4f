// The text orders that keys are known for, and the rules by which keys have been made.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace jet {

struct ColumnDef;

// The orders that keys are known for.
enum class TextOrder : std::uint8_t {
    kGeneral97,  // Jet 3, over the bytes of code page 1252
    kLatin97,    // Jet 3 in another code page: as General97 for plain Latin texts; keys of others are not known
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

// The order of a text column; none where keys of it are not known.
std::optional<TextOrder> text_order(const ColumnDef& column);

// The order of a text column by its numbers, for an error text: "order 1033, version 0".
std::string described_order(const ColumnDef& column);

// Whether an index in the order is changed only after its entries have been compared with what its rows give: the
// weights are proved for few letters, or taken from the order of another code page.
constexpr bool is_to_be_proved(TextOrder order) {
    return order == TextOrder::kGeneral1 || order == TextOrder::kLatin97;
}

// Whether the key of the text is known in the order of the column.
bool is_key_known(std::u16string_view text, const ColumnDef& column);

}  // namespace jet
