// Parses the date pattern and the name that the C library gives for a locale.
#pragma once

#include <string_view>

#include "os/system_parts.h"

namespace os::detail {

// Separator and order of a pattern such as "%d.%m.%Y". The separator is the text between the first two of day, month
// and year, without surrounding blanks; "/" where that is empty or not plain punctuation.
DateFormat date_format_of_pattern(std::string_view pattern);

// Whether the name of a locale ("de_DE.UTF-8@euro") declares UTF-8.
bool locale_name_says_utf8(std::string_view name);

}  // namespace os::detail
