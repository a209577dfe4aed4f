#include "jet/base/code_page.h"

#include <algorithm>

namespace jet {
namespace {

constexpr char16_t kFirstUpper = 0x80;

const CodePage& known_code_page(std::uint16_t number) {
    const CodePage* page = find_code_page(number);
    if (!page) fail(errors::kReserved, "Code page " + std::to_string(number) + " is not known.");
    return *page;
}

}  // namespace

const CodePage* find_code_page(std::uint16_t number) {
    const auto* found = std::find_if(std::begin(kCodePages), std::end(kCodePages),
                                     [number](const CodePage& page) { return page.number == number; });
    return found == std::end(kCodePages) ? nullptr : found;
}

int byte_of(char16_t c, const CodePage& page) {
    if (c < kFirstUpper) return c;
    const auto* found = std::find(std::begin(page.upper), std::end(page.upper), c);
    return found == std::end(page.upper) ? -1 : static_cast<int>(kFirstUpper + (found - page.upper));
}

void decode_narrow(ByteSpan bytes, std::uint16_t code_page, std::u16string& into) {
    const CodePage& page = known_code_page(code_page);
    into.resize(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        into[i] = bytes[i] < kFirstUpper ? bytes[i] : page.upper[bytes[i] - kFirstUpper];
    }
}

ByteVector encode_narrow(std::u16string_view text, std::uint16_t code_page) {
    const CodePage& page = known_code_page(code_page);
    ByteVector bytes;
    bytes.reserve(text.size());
    for (const char16_t c : text) {
        const int byte = byte_of(c, page);
        bytes.push_back(static_cast<std::uint8_t>(byte < 0 ? '?' : byte));
    }
    return bytes;
}

}  // namespace jet
