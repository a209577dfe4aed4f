// A key is the inline bytes of all characters and the accents by position, one half byte each: 2 for a letter that
// could have one and has none. Letters behind the last accent count for nothing.
#include "jet/indexes/collation_97.h"

#include <algorithm>

#include "jet/base/code_page.h"
#include "jet/indexes/collation_table.h"

namespace jet {

void append_key_97(ByteVector& to, std::u16string_view text, KeyRule rule) {
    ByteVector halves;           // accents by position
    std::size_t unaccented = 0;  // positions since the last accent
    for (const char16_t c : text) {
        const int byte = byte_of(c, kCodePages[0]);
        if (byte < 0) continue;
        const collation::Weight97& weight = collation::kWeights97[byte];
        append_be(to, weight.value, weight.value > 0xFF ? 2 : 1);
        if (weight.accent == 0) {
            const std::size_t most = rule == KeyRule::kOwn ? weight.positions : 1;
            unaccented += std::min<std::size_t>(weight.positions, most);
            continue;
        }
        if (halves.empty()) halves.push_back(0);
        halves.insert(halves.end(), unaccented, 2);
        halves.push_back(weight.accent);
        unaccented = 0;
    }
    halves.push_back(0);
    if (halves.size() % 2 != 0 && halves.size() > 1) halves.push_back(0);
    if (halves.size() == 1) {
        to.push_back(0);
        return;
    }
    for (std::size_t i = 0; i < halves.size(); i += 2) {
        to.push_back(static_cast<std::uint8_t>(halves[i] << 4 | halves[i + 1]));
    }
}

}  // namespace jet
