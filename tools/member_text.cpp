#include "tools/member_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "os/system.h"
#include "tools/column_limits.h"
#include "tools/errors.h"

namespace tools {
namespace {

// All of the text as a number.
template <class Number>
std::optional<Number> parsed_number(const std::string& text) {
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
    return number;
}

[[noreturn]] void refuse(const std::string& name, const char* wanted, const std::string& text) {
    throw UsageError(name + " takes " + wanted + ", not '" + text + "'");
}

bool is_to_the_minute(studio::Conversion conversion) { return conversion == studio::Conversion::kDateToTheMinute; }

// Whether the text has the pattern's length, its separators and, for every 9, a digit.
bool matches(const std::string& text, const std::string& pattern) {
    if (text.size() != pattern.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (pattern[i] == '9' ? text[i] < '0' || text[i] > '9' : text[i] != pattern[i]) return false;
    }
    return true;
}

}  // namespace

std::string to_utf8(const CString& text) { return jet::to_utf8(os::widen(text.GetString())); }
CString from_utf8(const std::string& text) { return os::narrow(jet::from_utf8(text)).c_str(); }

LONG parse_number(const std::string& what, const std::string& text) {
    const auto number = parsed_number<std::int32_t>(text);
    if (!number) refuse(what, "a whole number from -2147483648 to 2147483647", text);
    return *number;
}

jet::Value shown(const CString& member) { return os::widen(member.GetString()); }
jet::Value shown(LONG member) { return static_cast<std::int32_t>(member); }
jet::Value shown(float member) { return member; }

jet::Value shown(CTime member, studio::Conversion conversion) {
    if (member.GetTime() < 0) return jet::Null{};
    char text[64];
    const int length =
        std::snprintf(text, sizeof text, "%04d-%02d-%02d", member.GetYear(), member.GetMonth(), member.GetDay());
    if (is_to_the_minute(conversion)) {
        std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), "T%02d:%02d", member.GetHour(),
                      member.GetMinute());
    }
    return jet::from_utf8(text);
}

void parse(const std::string& name, const std::string& text, CString& member) {
    CString narrow = from_utf8(text);
    if (to_utf8(narrow) != text) refuse(name, "text in UTF-8", text);
    member = narrow;
}

void parse(const std::string& name, const std::string& text, LONG& member) { member = parse_number(name, text); }

void parse(const std::string& name, const std::string& text, studio::Conversion conversion, float& member) {
    const auto wanted = parsed_number<double>(text);
    if (!wanted || !std::isfinite(*wanted)) refuse(name, "a decimal number", text);
    constexpr double kLargest = static_cast<double>(std::numeric_limits<float>::max());
    const bool is_in_range = std::abs(*wanted) <= kLargest;
    const float amount = is_in_range ? static_cast<float>(*wanted) : 0;
    if (!is_in_range || !is_kept(*wanted, amount, conversion)) {
        std::string range = "a decimal number that it can keep, of about 7 digits";
        if (conversion != studio::Conversion::kSingle) {
            range =
                "an amount that it can keep, of about 7 digits, 4 of them behind the point, from -2147483648 to "
                "2147483520 and without a fraction below 0";
        }
        refuse(name, range.c_str(), text);
    }
    member = amount;
}

void parse(const std::string& name, const std::string& text, studio::Conversion conversion, CTime& member) {
    if (text.empty()) {
        member = CTime(-1);
        return;
    }
    // What the tool prints can be given back.
    const bool has_time =
        is_to_the_minute(conversion) && (matches(text, "9999-99-99T99:99") || matches(text, "9999-99-99T99:99:00"));
    const char* const wanted =
        is_to_the_minute(conversion) ? "a moment as YYYY-MM-DDTHH:MM" : "a date as YYYY-MM-DD from 1970 to 2038";
    if (!has_time && !matches(text, "9999-99-99")) refuse(name, wanted, text);
    const auto part = [&](std::size_t from, std::size_t count) {
        return parsed_number<int>(text.substr(from, count)).value_or(-1);
    };
    const int hour = has_time ? part(11, 2) : 0;
    const int minute = has_time ? part(14, 2) : 0;
    const CTime time(part(0, 4), part(5, 2), part(8, 2), hour, minute, 0);
    // 30 February is no date though every part of it could be one.
    if (hour > 23 || minute > 59 || time.GetTime() < 0 || time.GetDay() != part(8, 2)) refuse(name, wanted, text);
    member = time;
}

}  // namespace tools
