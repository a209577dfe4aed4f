// Bytes as hexadecimal text, for expected values.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace testing_support {

// "01 AB".
inline std::string hex(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// The bytes of lower-case digits, two for each byte; everything else in the text is skipped.
inline std::vector<std::uint8_t> from_hex(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    int high = -1;
    for (const char c : text) {
        const std::size_t digit = std::string_view("0123456789abcdef").find(c);
        if (digit == std::string_view::npos) continue;
        if (high < 0) {
            high = static_cast<int>(digit);
        } else {
            bytes.push_back(static_cast<std::uint8_t>(high * 16 + static_cast<int>(digit)));
            high = -1;
        }
    }
    return bytes;
}

}  // namespace testing_support
