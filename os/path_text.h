// Windows paths as text. Names there are sequences of 16-bit units, mostly UTF-16 but not always. The component keeps
// them as UTF-8, generalized so that a surrogate without its partner survives the round trip.
#pragma once

#include <string>
#include <string_view>

namespace os {

std::u16string units_of_path(std::string_view path);
std::string path_of_units(std::u16string_view units);

}  // namespace os
