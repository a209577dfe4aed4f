#include "jet/tables/coerce.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "jet/base/code_page.h"

namespace jet {
namespace {

constexpr double kFirstDate = -657434;  // 100-01-01
constexpr double kLastDate = 2958466;   // the day after 9999-12-31

[[noreturn]] void no_conversion(const ColumnDef& column) {
    fail(errors::kBadConversion, "The value cannot be converted to the type of column '" + to_utf8(column.name) + "'.");
}

std::optional<double> parse_number(const std::u16string& text) {
    const std::string narrow = to_utf8(text);
    const char* begin = narrow.data();
    const char* end = begin + narrow.size();
    while (begin < end && *begin == ' ') ++begin;
    while (begin < end && end[-1] == ' ') --end;
    if (begin < end && *begin == '+') ++begin;
    double number = 0;
    const auto result = std::from_chars(begin, end, number);
    if (begin == end || result.ec != std::errc() || result.ptr != end || !std::isfinite(number)) return std::nullopt;
    return number;
}

// The value as a number, where it is one.
std::optional<double> as_number(const Value& value) {
    if (const auto* v = std::get_if<bool>(&value)) return *v ? -1.0 : 0.0;
    if (const auto* v = std::get_if<std::uint8_t>(&value)) return *v;
    if (const auto* v = std::get_if<std::int16_t>(&value)) return *v;
    if (const auto* v = std::get_if<std::int32_t>(&value)) return *v;
    if (const auto* v = std::get_if<Currency>(&value)) return static_cast<double>(v->ten_thousandths) / 10000;
    if (const auto* v = std::get_if<float>(&value)) return *v;
    if (const auto* v = std::get_if<double>(&value)) return *v;
    if (const auto* v = std::get_if<Date>(&value)) return v->days;
    if (const auto* v = std::get_if<std::u16string>(&value)) return parse_number(*v);
    return std::nullopt;
}

// Half to even, as the platform's automation conversions round.
double round_half_even(double value) { return value - std::remainder(value, 1.0); }

template <class Integer>
Value to_integer(const ColumnDef& column, const Value& value) {
    const auto number = as_number(value);
    if (!number || !std::isfinite(*number)) no_conversion(column);
    const double rounded = round_half_even(*number);
    if (rounded < std::numeric_limits<Integer>::min() || rounded > std::numeric_limits<Integer>::max()) {
        no_conversion(column);
    }
    return static_cast<Integer>(rounded);
}

Value to_currency(const ColumnDef& column, const Value& value) {
    if (std::holds_alternative<Currency>(value)) return value;
    const auto number = as_number(value);
    if (!number) no_conversion(column);
    const double scaled = round_half_even(*number * 10000);
    if (!(std::abs(scaled) < 9223372036854775807.0)) no_conversion(column);
    return Currency{static_cast<std::int64_t>(scaled)};
}

std::u16string currency_text(Currency amount) {
    std::uint64_t magnitude = static_cast<std::uint64_t>(amount.ten_thousandths);
    if (amount.ten_thousandths < 0) magnitude = 0 - magnitude;
    std::string text = (amount.ten_thousandths < 0 ? "-" : "") + std::to_string(magnitude / 10000);
    if (const std::uint64_t rest = magnitude % 10000) {
        std::string digits = std::to_string(10000 + rest).substr(1);
        digits.erase(digits.find_last_not_of('0') + 1);
        text += "." + digits;
    }
    return from_utf8(text);
}

std::u16string to_text(const ColumnDef& column, const Value& value) {
    if (const auto* text = std::get_if<std::u16string>(&value)) return *text;
    if (const auto* amount = std::get_if<Currency>(&value)) return currency_text(*amount);
    const auto number = as_number(value);
    if (!number) no_conversion(column);
    char digits[64];
    const auto result = std::holds_alternative<float>(value)
                            ? std::to_chars(digits, digits + sizeof digits, std::get<float>(value))
                            : std::to_chars(digits, digits + sizeof digits, *number);
    return from_utf8({digits, result.ptr});
}

// Makes of the text what a code page gives back: "?" for each character that it lacks. Indexes and whoever reads the
// value before it is stored see the same. Returns the number of bytes stored.
std::size_t as_stored(std::u16string& text, std::uint16_t code_page) {
    const ByteVector stored = encode_narrow(text, code_page);
    decode_narrow(stored, code_page, text);
    return stored.size();
}

// Whether the value stands in the column's own type already, and fits.
bool is_of_column(const ColumnDef& column, const Value& value) {
    switch (column.type) {
        case ColumnType::kBoolean: return std::holds_alternative<bool>(value);
        case ColumnType::kByte: return std::holds_alternative<std::uint8_t>(value);
        case ColumnType::kInteger: return std::holds_alternative<std::int16_t>(value);
        case ColumnType::kLong: return std::holds_alternative<std::int32_t>(value);
        case ColumnType::kCurrency: return std::holds_alternative<Currency>(value);
        case ColumnType::kMemo: return column.code_page == 0 && std::holds_alternative<std::u16string>(value);
        case ColumnType::kText: {
            const auto* text = std::get_if<std::u16string>(&value);
            return column.code_page == 0 && text && text->size() <= column.most_characters();
        }
        default: return false;  // the others' conversions look at no more than the type and the range
    }
}

}  // namespace

void coerce_in_place(const ColumnDef& column, Value& value) {
    const bool stays = is_of_column(column, value) || (is_null(value) && column.type != ColumnType::kBoolean);
    if (!stays) value = coerce_value(column, std::move(value));
}

Value coerce_value(const ColumnDef& column, Value value) {
    if (is_of_column(column, value)) return value;
    if (is_null(value)) {
        if (column.type == ColumnType::kBoolean) return false;
        return value;
    }
    switch (column.type) {
        case ColumnType::kBoolean: {
            const auto number = as_number(value);
            if (!number) no_conversion(column);
            return *number != 0;
        }
        case ColumnType::kByte: return to_integer<std::uint8_t>(column, value);
        case ColumnType::kInteger: return to_integer<std::int16_t>(column, value);
        case ColumnType::kLong: return to_integer<std::int32_t>(column, value);
        case ColumnType::kCurrency: return to_currency(column, value);
        case ColumnType::kSingle: {
            if (std::holds_alternative<float>(value)) return value;
            const auto number = as_number(value);
            if (!number || std::abs(*number) > std::numeric_limits<float>::max()) no_conversion(column);
            return static_cast<float>(*number);
        }
        case ColumnType::kDouble: {
            const auto number = as_number(value);
            if (!number) no_conversion(column);
            return *number;
        }
        case ColumnType::kDate: {
            const auto number = as_number(value);
            if (!number || !(*number > kFirstDate - 1 && *number < kLastDate)) no_conversion(column);
            return Date{*number};
        }
        case ColumnType::kText:
        case ColumnType::kMemo: {
            std::u16string text = to_text(column, value);
            const std::size_t length = column.code_page == 0 ? text.size() : as_stored(text, column.code_page);
            if (column.type == ColumnType::kText && length > column.most_characters()) {
                fail(errors::kTextTooLong, "The text is too long for column '" + to_utf8(column.name) +
                                               "': " + std::to_string(length) + " of at most " +
                                               std::to_string(column.most_characters()) +
                                               (length == text.size() ? " characters." : " bytes."));
            }
            return text;
        }
        case ColumnType::kBinary:
        case ColumnType::kOle: {
            auto* bytes = std::get_if<std::vector<std::uint8_t>>(&value);
            if (!bytes) no_conversion(column);
            if (column.type == ColumnType::kBinary && bytes->size() > column.length_bytes) {
                fail(errors::kTextTooLong, "The value is too long for column '" + to_utf8(column.name) + "'.");
            }
            return value;
        }
        case ColumnType::kGuid:
            if (!std::holds_alternative<Guid>(value)) no_conversion(column);
            return value;
        case ColumnType::kNumeric:
            if (!std::holds_alternative<Numeric>(value)) no_conversion(column);
            return value;
        case ColumnType::kFixedBinary:
        case ColumnType::kComplexId: break;
    }
    no_conversion(column);
}

}  // namespace jet
