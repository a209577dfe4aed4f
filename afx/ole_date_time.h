// COleDateTime: a moment as days since 1899-12-30 00:00 with a status. The integer part is the day, the
// fraction is a positive time of day even before that day. Gregorian throughout, local time, years 100 to
// 9999; the count has no memory of a time zone.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>

#ifdef GetCurrentTime
#undef GetCurrentTime  // the platform's macro would rename the member
#endif

class COleDateTime {
public:
    enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

    // 1899-12-30 00:00, valid.
    COleDateTime() noexcept = default;
    COleDateTime(DATE days) noexcept : m_dt(days) {}
    // VT_DATE as it is, other types converted; what does not convert (VT_NULL included) gives 0, invalid.
    explicit COleDateTime(const VARIANT& source) { *this = source; }
    // As SetDateTime.
    COleDateTime(int year, int month, int day, int hour, int minute, int second) {
        SetDateTime(year, month, day, hour, minute, second);
    }

    COleDateTime& operator=(const VARIANT& source);
    COleDateTime& operator=(DATE days) noexcept {
        m_dt = days;
        m_status = valid;
        return *this;
    }

    // The local clock, whole seconds.
    static COleDateTime GetCurrentTime();

    DateTimeStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(DateTimeStatus status) noexcept { m_status = status; }
    operator DATE() const noexcept { return m_dt; }

    // All parts at once, as the next ones give each; false, and `parts` is untouched, where they would be -1.
    struct Parts {
        int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    };
    bool GetParts(Parts& parts) const noexcept;
    // Parts, rounded to the nearest second; -1 when the moment is not valid or out of range.
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;

    // 0 when the parts name a moment; otherwise 1 and the status invalid. Days beyond the end of their
    // month are refused.
    int SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;
    int SetDate(int year, int month, int day) noexcept { return SetDateTime(year, month, day, 0, 0, 0); }

    // %d %m %y %Y %H %M %S and %%; any other code stands for itself. "" when null, a text without digits
    // when invalid or out of range.
    CString Format(const char* format) const;

    bool operator==(const COleDateTime& other) const noexcept {
        return m_status == other.m_status && m_dt == other.m_dt;
    }

    DATE m_dt = 0;
    DateTimeStatus m_status = valid;
};
