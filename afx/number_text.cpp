// Decimal text without the C runtime. std::to_chars gives the correctly rounded digits with ties to even;
// the one thing left to do is to recognise an exact tie and step over it.
#include "afx/number_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace afx {
namespace {

constexpr int kDecimals = 6;
// A finite double in fixed form has at most 309 digits before the point.
constexpr std::size_t kFixedSize = 1 + 309 + 1 + kDecimals;
// Every double is exact with this many decimals in exponent form.
constexpr int kExactDecimals = 766;

std::string not_finite_text(double value) {
    if (std::isinf(value)) return value < 0 ? "-1.#INF00" : "1.#INF00";
    return std::signbit(value) ? "-1.#IND00" : "1.#QNAN0";
}

double step_away_from_zero(double value) {
    return std::nextafter(value, std::copysign(std::numeric_limits<double>::infinity(), value));
}

// With n decimals a number is a tie exactly when it is an odd multiple of 2^-(n+1): any finer binary
// fraction has more than n+1 decimals, any coarser one at most n.
bool is_fixed_tie(double value) {
    const double scaled = std::ldexp(value, kDecimals + 1);
    return std::abs(scaled) < 0x1p53 && std::trunc(scaled) == scaled && std::fmod(scaled, 2.0) != 0.0;
}

std::string scientific(double value, int decimals) {
    std::string text(static_cast<std::size_t>(decimals) + 16, '\0');
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific, decimals);
    text.resize(static_cast<std::size_t>(end.ptr - text.data()));
    return text;
}

bool is_scientific_tie(double value) {
    char shortest[40];
    const auto end = std::to_chars(shortest, shortest + sizeof shortest, value, std::chars_format::scientific);
    const std::string_view text(shortest, static_cast<std::size_t>(end.ptr - shortest));
    const std::size_t mark = text.find('e');
    const std::size_t point = text.find('.');
    // A tie has exactly one digit more than is shown, and that is a 5.
    if (point == std::string_view::npos || mark != point + kDecimals + 2 || text[mark - 1] != '5') return false;
    const std::string exact = scientific(value, kExactDecimals);
    const std::size_t tail = exact.find('.') + 1 + kDecimals + 1;
    return exact.compare(0, tail, text.substr(0, mark)) == 0 && exact.find_first_not_of('0', tail) == exact.find('e');
}

template <class Float>
std::string shortest_text(Float value) {
    if (!std::isfinite(value)) return not_finite_text(value);
    const double magnitude = std::abs(static_cast<double>(value));
    const bool plain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e15);
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text, end.ptr};
}

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

// Length of the number at the beginning of `text` (no blanks before it); 0 when there is none.
// `normal` receives it in the spelling that from_chars reads.
std::size_t scan_number(std::string_view text, std::string& normal) {
    std::size_t at = 0;
    normal.clear();
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
        if (text[at] == '-') normal += '-';
        ++at;
    }
    std::size_t digits = 0;
    for (; at < text.size() && is_digit(text[at]); ++at, ++digits) normal += text[at];
    if (digits == 0) normal += '0';
    if (at < text.size() && text[at] == '.') {
        std::size_t end = at + 1;
        while (end < text.size() && is_digit(text[end])) ++end;
        const std::size_t decimals = end - at - 1;
        if (digits + decimals == 0) return 0;
        if (decimals != 0) normal.append(text.substr(at, end - at));
        digits += decimals;
        at = end;
    }
    if (digits == 0) return 0;
    if (at < text.size() && std::string_view("eEdD").find(text[at]) != std::string_view::npos) {
        std::size_t end = at + 1;
        if (end < text.size() && (text[end] == '-' || text[end] == '+')) ++end;
        const std::size_t first = end;
        while (end < text.size() && is_digit(text[end])) ++end;
        if (end != first) {
            normal += 'e';
            if (text[at + 1] == '-') normal += '-';
            normal.append(text.substr(first, end - first));
            at = end;
        }
    }
    return at;
}

double value_of(const std::string& normal) {
    double value = 0;
    const auto result = std::from_chars(normal.data(), normal.data() + normal.size(), value);
    if (result.ec != std::errc::result_out_of_range) return value;
    // Too small or too large: the exponent tells.
    const std::size_t mark = normal.find('e');
    const bool tiny = mark != std::string::npos && normal.compare(mark + 1, 1, "-") == 0;
    const double magnitude = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    return normal.front() == '-' ? -magnitude : magnitude;
}

}  // namespace

std::string fixed6_text(double value) {
    if (!std::isfinite(value)) return not_finite_text(value);
    if (is_fixed_tie(value)) value = step_away_from_zero(value);
    char text[kFixedSize];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, kDecimals);
    return {text, end.ptr};
}

std::string exponent_text(double value) {
    if (!std::isfinite(value)) return not_finite_text(value) + "e+000";
    if (is_scientific_tie(value)) value = step_away_from_zero(value);
    std::string text = scientific(value, kDecimals);
    const std::size_t exponent = text.find('e') + 2;  // behind its sign
    if (text.size() - exponent < 3) text.insert(exponent, 3 - (text.size() - exponent), '0');
    return text;
}

std::string general_text(double value) { return shortest_text(value); }

std::string general_text(float value) { return shortest_text(value); }

std::string currency_text(std::int64_t ten_thousandths) {
    const bool negative = ten_thousandths < 0;
    // Negation in unsigned arithmetic: the smallest amount has no positive counterpart.
    const std::uint64_t magnitude =
        negative ? 0 - static_cast<std::uint64_t>(ten_thousandths) : static_cast<std::uint64_t>(ten_thousandths);
    std::string text(negative ? "-" : "");
    text += std::to_string(magnitude / 10000);
    if (const std::uint64_t fraction = magnitude % 10000; fraction != 0) {
        const std::string digits = std::to_string(10000 + fraction).substr(1);
        text += '.';
        text += digits.substr(0, digits.find_last_not_of('0') + 1);
    }
    return text;
}

std::int32_t integer_of(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && is_blank(text[at])) ++at;
    bool negative = false;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) negative = text[at++] == '-';
    const std::int64_t limit = negative ? std::int64_t{1} << 31 : (std::int64_t{1} << 31) - 1;
    std::int64_t value = 0;
    for (; at < text.size() && is_digit(text[at]); ++at) {
        value = value * 10 + (text[at] - '0');
        if (value > limit) value = limit;
    }
    return static_cast<std::int32_t>(negative ? -value : value);
}

double double_of(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    std::string normal;
    return scan_number(text, normal) == 0 ? 0.0 : value_of(normal);
}

bool parse_double(std::string_view text, double& value) {
    text = trimmed(text);
    std::string normal;
    if (text.empty() || scan_number(text, normal) != text.size()) return false;
    value = value_of(normal);
    return std::isfinite(value);
}

bool parse_currency(std::string_view text, std::int64_t& ten_thousandths) {
    text = trimmed(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    // The magnitude may be 2^63 for the smallest amount, and one more digit is looked at for rounding.
    constexpr std::uint64_t kLimit = std::uint64_t{1} << 63;
    std::uint64_t magnitude = 0;
    std::size_t at = 0;
    std::size_t digits = 0;
    const auto take = [&](char c) {
        const auto digit = static_cast<std::uint64_t>(c - '0');
        if (magnitude > (kLimit - digit) / 10) return false;
        magnitude = magnitude * 10 + digit;
        return true;
    };
    for (; at < text.size() && is_digit(text[at]); ++at, ++digits) {
        if (!take(text[at])) return false;
    }
    std::size_t decimals = 0;
    char next = '0';
    bool more = false;
    if (at < text.size() && text[at] == '.') {
        for (++at; at < text.size() && is_digit(text[at]); ++at, ++digits) {
            if (decimals < 4) {
                if (!take(text[at])) return false;
                ++decimals;
            } else if (decimals++ == 4) {
                next = text[at];
            } else {
                more = more || text[at] != '0';
            }
        }
    }
    if (digits == 0 || at != text.size()) return false;
    for (; decimals < 4; ++decimals) {
        if (!take('0')) return false;
    }
    if (next > '5' || (next == '5' && (more || magnitude % 2 != 0))) ++magnitude;
    if (magnitude > (negative ? kLimit : kLimit - 1)) return false;
    ten_thousandths = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
    return true;
}

bool round_to_int64(double value, std::int64_t& result) {
    if (!(value >= -0x1p63 && value < 0x1p63)) return false;
    double whole = std::floor(value);
    const double rest = value - whole;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1;
    if (!(whole < 0x1p63)) return false;
    result = static_cast<std::int64_t>(whole);
    return true;
}

}  // namespace afx
