// CTime: a point in time as the records carry it, a signed 32-bit count of seconds since 1970-01-01 UTC.
//
// 1. The object is the count and nothing else (4 bytes).
// 2. -1 stands for every time that the count cannot hold: parts that form no calendar date, and
//    anything before 1970-01-01 UTC or after the last second of the count.
// 3. Parts are in local time. A negative count has none: GetLocalTm gives null and the
//    single parts are 0.
#pragma once

#include <kvdb/com.h>

#include <time.h>
#include <cstdint>
#include <ctime>

#ifdef GetCurrentTime
#undef GetCurrentTime  // a macro of the platform's headers that would replace the member below
#endif

#ifdef KVDB_NO_VALUE_CLASSES
namespace kvdb {
#endif

class CTime {
public:
    CTime() noexcept = default;
    CTime(LONG seconds) noexcept : seconds_(seconds) {}

    // Local time: full year, month from 1, day from 1. `dst` is 1, 0 or, for the zone's own rule, -1. A local time
    // skipped by a clock change becomes the next existing second of that day.
    CTime(int year, int month, int day, int hour, int minute, int second, int dst = -1) noexcept
        : seconds_(static_cast<LONG>(count_of(year, month, day, hour, minute, second, dst))) {}

    static CTime GetCurrentTime() noexcept {
        const std::int64_t now = static_cast<std::int64_t>(std::time(nullptr));
        return CTime(now >= 0 && now <= INT32_MAX ? static_cast<LONG>(now) : -1);
    }

    LONG GetTime() const noexcept { return seconds_; }

    // Local parts in `parts`, or in a thread-local buffer; null for a negative count, which leaves `parts` unchanged.
    std::tm* GetLocalTm(std::tm* parts = nullptr) const noexcept {
        static thread_local std::tm buffer;
        std::tm local{};
        if (seconds_ < 0 || !to_local(seconds_, &local)) return nullptr;
        if (parts == nullptr) parts = &buffer;
        *parts = local;
        return parts;
    }

    int GetYear() const noexcept { return part(&std::tm::tm_year, 1900); }
    int GetMonth() const noexcept { return part(&std::tm::tm_mon, 1); }
    int GetDay() const noexcept { return part(&std::tm::tm_mday, 0); }
    int GetHour() const noexcept { return part(&std::tm::tm_hour, 0); }
    int GetMinute() const noexcept { return part(&std::tm::tm_min, 0); }
    int GetSecond() const noexcept { return part(&std::tm::tm_sec, 0); }
    // 1 is Sunday.
    int GetDayOfWeek() const noexcept { return part(&std::tm::tm_wday, 1); }

    friend bool operator==(CTime a, CTime b) noexcept { return a.seconds_ == b.seconds_; }
    friend bool operator!=(CTime a, CTime b) noexcept { return a.seconds_ != b.seconds_; }
    friend bool operator<(CTime a, CTime b) noexcept { return a.seconds_ < b.seconds_; }
    friend bool operator>(CTime a, CTime b) noexcept { return a.seconds_ > b.seconds_; }
    friend bool operator<=(CTime a, CTime b) noexcept { return a.seconds_ <= b.seconds_; }
    friend bool operator>=(CTime a, CTime b) noexcept { return a.seconds_ >= b.seconds_; }

private:
    // The count for these local parts, or -1.
    static std::int64_t count_of(int year, int month, int day, int hour, int minute, int second, int dst) noexcept {
        if (year < 1969 || year > 2038 || month < 1 || month > 12 || day < 1 || day > 31) return -1;
        bool exact = false;
        std::int64_t count = host_count(year, month, day, hour, minute, second, dst, &exact);
        if (count < 0 || count > INT32_MAX) return -1;
        // The local time exists, so only the calendar date can still be invalid.
        if (exact && day <= days_in(year, month) && in_day(hour, minute, second)) return count;
        if (is_on(count, year, month, day)) return count;

        // A clock change may skip midnight, and the host's mktime may then give the day before. No zone skips more than
        // a few hours of an existing day.
        if (hour < 0 || minute < 0 || second < 0) return -1;
        for (int quarters = 1; quarters <= 16 && !is_on(count, year, month, day); ++quarters) {
            count = host_count(year, month, day, hour, minute + 15 * quarters, second, dst);
        }
        if (!is_on(count, year, month, day)) return -1;
        while (is_on(count - 1, year, month, day)) --count;
        return count;
    }

    // The count with these local parts, hours and below in any range; it may need more than 32 bits. For the zone's own
    // rule it uses the local clock's offset rather than the host's mktime, which looks for changes of the zone at every
    // call.
    static std::int64_t host_count(int year, int month, int day, int hour, int minute, int second, int dst,
                                   bool* exact = nullptr) noexcept {
        if (dst < 0) {
            const std::int64_t wall = days_before(year, month, day) * 86400 + hour * 3600LL + minute * 60LL + second;
            const std::int64_t first = wall - offset_at(wall);
            const std::int64_t offset = offset_at(first);
            if (exact != nullptr) *exact = first + offset == wall;
            return wall - offset;
        }
        std::tm parts{};
        parts.tm_year = year - 1900;
        parts.tm_mon = month - 1;
        parts.tm_mday = day;
        parts.tm_hour = hour;
        parts.tm_min = minute;
        parts.tm_sec = second;
        parts.tm_isdst = dst;
        return static_cast<std::int64_t>(std::mktime(&parts));
    }

    static int days_in(int year, int month) noexcept {
        if (month == 2) return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 ? 29 : 28;
        return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
    }

    static bool in_day(int hour, int minute, int second) noexcept {
        return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    }

    // Days from 1970-01-01 to this date.
    static std::int64_t days_before(int year, int month, int day) noexcept {
        const int shifted = month <= 2 ? year - 1 : year;  // years that start in March
        const int month_index = month <= 2 ? month + 9 : month - 3;
        return 365LL * shifted + shifted / 4 - shifted / 100 + shifted / 400 + (153 * month_index + 2) / 5 + day - 1 -
               719468;
    }

    // UTC offset of local time at `seconds`; for times that the host cannot convert, that of the nearest one.
    static std::int64_t offset_at(std::int64_t seconds) noexcept {
        if (seconds < 0) seconds = 0;
        if (seconds > INT32_MAX) seconds = INT32_MAX;
        std::tm parts{};
        if (!to_local(seconds, &parts)) return 0;
        return days_before(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday) * 86400 + parts.tm_hour * 3600LL +
               parts.tm_min * 60LL + parts.tm_sec - seconds;
    }

    static bool to_local(std::int64_t seconds, std::tm* parts) noexcept {
        const std::time_t count = static_cast<std::time_t>(seconds);
#ifdef _WIN32
        return localtime_s(parts, &count) == 0;
#else
        return localtime_r(&count, parts) != nullptr;
#endif
    }

    static bool is_on(std::int64_t seconds, int year, int month, int day) noexcept {
        std::tm parts{};
        return seconds >= 0 && seconds <= INT32_MAX && to_local(seconds, &parts) && parts.tm_year == year - 1900 &&
               parts.tm_mon == month - 1 && parts.tm_mday == day;
    }

    int part(int std::tm::*member, int offset) const noexcept {
        std::tm parts{};
        return GetLocalTm(&parts) != nullptr ? parts.*member + offset : 0;
    }

    LONG seconds_ = 0;
};

static_assert(sizeof(CTime) == 4, "the records rely on CTime being 4 bytes");

#ifdef KVDB_NO_VALUE_CLASSES
}  // namespace kvdb
#endif
