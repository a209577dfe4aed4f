// Dates between # in statements: month, day, year whatever the locale, or year first.
#pragma once

#include <optional>
#include <string_view>

#include "jet/base/types.h"

namespace jet::sql {

// Characters of the longest one, without the two #: two separators of the system, as long as it gives them out, and
// three numbers.
inline constexpr std::size_t kMaxDateLiteral = 256;

// `text` without the two #. Three numbers, twice the same between them: any text without a digit, as hosts put the
// separator of the system's dates there, be it a sign, a letter, or blanks alone. Blanks around it do not count. A
// first number of three or more digits is the year; else the order is month, day, year. Month and day are exchanged
// when only that makes sense. Years of one or two digits: 00-29 are 2000-2029, others 1930-1999.
std::optional<Date> parse_date_literal(std::u16string_view text);

// Days since 1899-12-30 of a day of the Gregorian calendar; none when there is no such day in 100..9999.
std::optional<double> day_serial(int year, int month, int day);

}  // namespace jet::sql
