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
        while (at_ < text_.size() && is_blank(text_[at_])) ++at_;
    }

    // The number and how many digits it had; no digits: none.
    std::optional<std::pair<int, int>> number() {
        skip_blanks();
        int value = 0;
        int digits = 0;
        while (at_ < text_.size() && is_digit(text_[at_])) {
            if (++digits > kMaxDigits) return std::nullopt;
            value = value * 10 + (text_[at_++] - u'0');
        }
        if (digits == 0) return std::nullopt;
        return std::pair(value, digits);
    }

    // What stands before the next digit, without blanks around it; none when nothing does, not even a blank.
    std::optional<std::u16string_view> separator() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && !is_digit(text_[at_])) ++at_;
        if (at_ == begin) return std::nullopt;
        std::u16string_view found = text_.substr(begin, at_ - begin);
        while (!found.empty() && is_blank(found.front())) found.remove_prefix(1);
        while (!found.empty() && is_blank(found.back())) found.remove_suffix(1);
        return found;
    }

    bool at_end() {
        skip_blanks();
        return at_ == text_.size();
    }

private:
    static bool is_blank(char16_t c) { return c == u' ' || c == u'\t'; }
    static bool is_digit(char16_t c) { return c >= u'0' && c <= u'9'; }

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
    const auto separator = reader.separator();
    const auto second = reader.number();
    const auto other_separator = reader.separator();
    const auto third = reader.number();
    if (!first || !second || !third || !separator || separator != other_separator || !reader.at_end()) {
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
