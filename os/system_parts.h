// The platform's part of os/system.cpp, which adds the overrides and everything platform-independent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "os/system.h"

namespace os::detail {

inline constexpr char kPathSeparator =
#ifdef _WIN32
    '\\';
#else
    '/';
#endif

bool is_path_separator(char c);
// Position of the last separator of `path`; npos when there is none.
std::size_t find_last_separator(std::string_view path);

struct DateFormat {
    std::string separator;
    DateOrder order = DateOrder::kMonthDayYear;
};
// The system's short date format.
DateFormat system_date_format();

// Conversion from the system's narrow code page.
std::u16string system_widen(std::string_view narrow);
std::string system_narrow(std::u16string_view wide);
#ifdef _WIN32
// Text in a code page of the system, by its number.
std::u16string widen_from(unsigned code_page, std::string_view narrow);
// "?" for a character that it lacks, never a similar one.
std::string narrow_to(unsigned code_page, std::u16string_view wide);
#endif

struct LocalTime {
    std::int32_t year = 0;
    std::int32_t month = 0;  // 1..12
    std::int32_t day = 0;    // 1..31
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t millisecond = 0;
};
LocalTime system_local_time();

// Days since 1899-12-30 with the time of day as their fraction; for dates from 1899-12-30 on.
double ole_date_of(const LocalTime& time);

}  // namespace os::detail
