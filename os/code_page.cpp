// Owns UTF-8 and Windows-1252. Invariant: every byte of Windows-1252 and every well-formed UTF-8 text survives a round
// trip unchanged.
#include "os/code_page.h"

#include <array>
#include <cstdint>
#include <type_traits>

namespace os::detail {
namespace {

constexpr char32_t kLastCodePoint = 0x10FFFF;

constexpr bool is_high_surrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool is_low_surrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

struct Utf8Lead {
    std::size_t length = 0;  // bytes of the character; 0 where the byte cannot begin one
    char32_t bits = 0;       // the lead byte's bits of the code point
    char32_t smallest = 0;   // smaller code points have a shorter form
};

constexpr Utf8Lead utf8_lead(std::uint8_t byte) {
    if (byte < 0x80) return {1, byte, 0};
    if (byte >= 0xC0 && byte < 0xE0) return {2, byte & 0x1Fu, 0x80};
    if (byte >= 0xE0 && byte < 0xF0) return {3, byte & 0x0Fu, 0x800};
    if (byte >= 0xF0 && byte < 0xF8) return {4, byte & 0x07u, 0x10000};
    return {};
}

// Decodes the well-formed character at the start of `text` into `code_point`; returns its length in bytes, 0 when there
// is none.
std::size_t decode_utf8(std::string_view text, char32_t& code_point) {
    const Utf8Lead lead = utf8_lead(static_cast<std::uint8_t>(text.front()));
    if (lead.length == 0 || lead.length > text.size()) return 0;
    code_point = lead.bits;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        if ((byte & 0xC0) != 0x80) return 0;
        code_point = code_point << 6 | (byte & 0x3Fu);
    }
    const bool is_surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
    return code_point < lead.smallest || code_point > kLastCodePoint || is_surrogate ? 0 : lead.length;
}

void append_utf8(std::string& to, char32_t code_point) {
    const auto append = [&to](char32_t byte) { to.push_back(static_cast<char>(byte)); };
    const auto append_tail = [&](int shift) { append(0x80 | (code_point >> shift & 0x3F)); };
    if (code_point < 0x80) {
        append(code_point);
    } else if (code_point < 0x800) {
        append(0xC0 | code_point >> 6);
        append_tail(0);
    } else if (code_point < 0x10000) {
        append(0xE0 | code_point >> 12);
        append_tail(6);
        append_tail(0);
    } else {
        append(0xF0 | code_point >> 18);
        append_tail(12);
        append_tail(6);
        append_tail(0);
    }
}

// Windows-1252 bytes 0x80 to 0x9F; every other byte equals its code point.
constexpr std::uint8_t kFirstSpecial = 0x80;
constexpr std::array<char16_t, 32> kSpecial = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char to_windows_1252(char16_t unit) {
    if (unit < kFirstSpecial || (unit >= kFirstSpecial + kSpecial.size() && unit <= 0xFF)) {
        return static_cast<char>(unit);
    }
    for (std::size_t i = 0; i < kSpecial.size(); ++i) {
        if (kSpecial[i] == unit) return static_cast<char>(kFirstSpecial + i);
    }
    return '?';
}

// Fast path for pure ASCII, which is the same in every code page and covers most texts: moves such a text whole from
// `text` to the result.
template <class Result, class Text>
Result take_ascii(Text& text) {
    using Unit = std::conditional_t<sizeof(typename Text::value_type) == 1, std::uint8_t, char16_t>;
    unsigned bits = 0;
    for (const auto unit : text) bits |= static_cast<Unit>(unit);
    Result result;
    if (bits >= 0x80) {
        result.reserve(text.size());
        return result;
    }
    result.resize(text.size());
    auto to = result.begin();
    for (const auto unit : text) *to++ = static_cast<typename Result::value_type>(unit);
    text = {};
    return result;
}

}  // namespace

std::u16string utf8_to_utf16(std::string_view narrow) {
    std::u16string wide = take_ascii<std::u16string>(narrow);
    while (!narrow.empty()) {
        char32_t code_point = 0;
        const std::size_t length = decode_utf8(narrow, code_point);
        if (length == 0) {
            wide.push_back(kUnknownCharacter);
            narrow.remove_prefix(1);
            continue;
        }
        if (code_point >= 0x10000) {
            wide.push_back(static_cast<char16_t>(0xD800 + ((code_point - 0x10000) >> 10)));
            wide.push_back(static_cast<char16_t>(0xDC00 + ((code_point - 0x10000) & 0x3FF)));
        } else {
            wide.push_back(static_cast<char16_t>(code_point));
        }
        narrow.remove_prefix(length);
    }
    return wide;
}

std::string utf16_to_utf8(std::u16string_view wide) {
    std::string narrow = take_ascii<std::string>(wide);
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const char16_t unit = wide[i];
        if (is_high_surrogate(unit) && i + 1 < wide.size() && is_low_surrogate(wide[i + 1])) {
            append_utf8(narrow, 0x10000 + ((unit - 0xD800u) << 10) + (wide[i + 1] - 0xDC00u));
            ++i;
        } else if (is_high_surrogate(unit) || is_low_surrogate(unit)) {
            narrow.push_back('?');
        } else {
            append_utf8(narrow, unit);
        }
    }
    return narrow;
}

std::u16string windows_1252_to_utf16(std::string_view narrow) {
    std::u16string wide = take_ascii<std::u16string>(narrow);
    for (const char c : narrow) {
        const auto byte = static_cast<std::uint8_t>(c);
        const bool is_special = byte >= kFirstSpecial && byte < kFirstSpecial + kSpecial.size();
        wide.push_back(is_special ? kSpecial[static_cast<std::size_t>(byte - kFirstSpecial)] : byte);
    }
    return wide;
}

std::string utf16_to_windows_1252(std::u16string_view wide) {
    std::string narrow = take_ascii<std::string>(wide);
    for (const char16_t unit : wide) narrow.push_back(to_windows_1252(unit));
    return narrow;
}

}  // namespace os::detail
