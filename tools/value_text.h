// Column values as text for people and programs: plain, CSV (RFC 4180) and JSON.
#pragma once

#include <string>
#include <string_view>

#include "jet/base/types.h"

namespace tools {

// Plain UTF-8: numbers in decimal, currency with up to four decimals, dates as ISO 8601, bytes as hex, GUIDs
// in braces, Null as nothing.
std::string plain_text(const jet::Value& value);
// One CSV field; a Null is an empty field, an empty text is a quoted empty one.
std::string csv_field(const jet::Value& value);
std::string csv_quoted(std::string_view utf8);
// One JSON value; dates, bytes, GUIDs and currency are strings so that nothing is rounded.
std::string json_value(const jet::Value& value);
std::string json_string(std::string_view utf8);
// Text filled up with blanks to `width` characters (not bytes).
std::string padded(std::string_view utf8, std::size_t width);

}  // namespace tools
