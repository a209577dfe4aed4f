// Numbers to text and back as the component's original runtime wrote and read them, whatever runtime,
// locale and compiler this build uses: the decimal sign is ".", exponents have three digits, and a value
// that lies exactly between two neighbours is rounded away from zero.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace afx {

// "%f": six decimals. Infinities and NaNs as "1.#INF00", "1.#QNAN0" and "-1.#IND00".
std::string fixed6_text(double value);
// "%e": six decimals and an exponent of at least three digits, 1.5 gives "1.500000e+000".
std::string exponent_text(double value);
// Shortest text that reads back as the same number, without an exponent where it has up to 15 digits.
std::string general_text(double value);
std::string general_text(float value);
// Amount in ten-thousandths: shortest decimal with up to four decimals.
std::string currency_text(std::int64_t ten_thousandths);

// atoi and atol: leading blanks, a sign, digits; stops at the first other character; 0 when there is
// nothing to read. Out of range gives the nearest 32-bit number.
std::int32_t integer_of(std::string_view text);
// atof: leading blanks, a sign, digits with an optional "." part and an optional exponent (e or d);
// 0 when there is nothing to read, infinity when it is too large.
double double_of(std::string_view text);
// As double_of, but the whole text (blanks around it aside) has to be a number.
bool parse_double(std::string_view text, double& value);
// A decimal amount, blanks around it allowed, to ten-thousandths; more decimals are rounded half to even.
// False when it is no number or out of range.
bool parse_currency(std::string_view text, std::int64_t& ten_thousandths);

// Rounds to the nearest integer, a tie to the even one; false when it does not fit.
bool round_to_int64(double value, std::int64_t& result);

}  // namespace afx
