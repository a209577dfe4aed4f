#include "tools/row_condition.h"

#include <charconv>
#include <cmath>

#include "jet/indexes/collation.h"
#include "jet/sql/date_literal.h"
#include "jet/sql/scalar.h"
#include "tools/errors.h"
#include "tools/names.h"
#include "tools/value_text.h"

namespace tools {
namespace {

using Comparison = RowCondition::Comparison;

struct Sign {
    const char* text;
    Comparison comparison;
};

// Longer ones before those that they begin with.
constexpr Sign kSigns[] = {
    {"!=", Comparison::kNotEqual},       {"<>", Comparison::kNotEqual}, {"<=", Comparison::kLessOrEqual},
    {">=", Comparison::kGreaterOrEqual}, {"=", Comparison::kEqual},     {"<", Comparison::kLess},
    {">", Comparison::kGreater},         {"~", Comparison::kContains},
};

struct Parts {
    std::string column;
    Comparison comparison;
    std::string value;
};

Parts parts_of(const std::string& word) {
    const std::size_t at = word.find_first_of("=!<>~");
    if (at != std::string::npos && at > 0) {
        for (const Sign& sign : kSigns) {
            const std::string text = sign.text;
            if (word.compare(at, text.size(), text) == 0) {
                return {word.substr(0, at), sign.comparison, word.substr(at + text.size())};
            }
        }
    }
    throw UsageError("'" + word + "' is no condition; wanted is COLUMN=VALUE, or !=, <, <=, >, >= or ~ in place of =");
}

std::optional<double> finite_number(const std::string& text) {
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !std::isfinite(number)) return {};
    return number;
}

bool is_date(const jet::ColumnDef& column) { return column.type == jet::ColumnType::kDate; }

bool is_number(const jet::ColumnDef& column) {
    switch (column.type) {
        case jet::ColumnType::kBoolean:
        case jet::ColumnType::kByte:
        case jet::ColumnType::kInteger:
        case jet::ColumnType::kLong:
        case jet::ColumnType::kCurrency:
        case jet::ColumnType::kSingle:
        case jet::ColumnType::kDouble:
        case jet::ColumnType::kNumeric:
        case jet::ColumnType::kComplexId: return true;
        default: return false;
    }
}

double to_number(const jet::Value& value) {
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? 1 : 0;
    if (const auto* numeric = std::get_if<jet::Numeric>(&value)) return jet::sql::to_double(*numeric);
    if (const auto* currency = std::get_if<jet::Currency>(&value)) {
        return static_cast<double>(currency->ten_thousandths) / 10000;
    }
    if (const auto* date = std::get_if<jet::Date>(&value)) return jet::sql::linear_days(date->days);
    if (const auto* single = std::get_if<float>(&value)) return static_cast<double>(*single);
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* byte = std::get_if<std::uint8_t>(&value)) return *byte;
    if (const auto* integer = std::get_if<std::int16_t>(&value)) return *integer;
    return std::get<std::int32_t>(value);
}

bool is_empty(const jet::Value& value) {
    const auto* const text = std::get_if<std::u16string>(&value);
    return jet::is_null(value) || (text != nullptr && text->empty());
}

bool holds_for_order(Comparison comparison, int order) {
    switch (comparison) {
        case Comparison::kEqual: return order == 0;
        case Comparison::kNotEqual: return order != 0;
        case Comparison::kLess: return order < 0;
        case Comparison::kLessOrEqual: return order <= 0;
        case Comparison::kGreater: return order > 0;
        case Comparison::kGreaterOrEqual: return order >= 0;
        case Comparison::kContains: break;
    }
    return false;
}

}  // namespace

namespace {

bool is_same_character(char16_t a, char16_t b) {
    if (a == b) return true;
    const auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; };
    return a < 0x80 && b < 0x80 ? lower(a) == lower(b) : jet::equal_character(a, b);
}

}  // namespace

std::optional<std::size_t> find_text(std::u16string_view text, std::u16string_view part, std::size_t from) {
    for (std::size_t at = from; at + part.size() <= text.size(); ++at) {
        std::size_t i = 0;
        while (i < part.size() && is_same_character(text[at + i], part[i])) ++i;
        if (i == part.size()) return at;
    }
    return std::nullopt;
}

std::optional<TimeSpan> parse_time_span(const std::string& text) {
    static constexpr const char* kPatterns[] = {"9999", "9999-99", "9999-99-99", "9999-99-99T99:99",
                                                "9999-99-99T99:99:99"};
    int form = -1;
    for (int i = 0; i < 5; ++i) {
        const std::string pattern = kPatterns[i];
        bool fits = pattern.size() == text.size();
        for (std::size_t at = 0; fits && at < pattern.size(); ++at) {
            fits = pattern[at] == '9' ? text[at] >= '0' && text[at] <= '9' : text[at] == pattern[at];
        }
        if (fits) form = i;
    }
    if (form < 0) return std::nullopt;
    const auto part = [&](std::size_t from, std::size_t count, int otherwise) {
        return from < text.size() ? std::stoi(text.substr(from, count)) : otherwise;
    };
    const int year = part(0, 4, 0), month = part(5, 2, 1), day = part(8, 2, 1);
    const int hour = part(11, 2, 0), minute = part(14, 2, 0), second = part(17, 2, 0);
    const std::optional<double> begin = jet::sql::day_serial(year, month, day);
    if (!begin || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    const std::optional<double> end = form == 0 ? jet::sql::day_serial(year + 1, 1, 1)
                                      : form == 1
                                          ? jet::sql::day_serial(month == 12 ? year + 1 : year, month % 12 + 1, 1)
                                          : *begin + 1;
    if (form < 3) return TimeSpan{*begin, end.value_or(*begin + 366)};
    // Between two seconds: what a file holds of a time is the nearest fraction of a day.
    constexpr double kSecond = 1.0 / 86400;
    const double moment = *begin + (hour * 3600 + minute * 60 + second) * kSecond;
    return TimeSpan{moment - kSecond / 2, moment + (form == 3 ? 59.5 : 0.5) * kSecond};
}

RowCondition::RowCondition(const jet::TableDef& table, const std::string& word) {
    const Parts parts = parts_of(word);
    comparison_ = parts.comparison;
    const auto position = table.find_column(jet::from_utf8(parts.column));
    if (!position) {
        Names names;
        for (const jet::ColumnDef& column : table.columns) names.push_back(jet::to_utf8(column.name));
        const std::string hint = suggestion(parts.column, names);
        throw UsageError(jet::to_utf8(table.name) + " has no column '" + parts.column + "'" +
                         (hint.empty() ? "; it has " + listed(names) : hint));
    }
    position_ = *position;
    text_ = jet::from_utf8(parts.value);
    if (text_.empty() && comparison_ != Comparison::kEqual && comparison_ != Comparison::kNotEqual) {
        throw UsageError("'" + word + "' lacks its value");
    }
    if (!parts.value.empty() && comparison_ != Comparison::kContains) {
        parse_value(table.columns[position_], parts.value);
    }
}

void RowCondition::parse_value(const jet::ColumnDef& column, const std::string& text) {
    if (!is_number(column) && !is_date(column)) return;
    const std::size_t dots = text.find("..");
    const std::string from = text.substr(0, dots);
    const std::string to = dots == std::string::npos ? from : text.substr(dots + 2);
    if (is_date(column)) {
        const auto first = parse_time_span(from);
        const auto last = parse_time_span(to);
        if (!first || !last) {
            throw UsageError(jet::to_utf8(column.name) +
                             " takes a date as YYYY, YYYY-MM, YYYY-MM-DD or YYYY-MM-DDTHH:MM, or two of them with .. "
                             "between, not '" +
                             text + "'");
        }
        span_ = Span{first->begin, last->end, false};
        return;
    }
    const bool is_truth = column.type == jet::ColumnType::kBoolean;
    const auto first = is_truth && (from == "true" || from == "false") ? from == "true" : finite_number(from);
    const auto last = dots == std::string::npos ? first : finite_number(to);
    if (!first || !last) {
        throw UsageError(jet::to_utf8(column.name) + " takes a number, or two of them with .. between, not '" + text +
                         "'");
    }
    span_ = Span{*first, *last};
    if (column.type == jet::ColumnType::kSingle) {
        // What the column holds for the number that was typed.
        span_ = Span{static_cast<double>(static_cast<float>(*first)), static_cast<double>(static_cast<float>(*last))};
    }
}

bool RowCondition::holds_for_number(double number) const {
    const bool is_before = number < span_->first;
    const bool is_after = span_->includes_last ? number > span_->last : number >= span_->last;
    return holds_for_order(comparison_, is_before ? -1 : is_after ? 1 : 0);
}

bool RowCondition::holds(const jet::Value& value) const {
    if (text_.empty()) {
        if (comparison_ == Comparison::kEqual) return is_empty(value);
        return comparison_ == Comparison::kNotEqual && !is_empty(value);
    }
    if (jet::is_null(value)) return comparison_ == Comparison::kNotEqual;
    if (span_) return holds_for_number(to_number(value));
    const auto* const own = std::get_if<std::u16string>(&value);
    const std::u16string shown = own != nullptr ? std::u16string() : jet::from_utf8(plain_text(value));
    const std::u16string& text = own != nullptr ? *own : shown;
    if (comparison_ == Comparison::kContains) return find_text(text, text_).has_value();
    if (comparison_ == Comparison::kEqual) return jet::equal_text(text, text_);
    if (comparison_ == Comparison::kNotEqual) return !jet::equal_text(text, text_);
    return holds_for_order(comparison_, jet::compare_text(text, text_));
}

}  // namespace tools
