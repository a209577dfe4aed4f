// Names in the two encodings they travel in.
#include "jet/base/types.h"

namespace jet {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool is_high_surrogate(char32_t c) { return c >= 0xD800 && c < 0xDC00; }
bool is_low_surrogate(char32_t c) { return c >= 0xDC00 && c < 0xE000; }

void append_utf8(std::string& to, char32_t c) {
    const auto put = [&to](char32_t byte) { to.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

void append_utf16(std::u16string& to, char32_t c) {
    if (c < 0x10000) {
        to.push_back(static_cast<char16_t>(c));
    } else {
        to.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
        to.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
}

// Number of bytes that a sequence with this first byte has; 0 for a byte that starts none.
std::size_t sequence_length(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    if (first >= 0xF0 && first <= 0xF4) return 4;
    return 0;
}

// The character at `at` and the bytes it takes; a byte that belongs to no valid sequence is one character.
char32_t decode_utf8(std::string_view text, std::size_t at, std::size_t& used) {
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = sequence_length(first);
    used = 1;
    if (length == 1) return first;
    if (length == 0 || length > text.size() - at) return kReplacement;
    char32_t c = first & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0) != 0x80) return kReplacement;
        c = c << 6 | (byte & 0x3F);
    }
    if (c < kSmallest[length] || c > 0x10FFFF || is_high_surrogate(c) || is_low_surrogate(c)) return kReplacement;
    used = length;
    return c;
}

}  // namespace

std::string to_utf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (is_high_surrogate(c) && i + 1 < text.size() && is_low_surrogate(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
        } else if (is_high_surrogate(c) || is_low_surrogate(c)) {
            c = kReplacement;
        }
        append_utf8(result, c);
    }
    return result;
}

std::u16string from_utf8(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        std::size_t used = 1;
        append_utf16(result, decode_utf8(text, i, used));
        i += used;
    }
    return result;
}

}  // namespace jet
