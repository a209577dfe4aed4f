// Conversions between field values and the members of the records.
#pragma once

#include <kvdb/cstring.h>
#include <kvdb/ctime.h>

#include <cstddef>
#include <string_view>

#include "afx/ole_variant.h"

namespace db {

// A field's value as text, which callers parse for numbers. Integers in decimal, VT_R4 with six decimals, VT_R8 in
// exponent form (the difference is deliberate), currency as COleCurrency::Format, dates as dd/mm/yyyy, VT_BOOL as TRUE
// or FALSE, VT_UI1 as 0x and two hexadecimal digits, other named types as their name. A type without a rule gives
// "Fish", and so does every by-reference value before its "Pointer to VT_..." is appended; both are part of the
// published behaviour.
CString value_to_text(const VARIANT& value);

// The longest prefix of a text in the narrow code page that has at most `most_bytes` bytes and ends between two
// characters.
std::string_view text_within(std::string_view text, std::size_t most_bytes);

// "TRUE" for anything but 0.
CString truth_text(LONG value);

// The result of atoi on the value's text.
LONG value_to_integer(const VARIANT& value);
// The result of atof on the value's text.
float value_to_float(const VARIANT& value);

// Splits an amount for a currency column: whole units, rounded towards zero, and the four decimals of the remainder.
// The remainder's sign is lost (-1.25 becomes -1 and 2500, stored as -0.75) and so is its carry (12.99996 becomes 12
// and 0): both deliberate. Any float is accepted; NaN, infinities and values of 2^63 or more give a remainder of 0.
// Returns 0.
int float_to_currency(float value, LONG* whole, LONG* ten_thousandths);
// The amount made of the split.
COleCurrency currency_of(float value);
// The inverse: atof of the amount's text, 0 for Null.
float float_of(const COleCurrency& amount);

// Month, day and year, separated by the system locale's date separator but always in this order: the form that
// statements put between "#" marks. 5 March 2005 is 03/05/2005 where the separator is "/".
CString date_text(CTime time);

// Conversion of calendar dates between records and columns: the date alone, or date, hour and minute.
enum class TimeOfDay { kDropped, kToTheMinute };
// Null column value for a time that has no date (a negative count).
COleVariant date_value(CTime time, TimeOfDay precision);
// -1 for Null and for dates that a CTime cannot hold.
CTime time_of(const COleDateTime& date, TimeOfDay precision);

}  // namespace db
