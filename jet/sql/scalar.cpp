#include "jet/sql/scalar.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "jet/base/bytes.h"
#include "jet/indexes/collation.h"

namespace jet::sql {

namespace {

constexpr std::int64_t kUnit = 10000;  // ten-thousandths in one
constexpr int kSingleDigits = 7;
constexpr int kDoubleDigits = 15;

Scalar from_integer(std::int64_t number) {
    Scalar scalar;
    scalar.kind = Scalar::Kind::kInteger;
    scalar.integer = number;
    return scalar;
}

Scalar from_currency(std::int64_t ten_thousandths) {
    Scalar scalar;
    scalar.kind = Scalar::Kind::kCurrency;
    scalar.integer = ten_thousandths;
    return scalar;
}

Scalar from_real(double number) {
    Scalar scalar;
    scalar.kind = Scalar::Kind::kReal;
    scalar.real = number;
    return scalar;
}

Scalar from_text(std::u16string_view text) {
    Scalar scalar;
    scalar.kind = Scalar::Kind::kText;
    scalar.text = text;
    return scalar;
}

// Word 0 is the most significant of the four words of a numeric's magnitude.
std::uint32_t magnitude_word(const Numeric& value, std::size_t word) { return load_u32(value.bytes, 1 + 4 * word); }

bool is_negative(const Numeric& value) { return value.bytes[0] != 0; }

// Exact as long as the value fits an amount of ten-thousandths.
Scalar from_numeric(const Numeric& value) {
    const bool small = magnitude_word(value, 0) == 0 && magnitude_word(value, 1) == 0 && magnitude_word(value, 2) == 0;
    if (!small || value.scale > kCurrencyPlaces) return from_real(to_double(value));
    std::int64_t amount = magnitude_word(value, 3);
    for (int place = value.scale; place < kCurrencyPlaces; ++place) amount *= 10;
    return from_currency(is_negative(value) ? -amount : amount);
}

struct ScalarMaker {
    Scalar operator()(Null) const { return {}; }
    Scalar operator()(bool value) const { return from_integer(value ? -1 : 0); }
    Scalar operator()(std::uint8_t value) const { return from_integer(value); }
    Scalar operator()(std::int16_t value) const { return from_integer(value); }
    Scalar operator()(std::int32_t value) const { return from_integer(value); }
    Scalar operator()(std::int64_t value) const { return from_integer(value); }
    Scalar operator()(Currency value) const { return from_currency(value.ten_thousandths); }
    Scalar operator()(float value) const { return from_real(value); }
    Scalar operator()(double value) const { return from_real(value); }
    Scalar operator()(Date value) const { return from_real(linear_days(value.days)); }
    Scalar operator()(const std::u16string& value) const { return from_text(value); }
    Scalar operator()(const std::vector<std::uint8_t>&) const { return {}; }
    Scalar operator()(const Guid&) const { return {}; }
    Scalar operator()(const Numeric& value) const { return from_numeric(value); }
};

double as_real(const Scalar& scalar) {
    if (scalar.kind == Scalar::Kind::kReal) return scalar.real;
    const auto integer = static_cast<double>(scalar.integer);
    return scalar.kind == Scalar::Kind::kCurrency ? integer / static_cast<double>(kUnit) : integer;
}

// An integer with an amount of ten-thousandths, without multiplying.
std::strong_ordering compare_mixed(std::int64_t integer, std::int64_t ten_thousandths) {
    const std::int64_t whole = ten_thousandths / kUnit;
    if (integer != whole) return integer <=> whole;
    return std::int64_t{0} <=> ten_thousandths % kUnit;
}

std::u16string widen(std::string_view text) { return {text.begin(), text.end()}; }

template <class Real>
std::u16string real_text(Real number, int digits) {
    char buffer[64];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), number, std::chars_format::general, digits);
    std::u16string text = widen({buffer, static_cast<std::size_t>(result.ptr - buffer)});
    for (char16_t& c : text) {
        if (c == u'e') c = u'E';
    }
    return text;
}

std::u16string integer_text(std::int64_t number) {
    char buffer[24];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), number);
    return widen({buffer, static_cast<std::size_t>(result.ptr - buffer)});
}

// `digits` with the decimal point `places` from its end, zeros at its end dropped.
std::u16string scaled_text(bool negative, std::string digits, std::size_t places) {
    if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
    std::string fraction = digits.substr(digits.size() - places);
    digits.resize(digits.size() - places);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    if (!fraction.empty()) digits += '.' + fraction;
    const bool zero = digits == "0";
    return widen(negative && !zero ? '-' + digits : digits);
}

std::u16string currency_text(Currency amount) {
    const bool negative = amount.ten_thousandths < 0;
    const auto bits = static_cast<std::uint64_t>(amount.ten_thousandths);
    return scaled_text(negative, std::to_string(negative ? 0 - bits : bits), kCurrencyPlaces);
}

std::u16string numeric_text(const Numeric& value) {
    std::uint32_t words[4];
    for (std::size_t i = 0; i < 4; ++i) words[i] = magnitude_word(value, i);
    std::string digits;
    while ((words[0] | words[1] | words[2] | words[3]) != 0) {
        std::uint64_t rest = 0;
        for (std::uint32_t& word : words) {
            const std::uint64_t part = rest << 32 | word;
            word = static_cast<std::uint32_t>(part / 10);
            rest = part % 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + rest));
    }
    return scaled_text(is_negative(value), digits, value.scale);
}

struct TextMaker {
    std::u16string operator()(std::uint8_t value) const { return integer_text(value); }
    std::u16string operator()(std::int16_t value) const { return integer_text(value); }
    std::u16string operator()(std::int32_t value) const { return integer_text(value); }
    std::u16string operator()(std::int64_t value) const { return integer_text(value); }
    std::u16string operator()(bool value) const { return integer_text(value ? -1 : 0); }
    std::u16string operator()(Currency value) const { return currency_text(value); }
    std::u16string operator()(float value) const { return real_text(value, kSingleDigits); }
    std::u16string operator()(double value) const { return real_text(value, kDoubleDigits); }
    std::u16string operator()(const Numeric& value) const { return numeric_text(value); }
    std::u16string operator()(const std::u16string& value) const { return value; }
    template <class T>
    std::u16string operator()(const T&) const {
        return {};
    }
};

std::weak_ordering order_of(double a, double b) {
    // Not-a-number only occurs in damaged files; it stands before all numbers.
    if (std::isnan(a) || std::isnan(b)) return static_cast<int>(!std::isnan(a)) <=> static_cast<int>(!std::isnan(b));
    if (a < b) return std::weak_ordering::less;
    return a > b ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

}  // namespace

ValueClass class_of(ColumnType type) {
    switch (type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong:
        case ColumnType::kComplexId:
        case ColumnType::kCurrency:
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kNumeric: return ValueClass::kNumber;
        case ColumnType::kDate: return ValueClass::kDate;
        case ColumnType::kText:
        case ColumnType::kMemo: return ValueClass::kText;
        default: return ValueClass::kOther;
    }
}

ValueClass class_of(const Literal& literal) {
    if (std::holds_alternative<std::u16string>(literal)) return ValueClass::kText;
    return std::holds_alternative<Date>(literal) ? ValueClass::kDate : ValueClass::kNumber;
}

Scalar to_scalar(const Value& value) { return std::visit(ScalarMaker{}, value); }
Scalar to_scalar(const Literal& literal) { return std::visit(ScalarMaker{}, literal); }

std::partial_ordering compare(const Scalar& a, const Scalar& b) {
    using Kind = Scalar::Kind;
    if (a.kind == Kind::kNull || b.kind == Kind::kNull) return std::partial_ordering::unordered;
    if (a.kind == Kind::kText || b.kind == Kind::kText) {
        if (a.kind != b.kind) return std::partial_ordering::unordered;
        return compare_text(a.text, b.text) <=> 0;
    }
    if (a.kind == Kind::kReal || b.kind == Kind::kReal) return as_real(a) <=> as_real(b);
    if (a.kind == b.kind) return a.integer <=> b.integer;
    if (a.kind == Kind::kInteger) return compare_mixed(a.integer, b.integer);
    return 0 <=> compare_mixed(b.integer, a.integer);
}

std::u16string decimal_text(const Value& value) { return std::visit(TextMaker{}, value); }
std::u16string decimal_text(const Literal& literal) { return std::visit(TextMaker{}, literal); }

double linear_days(double days) {
    if (!(days < 0)) return days;
    const double day = std::trunc(days);
    return day + std::fabs(days - day);
}

double to_double(const Numeric& value) {
    double magnitude = 0;
    for (std::size_t word = 0; word < 4; ++word) magnitude = magnitude * 4294967296.0 + magnitude_word(value, word);
    const double number = magnitude / std::pow(10.0, value.scale);
    return is_negative(value) ? -number : number;
}

std::weak_ordering compare_for_order(const Value& a, const Value& b) {
    if (is_null(a) || is_null(b)) return static_cast<int>(!is_null(a)) <=> static_cast<int>(!is_null(b));
    if (const auto* left = std::get_if<std::vector<std::uint8_t>>(&a)) {
        const auto* right = std::get_if<std::vector<std::uint8_t>>(&b);
        return right != nullptr ? std::weak_ordering(*left <=> *right) : std::weak_ordering::equivalent;
    }
    if (const auto* left = std::get_if<Guid>(&a)) {
        const auto* right = std::get_if<Guid>(&b);
        return right != nullptr ? std::weak_ordering(left->bytes <=> right->bytes) : std::weak_ordering::equivalent;
    }
    const Scalar left = to_scalar(a);
    const Scalar right = to_scalar(b);
    if (left.kind == Scalar::Kind::kReal && right.kind == Scalar::Kind::kReal) return order_of(left.real, right.real);
    const auto order = compare(left, right);
    if (order < 0) return std::weak_ordering::less;
    return order > 0 ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

}  // namespace jet::sql
