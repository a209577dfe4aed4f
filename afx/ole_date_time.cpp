#include "afx/ole_date_time.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "afx/ole_variant.h"
#include "os/system.h"

namespace {

constexpr double kFirstDay = -657434;  // 1 January 100
constexpr double kLastDay = 2958465;   // 31 December 9999
constexpr std::int32_t kSecondsPerDay = 86400;
constexpr std::chrono::sys_days kEpoch = std::chrono::sys_days{std::chrono::year{1899} / std::chrono::December / 30};

using Parts = COleDateTime::Parts;

std::optional<Parts> split(const COleDateTime& moment) {
    if (moment.m_status != COleDateTime::valid) return std::nullopt;
    const double days = moment.m_dt;
    if (!(days > kFirstDay - 1 && days < kLastDay + 1)) return std::nullopt;
    const double whole = std::trunc(days);
    auto day = static_cast<std::int32_t>(whole);
    // To the nearest second first, so that a hair below midnight is midnight and not 23:59:60.
    auto seconds = static_cast<std::int32_t>(std::floor(std::abs(days - whole) * kSecondsPerDay + 0.5));
    if (seconds >= kSecondsPerDay) {
        seconds = 0;
        if (++day > static_cast<std::int32_t>(kLastDay)) return std::nullopt;
    }
    const std::chrono::year_month_day date{kEpoch + std::chrono::days{day}};
    return Parts{static_cast<int>(date.year()),
                 static_cast<int>(static_cast<unsigned>(date.month())),
                 static_cast<int>(static_cast<unsigned>(date.day())),
                 seconds / 3600,
                 seconds / 60 % 60,
                 seconds % 60};
}

int part(const COleDateTime& moment, int Parts::*member) {
    const std::optional<Parts> parts = split(moment);
    return parts ? (*parts).*member : -1;
}

std::string two_digits(int value) {
    return {static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

}  // namespace

COleDateTime& COleDateTime::operator=(const VARIANT& source) {
    VARIANT converted;
    VariantInit(&converted);
    const bool converts = afx::convert_variant(source, VT_DATE, converted);
    m_dt = converts ? converted.date : 0;
    m_status = converts ? valid : invalid;
    return *this;
}

COleDateTime COleDateTime::GetCurrentTime() {
    const double now = os::local_time_as_ole_date();
    const double day = std::floor(now);
    return COleDateTime(day + std::floor((now - day) * kSecondsPerDay + 1e-3) / kSecondsPerDay);
}

bool COleDateTime::GetParts(Parts& parts) const noexcept {
    const std::optional<Parts> found = split(*this);
    if (found) parts = *found;
    return found.has_value();
}
int COleDateTime::GetYear() const noexcept { return part(*this, &Parts::year); }
int COleDateTime::GetMonth() const noexcept { return part(*this, &Parts::month); }
int COleDateTime::GetDay() const noexcept { return part(*this, &Parts::day); }
int COleDateTime::GetHour() const noexcept { return part(*this, &Parts::hour); }
int COleDateTime::GetMinute() const noexcept { return part(*this, &Parts::minute); }
int COleDateTime::GetSecond() const noexcept { return part(*this, &Parts::second); }

int COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept {
    const bool in_bounds = year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
                           hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59 && second >= 0 && second <= 59;
    const auto date = std::chrono::year{in_bounds ? year : 0} / (in_bounds ? month : 1) / (in_bounds ? day : 1);
    if (!in_bounds || !date.ok()) {
        m_dt = 0;
        m_status = invalid;
        return 1;
    }
    const auto days = static_cast<double>((std::chrono::sys_days{date} - kEpoch).count());
    const double time = static_cast<double>(hour * 3600 + minute * 60 + second) / kSecondsPerDay;
    m_dt = days < 0 ? days - time : days + time;
    m_status = valid;
    return 0;
}

CString COleDateTime::Format(const char* format) const {
    if (m_status == null) return {};
    const std::optional<Parts> parts = split(*this);
    if (!parts) return "Invalid DateTime";
    std::string text;
    for (const char* at = format; at != nullptr && *at != 0; ++at) {
        if (*at != '%' || at[1] == 0) {
            text += *at;
            continue;
        }
        switch (*++at) {
            case 'd': text += two_digits(parts->day); break;
            case 'm': text += two_digits(parts->month); break;
            case 'y': text += two_digits(parts->year % 100); break;
            case 'Y': text += std::to_string(parts->year); break;
            case 'H': text += two_digits(parts->hour); break;
            case 'M': text += two_digits(parts->minute); break;
            case 'S': text += two_digits(parts->second); break;
            default: text += *at; break;
        }
    }
    return text.c_str();
}
