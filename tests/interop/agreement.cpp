#include "tests/interop/agreement.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace interop {

namespace {

constexpr double kSecondsPerDay = 86400;
// Day 0 of the format, counted from 1970-01-01.
constexpr std::chrono::sys_days kDayZero = std::chrono::year{1899} / 12 / 30;

// Seconds since 1970-01-01. The fraction counts forward from the start of the day, also before day 0.
double unix_seconds(jet::Date date) {
    const double day = std::trunc(date.days);
    const double day_zero = static_cast<double>(kDayZero.time_since_epoch().count());
    return (day_zero + day + std::abs(date.days - day)) * kSecondsPerDay;
}

bool is_number(const std::string& text, double& number) {
    char* end = nullptr;
    number = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0';
}

// YYYY-MM-DD hh:mm:ss
bool date_time_seconds(const std::string& text, double& seconds) {
    int year = 0;
    unsigned month = 0, day = 0;
    int hour = 0, minute = 0, second = 0, used = 0;
    if (std::sscanf(text.c_str(), "%d-%u-%u %d:%d:%d%n", &year, &month, &day, &hour, &minute, &second, &used) != 6 ||
        static_cast<std::size_t>(used) != text.size()) {
        return false;
    }
    const std::chrono::sys_days days = std::chrono::year{year} / static_cast<int>(month) / static_cast<int>(day);
    seconds =
        static_cast<double>(days.time_since_epoch().count()) * kSecondsPerDay + hour * 3600 + minute * 60 + second;
    return true;
}

std::string upper(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

// A decimal number without trailing zeros and without the sign of zero.
std::string plain_decimal(std::string text) {
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
    }
    if (text.starts_with('.')) text.insert(0, "0");
    return text == "-0" ? "0" : text;
}

std::string with_point(std::string digits, bool negative, std::size_t scale) {
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    if (scale > 0) digits.insert(digits.size() - scale, ".");
    return plain_decimal((negative ? "-" : "") + digits);
}

std::string decimal_text(jet::Currency amount) {
    const bool negative = amount.ten_thousandths < 0;
    const auto magnitude = static_cast<std::uint64_t>(amount.ten_thousandths);
    return with_point(std::to_string(negative ? 0 - magnitude : magnitude), negative, 4);
}

// Long division: converts the 128-bit magnitude, most significant byte first, to decimal digits.
std::string decimal_text(const jet::Numeric& value) {
    std::string digits = "0";
    for (std::size_t word = 0; word < 4; ++word) {
        for (std::size_t byte = 4; byte-- > 0;) {
            unsigned carry = value.bytes[1 + 4 * word + byte];
            for (std::size_t at = digits.size(); at-- > 0;) {
                carry += static_cast<unsigned>(digits[at] - '0') * 256;
                digits[at] = static_cast<char>('0' + carry % 10);
                carry /= 10;
            }
            for (; carry > 0; carry /= 10) digits.insert(0, 1, static_cast<char>('0' + carry % 10));
        }
    }
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
    return with_point(digits, (value.bytes[0] & 0x80) != 0, value.scale);
}

std::string guid_digits(const jet::Guid& guid) {
    static constexpr std::size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::string text;
    for (const std::size_t at : kOrder) text += hex_of(&guid.bytes[at], 1);
    return text;
}

std::string guid_text(const jet::Guid& guid) {
    std::string text = guid_digits(guid);
    for (const std::size_t at : {8, 13, 18, 23}) text.insert(at, "-");
    return "{" + text + "}";
}

std::string hex_of_text(const std::string& text) {
    return hex_of(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

// Whether the text is this value, for each type of value.
struct SameAs {
    Reader reader;
    const std::string& text;

    bool operator()(jet::Null) const { return false; }
    bool operator()(bool v) const {
        return text == (reader == Reader::kMdbExport ? (v ? "1" : "0") : (v ? "true" : "false"));
    }
    bool operator()(std::uint8_t v) const { return text == std::to_string(v); }
    bool operator()(std::int16_t v) const { return text == std::to_string(v); }
    bool operator()(std::int32_t v) const { return text == std::to_string(v); }
    bool operator()(jet::Currency v) const { return plain_decimal(text) == decimal_text(v); }
    bool operator()(float v) const {
        double number = 0;
        return is_number(text, number) && static_cast<float>(number) == v;
    }
    bool operator()(double v) const {
        // mdb-export prints 16 digits, one less than some values need.
        const double tolerance = reader == Reader::kMdbExport ? std::abs(v) * 1e-15 : 0;
        double number = 0;
        return is_number(text, number) && std::abs(number - v) <= tolerance;
    }
    bool operator()(jet::Date v) const {
        // mdb-export prints whole seconds, mdb-reader whole milliseconds.
        double seconds = 0;
        if (reader == Reader::kMdbExport)
            return date_time_seconds(text, seconds) && std::abs(seconds - unix_seconds(v)) < 1;
        return is_number(text, seconds) && std::abs(seconds / 1000 - unix_seconds(v)) < 0.0015;
    }
    bool operator()(const std::u16string& v) const { return text == jet::to_utf8(v); }
    bool operator()(const std::vector<std::uint8_t>& v) const { return upper(text) == hex_of(v.data(), v.size()); }
    bool operator()(const jet::Guid& v) const {
        std::string digits = upper(text);
        std::erase_if(digits, [](char c) { return c == '{' || c == '}' || c == '-'; });
        return digits == guid_digits(v);
    }
    bool operator()(const jet::Numeric& v) const { return plain_decimal(text) == decimal_text(v); }
};

// A known fault of a reader: it prints something other than the stored value.
struct Fault {
    Reader reader;
    const char* name;
    bool (*explains)(const Sample& sample, const Field& field);
};

const std::vector<std::uint8_t>* bytes_of(const Sample& sample) {
    return std::get_if<std::vector<std::uint8_t>>(&sample.value);
}

bool is_date_before_day_zero(const Sample& sample) {
    const auto* date = std::get_if<jet::Date>(&sample.value);
    return date && date->days < 0;
}

const Fault kFaults[] = {
    // It takes the bytes for a text that ends at the first NUL, and an empty text for Null.
    {Reader::kMdbExport, "binary is printed up to its first NUL",
     [](const Sample& sample, const Field& field) {
         const auto* bytes = bytes_of(sample);
         if (!bytes) return false;
         const auto end = std::find(bytes->begin(), bytes->end(), 0);
         return upper(field.value_or("")) == hex_of(bytes->data(), static_cast<std::size_t>(end - bytes->begin()));
     }},
    {Reader::kMdbExport, "text is printed up to its first NUL",
     [](const Sample& sample, const Field& field) {
         const auto* text = std::get_if<std::u16string>(&sample.value);
         return text && field && text->find(u'\0') != std::u16string::npos && *field == jet::to_utf8(text->c_str());
     }},
    {Reader::kMdbExport, "an empty text is printed as Null",
     [](const Sample& sample, const Field& field) {
         const auto* text = std::get_if<std::u16string>(&sample.value);
         return text && text->empty() && !field;
     }},
    {Reader::kMdbExport, "a text is cut at 200000 bytes",
     [](const Sample& sample, const Field& field) {
         const auto* text = std::get_if<std::u16string>(&sample.value);
         return text && field && field->size() >= 199990 && jet::to_utf8(*text).starts_with(*field);
     }},
    // With "hex" it treats the text of a GUID as bytes; that text lacks the hyphen of the last group.
    {Reader::kMdbExport, "a GUID is printed as the hex digits of its text",
     [](const Sample& sample, const Field& field) {
         const auto* guid = std::get_if<jet::Guid>(&sample.value);
         return guid && field && upper(*field) == hex_of_text(guid_text(*guid).erase(24, 1));
     }},
    // It counts characters of two bytes.
    {Reader::kMdbExport, "a character beyond U+FFFF is printed as two question marks",
     [](const Sample& sample, const Field& field) {
         const auto* text = std::get_if<std::u16string>(&sample.value);
         if (!text || !field) return false;
         std::u16string marked = *text;
         for (char16_t& unit : marked) {
             if (unit >= 0xD800 && unit <= 0xDFFF) unit = u'?';
         }
         return *field == jet::to_utf8(marked);
     }},
    // It decodes by the system's SJIS, which has the national signs there.
    {Reader::kMdbExport, "backslash and tilde of code page 932 are printed as yen sign and overline",
     [](const Sample& sample, const Field& field) {
         const auto* text = std::get_if<std::u16string>(&sample.value);
         if (!text || !field || sample.column.code_page != 932) return false;
         std::u16string national = *text;
         std::replace(national.begin(), national.end(), u'\\', u'\u00A5');
         std::replace(national.begin(), national.end(), u'~', u'\u203E');
         return *field == jet::to_utf8(national);
     }},
    {Reader::kMdbExport, "dates before 1899-12-30 and from day 1000000 on, in the year 4637, are not printed",
     [](const Sample& sample, const Field& field) {
         const auto* date = std::get_if<jet::Date>(&sample.value);
         return date && (date->days < 0 || date->days > 1e6) && field == "1900-01-00 00:00:00";
     }},
    {Reader::kMdbExport, "type 0x11 is not known and printed as Null",
     [](const Sample& sample, const Field& field) {
         return sample.column.type == jet::ColumnType::kFixedBinary && !field;
     }},
    // It adds the fraction to a negative day, although it counts forward there as well.
    {Reader::kMdbReader, "the time of dates before 1899-12-30 is taken the wrong way",
     [](const Sample& sample, const Field& field) {
         double milliseconds = 0;
         if (!is_date_before_day_zero(sample) || !field || !is_number(*field, milliseconds)) return false;
         const double days = std::get<jet::Date>(sample.value).days;
         const double day_zero = static_cast<double>(kDayZero.time_since_epoch().count());
         return std::abs(milliseconds / 1000 - (day_zero + days) * kSecondsPerDay) < 0.0015;
     }},
};

}  // namespace

bool agrees(Reader reader, const Sample& sample, const Field& field) {
    if (!field) return jet::is_null(sample.value);
    return std::visit(SameAs{reader, *field}, sample.value);
}

const char* known_fault(Reader reader, const Sample& sample, const Field& field) {
    for (const Fault& fault : kFaults) {
        if (fault.reader == reader && fault.explains(sample, field)) return fault.name;
    }
    return nullptr;
}

bool is_unreadable(const Sample& sample) {
    if (is_date_before_day_zero(sample)) {
        const double days = std::get<jet::Date>(sample.value).days;
        return days != std::trunc(days);
    }
    return sample.column.type == jet::ColumnType::kFixedBinary;
}

std::string hex_of(const std::uint8_t* bytes, std::size_t count) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

namespace {

struct Describe {
    std::string operator()(jet::Null) const { return "Null"; }
    std::string operator()(bool v) const { return v ? "true" : "false"; }
    std::string operator()(jet::Currency v) const { return decimal_text(v); }
    std::string operator()(jet::Date v) const { return "day " + std::to_string(v.days); }
    std::string operator()(const std::u16string& v) const { return "'" + jet::to_utf8(v) + "'"; }
    std::string operator()(const std::vector<std::uint8_t>& v) const { return hex_of(v.data(), v.size()); }
    std::string operator()(const jet::Guid& v) const { return guid_text(v); }
    std::string operator()(const jet::Numeric& v) const { return decimal_text(v); }
    template <class Number>
    std::string operator()(Number v) const {
        return std::to_string(v);
    }
};

}  // namespace

std::string describe(const jet::Value& value) {
    std::string text = std::visit(Describe{}, value);
    if (text.size() > 120) text = text.substr(0, 120) + "... (" + std::to_string(text.size()) + " bytes)";
    return text;
}

}  // namespace interop
