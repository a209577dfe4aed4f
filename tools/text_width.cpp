#include "tools/text_width.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace tools {
namespace {

struct Span {
    char32_t first, last;
};

// The blocks of wide characters, coarsely.
constexpr Span kWide[] = {
    {0x1100, 0x115F}, {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},   {0x25FD, 0x25FE},   {0x2614, 0x2615},
    {0x2648, 0x2653}, {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x2705, 0x2705},   {0x274C, 0x274C},   {0x2753, 0x2755},
    {0x2795, 0x2797}, {0x2B1B, 0x2B1C},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},
    {0xA000, 0xA4CF}, {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},
    {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

// Marks that combine with the character before them, joiners and variation selectors.
constexpr Span kNoWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F}, {0x0E31, 0x0E31},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x20D0, 0x20FF},
    {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF},
};

template <std::size_t n>
bool is_in(const Span (&spans)[n], char32_t c) {
    return std::any_of(std::begin(spans), std::end(spans), [c](Span s) { return s.first <= c && c <= s.last; });
}

// Takes the first character off; a byte that begins none stands for itself.
char32_t take_character(std::string_view& utf8) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const std::size_t length = byte(0) < 0xC0 ? 1 : byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : 4;
    char32_t c = length == 1 ? byte(0) : byte(0) & (0xFFU >> (length + 1));
    std::size_t taken = 1;
    for (; taken < length && taken < utf8.size() && (byte(taken) & 0xC0) == 0x80; ++taken)
        c = c << 6 | (byte(taken) & 0x3F);
    utf8.remove_prefix(taken);
    return c;
}

std::size_t width_of(char32_t c) {
    if (c < 0x300) return 1;
    return is_in(kNoWidth, c) ? 0 : is_in(kWide, c) ? 2 : 1;
}

}  // namespace

std::size_t display_width(std::string_view utf8) {
    std::size_t width = 0;
    while (!utf8.empty()) width += width_of(take_character(utf8));
    return width;
}

std::string escaped(std::string_view utf8) {
    std::string text;
    while (!utf8.empty()) {
        std::string_view rest = utf8;
        const char32_t c = take_character(rest);
        const std::string_view bytes = utf8.substr(0, utf8.size() - rest.size());
        utf8 = rest;
        if (c == '\n') {
            text += "\\n";
        } else if (c == '\r') {
            text += "\\r";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x202A && c <= 0x202E) ||
                   (c >= 0x2066 && c <= 0x2069)) {
            char code[16];
            std::snprintf(code, sizeof code, c < 0x100 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(c));
            text += code;
        } else {
            text += bytes;
        }
    }
    return text;
}

std::string cut_to_width(std::string_view utf8, std::size_t width) {
    if (display_width(utf8) <= width) return std::string(utf8);
    if (width == 0) return {};
    const std::string_view all = utf8;
    std::size_t used = 0;
    std::size_t kept = 0;
    while (!utf8.empty()) {
        used += width_of(take_character(utf8));
        if (used > width - 1) break;
        kept = all.size() - utf8.size();
    }
    return std::string(all.substr(0, kept)) + "\u2026";
}

std::string padded(std::string_view utf8, std::size_t width) {
    std::string text(utf8);
    const std::size_t used = display_width(utf8);
    return used < width ? text.append(width - used, ' ') : text;
}

}  // namespace tools
