#include "db/upgrade/date_reader.h"

#include <array>
#include <charconv>

namespace db {
namespace {

constexpr std::size_t kMaxDigits = 4;
constexpr int kFirstYearOf1900s = 30;  // of two-digit years

struct Number {
    int value = 0;
    std::size_t digits = 0;
};

std::optional<Number> number_of(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(' ') + 1 - first);
    if (text.size() > kMaxDigits || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
    Number number{0, text.size()};
    std::from_chars(text.data(), text.data() + text.size(), number.value);
    return number;
}

int full_year(const Number& year) {
    if (year.digits > 2) return year.value;
    return year.value + (year.value < kFirstYearOf1900s ? 2000 : 1900);
}

}  // namespace

std::optional<COleDateTime> DateReader::read(std::string_view text) const {
    std::array<Number, 3> parts;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const bool last = i + 1 == parts.size();
        const std::size_t end = last ? text.size() : text.find(separator_);
        if (end == std::string_view::npos) return std::nullopt;
        const std::optional<Number> number = number_of(text.substr(0, end));
        if (!number) return std::nullopt;
        parts[i] = *number;
        if (!last) text.remove_prefix(end + separator_.size());
    }
    const auto date = [&](std::size_t year, std::size_t month, std::size_t day) {
        return COleDateTime(full_year(parts[year]), parts[month].value, parts[day].value, 0, 0, 0);
    };
    const COleDateTime read = order_ == os::DateOrder::kYearMonthDay   ? date(0, 1, 2)
                              : order_ == os::DateOrder::kDayMonthYear ? date(2, 1, 0)
                                                                       : date(2, 0, 1);
    if (read.GetStatus() != COleDateTime::valid) return std::nullopt;
    return read;
}

}  // namespace db
