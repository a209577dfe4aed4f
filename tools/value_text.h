// Column values as text for people and programs: plain, CSV (RFC 4180) and JSON.
#pragma once

#include <cstddef>
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
// One JSON value: numbers of every kind with all their digits, everything else but truth values as a text.
std::string json_value(const jet::Value& value);
std::string json_string(std::string_view utf8);
// "1 row", "2 rows".
std::string plural(std::size_t count, const char* one, const char* many);

}  // namespace tools
