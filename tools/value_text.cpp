#include "tools/value_text.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

namespace tools {
namespace {

template <class Number>
std::string shortest(Number number) {
    char digits[64];
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    return {digits, result.ptr};
}

std::string decimal(std::string digits, bool negative, std::size_t scale) {
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    if (scale > 0) {
        digits.insert(digits.size() - scale, ".");
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.') digits.pop_back();
    }
    return (negative && digits != "0" ? "-" : "") + digits;
}

std::string currency_text(jet::Currency amount) {
    const bool negative = amount.ten_thousandths < 0;
    const auto magnitude = static_cast<std::uint64_t>(amount.ten_thousandths);
    return decimal(std::to_string(negative ? 0 - magnitude : magnitude), negative, 4);
}

// The 128-bit magnitude in decimal.
std::string numeric_text(const jet::Numeric& value) {
    std::uint32_t words[4];
    for (int i = 0; i < 4; ++i) {
        words[i] = 0;
        for (int b = 3; b >= 0; --b) words[i] = words[i] << 8 | value.bytes[static_cast<std::size_t>(1 + 4 * i + b)];
    }
    std::string digits;
    while (words[0] | words[1] | words[2] | words[3]) {
        std::uint64_t rest = 0;
        for (std::uint32_t& word : words) {
            rest = rest << 32 | word;
            word = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + rest));
    }
    return decimal(digits.empty() ? "0" : digits, (value.bytes[0] & 0x80) != 0, value.scale);
}

// The date of a day counted from 1899-12-30.
std::string date_text(double days) {
    if (!(std::abs(days) < 3e6)) return "invalid date";
    const double whole = std::trunc(days);
    auto day = static_cast<std::int64_t>(whole);
    auto milliseconds = static_cast<std::int64_t>(std::llround(std::abs(days - whole) * 86400000));
    if (milliseconds >= 86400000) {
        milliseconds -= 86400000;
        ++day;
    }
    constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
    const std::chrono::year_month_day date(kDayZero + std::chrono::days(day));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    std::string result = text;
    if (milliseconds != 0) {
        std::snprintf(text, sizeof text, "T%02d:%02d:%02d", static_cast<int>(milliseconds / 3600000),
                      static_cast<int>(milliseconds / 60000 % 60), static_cast<int>(milliseconds / 1000 % 60));
        result += text;
        if (milliseconds % 1000 != 0) {
            std::snprintf(text, sizeof text, ".%03d", static_cast<int>(milliseconds % 1000));
            result += text;
        }
    }
    return result;
}

std::string hex(const std::uint8_t* bytes, std::size_t count) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

std::string guid_text(const jet::Guid& guid) {
    static constexpr int kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    std::string text = "{";
    for (int at : kOrder) text += at < 0 ? "-" : hex(&guid.bytes[static_cast<std::size_t>(at)], 1);
    return text + "}";
}

struct Plain {
    std::string operator()(jet::Null) const { return ""; }
    std::string operator()(bool v) const { return v ? "true" : "false"; }
    std::string operator()(std::uint8_t v) const { return std::to_string(v); }
    std::string operator()(std::int16_t v) const { return std::to_string(v); }
    std::string operator()(std::int32_t v) const { return std::to_string(v); }
    std::string operator()(jet::Currency v) const { return currency_text(v); }
    std::string operator()(float v) const { return shortest(v); }
    std::string operator()(double v) const { return shortest(v); }
    std::string operator()(jet::Date v) const { return date_text(v.days); }
    std::string operator()(const std::u16string& v) const { return jet::to_utf8(v); }
    std::string operator()(const std::vector<std::uint8_t>& v) const { return hex(v.data(), v.size()); }
    std::string operator()(const jet::Guid& v) const { return guid_text(v); }
    std::string operator()(const jet::Numeric& v) const { return numeric_text(v); }
};

bool is_json_literal(const jet::Value& value) {
    if (const auto* v = std::get_if<float>(&value)) return std::isfinite(*v);
    if (const auto* v = std::get_if<double>(&value)) return std::isfinite(*v);
    return std::holds_alternative<bool>(value) || std::holds_alternative<std::uint8_t>(value) ||
           std::holds_alternative<std::int16_t>(value) || std::holds_alternative<std::int32_t>(value) ||
           std::holds_alternative<jet::Currency>(value) || std::holds_alternative<jet::Numeric>(value);
}

}  // namespace

std::string plain_text(const jet::Value& value) { return std::visit(Plain{}, value); }

std::string csv_quoted(std::string_view utf8) {
    if (!utf8.empty() && utf8.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(utf8);
    std::string text = "\"";
    for (char c : utf8) {
        if (c == '"') text += '"';
        text += c;
    }
    return text + "\"";
}

std::string csv_field(const jet::Value& value) { return jet::is_null(value) ? "" : csv_quoted(plain_text(value)); }

std::string json_string(std::string_view utf8) {
    std::string text = "\"";
    for (char c : utf8) {
        switch (c) {
            case '"': text += "\\\""; break;
            case '\\': text += "\\\\"; break;
            case '\n': text += "\\n"; break;
            case '\r': text += "\\r"; break;
            case '\t': text += "\\t"; break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escape[8];
                    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
                    text += escape;
                } else {
                    text += c;
                }
        }
    }
    return text + "\"";
}

std::string json_value(const jet::Value& value) {
    if (jet::is_null(value)) return "null";
    const std::string text = plain_text(value);
    return is_json_literal(value) ? text : json_string(text);
}

std::string plural(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace tools
