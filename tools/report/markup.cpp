#include "tools/report/markup.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "tools/value_text.h"

namespace tools {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// A browser's numbers are doubles.
bool is_exact_in_a_double(const std::string& number) {
    constexpr int kDigits = 15;
    return std::count_if(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; }) <= kDigits;
}

std::string with_commas(std::string digits) {
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, ",");
    return digits;
}

}  // namespace

std::string html_text(std::string_view utf8) {
    std::string text;
    text.reserve(utf8.size());
    for (const char c : utf8) {
        switch (c) {
            case '&': text += "&amp;"; break;
            case '<': text += "&lt;"; break;
            case '>': text += "&gt;"; break;
            case '"': text += "&quot;"; break;
            case '\'': text += "&#39;"; break;
            default:
                if (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') {
                    text += kReplacement;
                } else {
                    text += c;
                }
        }
    }
    return text;
}

std::string in_script(std::string json) {
    // The line separators end a line where scripts are read by older rules.
    constexpr std::pair<std::string_view, std::string_view> kSigns[] = {
        {"<", "\\u003c"}, {"\xE2\x80\xA8", "\\u2028"}, {"\xE2\x80\xA9", "\\u2029"}};
    for (const auto& [sign, escaped] : kSigns) {
        std::size_t at = json.find(sign);
        if (at == std::string::npos) continue;
        std::string result;
        std::size_t copied = 0;
        for (; at != std::string::npos; at = json.find(sign, copied)) {
            result.append(json, copied, at - copied).append(escaped);
            copied = at + sign.size();
        }
        json = result.append(json, copied);
    }
    return json;
}

std::string script_value(const jet::Value& value) {
    const bool is_real = std::holds_alternative<float>(value) || std::holds_alternative<double>(value);
    std::string json = json_value(value);
    const bool is_decimal = std::holds_alternative<jet::Currency>(value) || std::holds_alternative<jet::Numeric>(value);
    if (is_decimal && !is_real && !is_exact_in_a_double(json)) return json_string(json);
    return in_script(std::move(json));
}

std::string count_text(std::uint64_t count) { return with_commas(std::to_string(count)); }

std::string counted(std::uint64_t count, const char* one, const char* more) {
    return count_text(count) + " " + (count == 1 ? one : more);
}

std::string percent(double share) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f%%", share * 100);
    return text;
}

Amount::Amount(const jet::Value& value) {
    if (const auto* currency = std::get_if<jet::Currency>(&value)) {
        ten_thousandths_ = currency->ten_thousandths;
        return;
    }
    double units = 0;
    if (const auto* single = std::get_if<float>(&value)) {
        units = static_cast<double>(*single);
    } else if (const auto* real = std::get_if<double>(&value)) {
        units = *real;
    } else if (const auto* number = std::get_if<std::int32_t>(&value)) {
        units = *number;
    }
    // A single has about seven digits; what is beyond hundredths is none of the amount.
    constexpr double kMost = 9e14;
    if (std::isfinite(units)) ten_thousandths_ = std::llround(std::clamp(units, -kMost, kMost) * 100) * 100;
}

Amount& Amount::operator+=(Amount other) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(ten_thousandths_, other.ten_thousandths_, &sum)) {
        using Limits = std::numeric_limits<std::int64_t>;
        sum = other.ten_thousandths_ > 0 ? Limits::max() : Limits::min();
    }
    ten_thousandths_ = sum;
    return *this;
}

std::string Amount::text() const {
    const bool is_negative = ten_thousandths_ < 0;
    const auto magnitude = static_cast<std::uint64_t>(ten_thousandths_);
    std::string digits = std::to_string(is_negative ? 0 - magnitude : magnitude);
    if (digits.size() < 5) digits.insert(0, 5 - digits.size(), '0');
    std::string decimals = digits.substr(digits.size() - 4);
    while (decimals.size() > 2 && decimals.back() == '0') decimals.pop_back();
    return (is_negative ? "-" : "") + with_commas(digits.substr(0, digits.size() - 4)) + "." + decimals;
}

std::string Amount::rounded() const {
    Amount cents;
    cents.ten_thousandths_ = ten_thousandths_ / 100 * 100;
    const std::int64_t rest = ten_thousandths_ % 100;
    // Half a cent is a whole one; at the end of the range it stays as it is.
    Amount one;
    one.ten_thousandths_ = rest >= 50 ? 100 : rest <= -50 ? -100 : 0;
    Amount sum = cents;
    sum += one;
    return sum.ten_thousandths_ % 100 == 0 ? sum.text() : cents.text();
}

}  // namespace tools
