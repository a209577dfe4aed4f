// What the component asks the system besides files: the path of its module, the locale's date format, the narrow code
// page and the local time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace os {

// Full path of the library file that holds this code, in the form of os/file.h: the one by which it was loaded, which
// may lead through symbolic links. Of a program that contains this code, the file itself. Fixed at the first call; ""
// when the system cannot tell.
std::string module_path();

// Folder part of `path` without a trailing separator; "" when it has none. The folder of something in a root keeps the
// separator ("/"), because without it that would be another folder.
std::string folder_of(std::string_view path);

// `folder` and `name` joined by exactly one separator of the platform; `name` alone where `folder` is "".
std::string join_path(std::string_view folder, std::string_view name);

// Order of a short date in the system locale. Values are those of the platform's locale item.
enum class DateOrder : std::int32_t { kMonthDayYear = 0, kDayMonthYear = 1, kYearMonthDay = 2 };

// Date separator of the system locale, at most 3 characters in practice; "/" when unknown.
std::string date_separator();
DateOrder date_order();

// Override for tests; an empty separator restores the system's format.
void set_date_format_for_test(std::string_view separator, DateOrder order);

// Text in the narrow code page (the system's ANSI code page on Windows; elsewhere UTF-8 where the
// environment's locale says so, otherwise Windows-1252) to UTF-16 and back. A byte that the code page does not know
// becomes U+FFFD, a character that it lacks "?". Code page 1252 maps its five unassigned bytes to the same code points,
// so that every byte survives a round trip.
std::u16string widen(std::string_view narrow);
std::string narrow(std::u16string_view wide);
// Narrows pure ASCII text, the same in every code page: writes its `wide.size()` characters to `to`. For any other text
// false, and the content of `to` is unspecified.
bool narrow_ascii(std::u16string_view wide, char* to);

enum class CodePage { kSystem, kUtf8, kWindows1252 };
// Makes widen and narrow use another code page; kSystem restores the system's. For tests, and for a program that embeds
// the component and fixes the code page of its texts.
void set_code_page(CodePage page);

// The local time as an OLE date: days since 1899-12-30, whole milliseconds.
double local_time_as_ole_date();

}  // namespace os
