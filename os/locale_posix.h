// Reading what the C library says of a locale: its date pattern and its name.
#pragma once

#include <string_view>

#include "os/system_parts.h"

namespace os::detail {

// Separator and order of a pattern such as "%d.%m.%Y". The separator is what stands between the first
// two of day, month and year, without blanks around it; "/" where that is nothing, or not plain
// punctuation.
DateFormat date_format_of_pattern(std::string_view pattern);

// Whether the name of a locale ("de_DE.UTF-8@euro") says that its text is UTF-8.
bool locale_name_says_utf8(std::string_view name);

}  // namespace os::detail
