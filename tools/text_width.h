// Text on a terminal: how many places it takes, and what of it a terminal must not see.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

// Places of UTF-8 text: two for the wide characters of East Asia and pictures, none for marks that stand on another.
std::size_t display_width(std::string_view utf8);
// The text with control characters shown, as \n, \t or \x1b.
std::string escaped(std::string_view utf8);
// The longest front of it that takes at most `width` places, with a mark at its end where something is missing.
std::string cut_to_width(std::string_view utf8, std::size_t width);
// Filled up with blanks to `width` places.
std::string padded(std::string_view utf8, std::size_t width);

}  // namespace tools
