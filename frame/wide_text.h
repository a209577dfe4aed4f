// Between the narrow texts of the framework and the wide ones of automation.
#pragma once

#include <kvdb/com.h>

#include <string>
#include <string_view>

namespace frame {

// A new BSTR of `narrow`, owned by the caller; null when out of memory.
BSTR to_bstr(std::string_view narrow) noexcept;

// The text of `wide` (null: empty) in the narrow code page, as far as its first zero character.
std::string to_narrow(BSTR wide);

}  // namespace frame
