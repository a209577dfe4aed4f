#include "jet/sql/date_literal.h"

#include <chrono>
#include <utility>

namespace jet::sql {

namespace {

constexpr int kMaxDigits = 5;

// Three numbers and what stands between them, read from left to right.
class Reader {
public:
    explicit Reader(std::u16string_view text) : text_(text) {}

    void skip_blanks() {
        while (at_ < text_.size() && (text_[at_] == u' ' || text_[at_] == u'\t')) ++at_;
    }

    // The number and how many digits it had; no digits: none.
    std::optional<std::pair<int, int>> number() {
        skip_blanks();
        int value = 0;
        int digits = 0;
        while (at_ < text_.size() && text_[at_] >= u'0' && text_[at_] <= u'9') {
            if (++digits > kMaxDigits) return std::nullopt;
            value = value * 10 + (text_[at_++] - u'0');
        }
        if (digits == 0) return std::nullopt;
        return std::pair(value, digits);
    }

    // NUL when there is none.
    char16_t separator() {
        skip_blanks();
        if (at_ == text_.size()) return 0;
        const char16_t c = text_[at_];
        if (c != u'/' && c != u'-' && c != u'.') return 0;
        ++at_;
        return c;
    }

    bool at_end() {
        skip_blanks();
        return at_ == text_.size();
    }

private:
    std::u16string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

std::optional<double> day_serial(int year, int month, int day) {
    if (year < 100 || year > 9999 || month < 1 || day < 1) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return std::nullopt;
    const std::chrono::sys_days zero = std::chrono::year(1899) / 12 / 30;
    return static_cast<double>((std::chrono::sys_days(date) - zero).count());
}

std::optional<Date> parse_date_literal(std::u16string_view text) {
    Reader reader(text);
    const auto first = reader.number();
    const char16_t separator = reader.separator();
    const auto second = reader.number();
    const char16_t other_separator = reader.separator();
    const auto third = reader.number();
    if (!first || !second || !third || separator == 0 || separator != other_separator || !reader.at_end()) {
        return std::nullopt;
    }
    const bool year_first = first->second > 2;
    auto [year, year_digits] = year_first ? *first : *third;
    int month = year_first ? second->first : first->first;
    int day = year_first ? third->first : second->first;
    if (month > 12 && day <= 12) std::swap(month, day);
    if (year_digits <= 2) year += year < 30 ? 2000 : 1900;
    const auto serial = day_serial(year, month, day);
    if (!serial) return std::nullopt;
    return Date{*serial};
}

}  // namespace jet::sql
