#include "db/upgrade/duration.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace db {
namespace {

constexpr std::int64_t kUnit = 10000;  // ten-thousandths in one
constexpr double kMostHours = 900e12;  // the limit of an amount
constexpr std::int64_t kMinutes = 60;

// Parses the whole text as a number.
template <class Number>
std::optional<Number> number_of(std::string_view text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

bool is_digits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::int64_t ten_thousandths_of(std::string_view text) {
    if (const std::size_t colon = text.find(':'); colon != std::string_view::npos) {
        const std::string_view minutes_text = text.substr(colon + 1);
        if (!is_digits(text.substr(0, colon)) || !is_digits(minutes_text) || minutes_text.size() != 2) return 0;
        const auto hours = number_of<std::int32_t>(text.substr(0, colon));
        const auto minutes = number_of<std::int32_t>(minutes_text);
        if (!hours || *minutes >= kMinutes) return 0;
        return *hours * kUnit + (*minutes * kUnit + kMinutes / 2) / kMinutes;
    }
    const auto hours = number_of<double>(text);
    if (!hours || !(std::abs(*hours) < kMostHours)) return 0;
    return std::llround(*hours * static_cast<double>(kUnit));
}

}  // namespace

COleCurrency hours_of(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    CY amount{};
    if (first != std::string_view::npos) {
        amount.int64 = ten_thousandths_of(text.substr(first, text.find_last_not_of(' ') + 1 - first));
    }
    return COleCurrency(amount);
}

}  // namespace db
