// Another time zone for as long as the object lives.
#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

namespace testing_support {

class TimeZone {
public:
    // `rule` as in TZ ("CET-1CEST,M3.5.0,M10.5.0/3"), so that no test depends on the system's zone database.
    explicit TimeZone(const char* rule) {
        if (const char* before = std::getenv("TZ")) before_ = before, had_ = true;
        set(rule);
    }
    ~TimeZone() { set(had_ ? before_.c_str() : nullptr); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

    // Null: the system's own.
    static void set(const char* rule) {
#ifdef _WIN32
        _putenv_s("TZ", rule != nullptr ? rule : "");
        _tzset();
#else
        if (rule != nullptr) {
            setenv("TZ", rule, 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
#endif
    }

private:
    std::string before_;
    bool had_ = false;
};

}  // namespace testing_support
