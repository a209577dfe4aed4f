// Values as conditions see them: numbers of all types on one line, dates as days on a linear line, text.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "jet/base/types.h"
#include "jet/sql/lexer.h"

namespace jet::sql {

// What can be compared with what: numbers and dates with each other, text with text.
enum class ValueClass : std::uint8_t { kNull, kNumber, kDate, kText, kOther };

ValueClass class_of(ColumnType type);
ValueClass class_of(const Literal& literal);

struct Scalar {
    enum class Kind : std::uint8_t { kNull, kInteger, kCurrency, kReal, kText };
    Kind kind = Kind::kNull;
    std::int64_t integer = 0;  // kInteger, and the ten-thousandths of kCurrency
    double real = 0;
    std::u16string_view text;  // refers to the value it was made of
};

// Values of class kOther become Null. True is -1.
Scalar to_scalar(const Value& value);
Scalar to_scalar(const Literal& literal);

// Unordered when one side is Null or not a number, or the classes differ.
std::partial_ordering compare(const Scalar& a, const Scalar& b);

// The number as LIKE sees it: decimal, point, no digits that say nothing.
std::u16string decimal_text(const Value& value);
std::u16string decimal_text(const Literal& literal);

// Days from 1899-12-30 such that later times are larger numbers: before that day the stored fraction counts
// forward from a day that counts backward.
double linear_days(double days);

double to_double(const Numeric& value);

// Order of two values of one column for ORDER BY: Null first, text in the General order, bytes as such.
std::weak_ordering compare_for_order(const Value& a, const Value& b);

}  // namespace jet::sql
