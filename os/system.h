// What the component asks the system besides files: its own place, the locale's date habits, the
// narrow code page and the local clock.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace os {

// Full path of the library file that holds this code, as os/file.h takes paths: the one it was loaded by, which may
// lead through symbolic links. Of a program that contains this code, the file itself. Settled at the first call; ""
// when the system cannot tell.
std::string module_path();

// Folder part of `path` without a trailing separator; "" when it has none. The folder of something in a
// root keeps the separator ("/"), for without it that would be another folder.
std::string folder_of(std::string_view path);

// `folder` and `name` joined by exactly one separator of the platform; `name` alone where `folder` is "".
std::string join_path(std::string_view folder, std::string_view name);

// Order of a short date in the system locale. Values are those of the platform's own item.
enum class DateOrder : std::int32_t { kMonthDayYear = 0, kDayMonthYear = 1, kYearMonthDay = 2 };

// Date separator of the system locale, at most 3 characters in practice; "/" when it cannot be told.
std::string date_separator();
DateOrder date_order();

// Overrides for tests; an empty separator puts the system's own answer back.
void set_date_format_for_test(std::string_view separator, DateOrder order);

// Text in the narrow code page (the system's ANSI code page on Windows; elsewhere UTF-8 where the
// environment's locale says so, otherwise Windows-1252) to UTF-16 and back. A byte that the code page does not know
// becomes U+FFFD, a character that it lacks "?". Code page 1252 maps its five unassigned bytes to the same code points,
// so that every byte survives a round trip.
std::u16string widen(std::string_view narrow);
std::string narrow(std::u16string_view wide);
// For text that is nothing but ASCII, the same in every code page: writes its `wide.size()` characters to `to`.
// False, and `to` holds nothing of use, for any other.
bool narrow_ascii(std::u16string_view wide, char* to);

enum class CodePage { kSystem, kUtf8, kWindows1252 };
// Makes widen and narrow use another code page; kSystem puts the system's own back. For tests, and for a program that
// contains the component and whose texts are of one code page whatever the system says.
void set_code_page(CodePage page);

// The local time as an OLE date: days since 1899-12-30, whole milliseconds.
double local_time_as_ole_date();

}  // namespace os
