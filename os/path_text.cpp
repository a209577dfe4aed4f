#include "os/path_text.h"

#include "os/code_page.h"

namespace os {
namespace {

constexpr bool is_high(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool is_low(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
constexpr unsigned byte(char c) { return static_cast<unsigned char>(c); }

// A surrogate encoded on its own is ED, then A0 to BF, then any continuation byte.
bool is_lone_surrogate(std::string_view text, std::size_t at) {
    return text.size() - at >= 3 && byte(text[at]) == 0xED && byte(text[at + 1]) >= 0xA0 &&
           byte(text[at + 1]) <= 0xBF && byte(text[at + 2]) >= 0x80 && byte(text[at + 2]) <= 0xBF;
}

}  // namespace

std::u16string units_of_path(std::string_view path) {
    std::u16string units;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (!is_lone_surrogate(path, at)) continue;
        units += detail::utf8_to_utf16(path.substr(begin, at - begin));
        units += static_cast<char16_t>(0xD000 | (byte(path[at + 1]) & 0x3Fu) << 6 | (byte(path[at + 2]) & 0x3Fu));
        at += 2;
        begin = at + 1;
    }
    return units + detail::utf8_to_utf16(path.substr(begin));
}

std::string path_of_units(std::u16string_view units) {
    std::string path;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < units.size(); ++at) {
        const char16_t unit = units[at];
        if (is_high(unit) && at + 1 < units.size() && is_low(units[at + 1])) {
            ++at;
        } else if (is_high(unit) || is_low(unit)) {
            path += detail::utf16_to_utf8(units.substr(begin, at - begin));
            path += static_cast<char>(0xED);
            path += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
            path += static_cast<char>(0x80 | (unit & 0x3F));
            begin = at + 1;
        }
    }
    return path + detail::utf16_to_utf8(units.substr(begin));
}

}  // namespace os
