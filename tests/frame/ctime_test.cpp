// Local calendar dates in difficult zones. The zones are given by rule, so that the tests do not depend on the system's
// zone database.
#include <kvdb/ctime.h>

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/time_zone.h"

namespace {

using Zone = testing_support::TimeZone;

void expect_date(CTime time, int year, int month, int day) {
    EXPECT_EQ(time.GetYear(), year);
    EXPECT_EQ(time.GetMonth(), month);
    EXPECT_EQ(time.GetDay(), day);
}

}  // namespace

TEST(CTime, object_is_a_signed_32_bit_count) {
    EXPECT_EQ(sizeof(CTime), 4u);
    const CTime time(-5);
    LONG count = 0;
    std::memcpy(&count, &time, 4);
    EXPECT_EQ(count, -5);
    EXPECT_EQ(CTime().GetTime(), 0);
}

TEST(CTime, parts_make_a_count_and_come_back) {
    const Zone zone("UTC0");
    const CTime time(2005, 3, 5, 14, 30, 59);
    EXPECT_EQ(time.GetTime(), 1110033059);
    expect_date(time, 2005, 3, 5);
    EXPECT_EQ(time.GetHour(), 14);
    EXPECT_EQ(time.GetMinute(), 30);
    EXPECT_EQ(time.GetSecond(), 59);
    EXPECT_EQ(time.GetDayOfWeek(), 7);
}

TEST(CTime, parts_are_local) {
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(CTime(2005, 1, 1, 0, 0, 0).GetTime(), 1104534000);
#ifndef _WIN32  // its runtime takes the hours from the variable and the rule from the system
    EXPECT_EQ(CTime(2005, 7, 1, 0, 0, 0).GetTime(), 1120168800);
#endif
    EXPECT_EQ(CTime(2005, 7, 1, 0, 0, 0, 0).GetTime(), 1120172400);
}

TEST(CTime, count_of_zero_is_a_date) {
    const Zone zone("UTC0");
    EXPECT_EQ(CTime(1970, 1, 1, 0, 0, 0).GetTime(), 0);
    expect_date(CTime(0), 1970, 1, 1);
}

TEST(CTime, out_of_range_is_minus_one) {
    {
        const Zone zone("UTC0");
        EXPECT_EQ(CTime(1969, 12, 31, 23, 59, 59).GetTime(), -1);
        EXPECT_EQ(CTime(1899, 12, 30, 0, 0, 0).GetTime(), -1);
        EXPECT_EQ(CTime(2038, 1, 18, 0, 0, 0).GetTime(), 2147385600);
        EXPECT_EQ(CTime(2038, 1, 19, 3, 14, 7).GetTime(), 2147483647);
        EXPECT_EQ(CTime(2038, 1, 19, 3, 14, 8).GetTime(), -1);
        EXPECT_EQ(CTime(2038, 1, 20, 0, 0, 0).GetTime(), -1);
        EXPECT_EQ(CTime(9999, 12, 31, 0, 0, 0).GetTime(), -1);
        EXPECT_EQ(CTime(-1, -1, -1, 0, 0, 0).GetTime(), -1);
    }
    {
        const Zone east("CET-1");  // its first day of 1970 starts before the count does
        EXPECT_EQ(CTime(1970, 1, 1, 0, 0, 0).GetTime(), -1);
        EXPECT_EQ(CTime(1970, 1, 1, 1, 0, 0).GetTime(), 0);
    }
    {
        const Zone west("EST5");
        EXPECT_EQ(CTime(1969, 12, 31, 19, 0, 0).GetTime(), 0);
    }
}

TEST(CTime, no_such_date_is_minus_one) {
    const Zone zone("UTC0");
    EXPECT_EQ(CTime(2005, 2, 29, 0, 0, 0).GetTime(), -1);
    EXPECT_EQ(CTime(2004, 2, 29, 0, 0, 0).GetTime(), 1078012800);
    EXPECT_EQ(CTime(2005, 4, 31, 0, 0, 0).GetTime(), -1);
    EXPECT_EQ(CTime(2005, 13, 1, 0, 0, 0).GetTime(), -1);
    EXPECT_EQ(CTime(2005, 0, 1, 0, 0, 0).GetTime(), -1);
    EXPECT_EQ(CTime(2005, 1, 0, 0, 0, 0).GetTime(), -1);
    EXPECT_EQ(CTime(2005, 1, 1, 24, 0, 0).GetTime(), -1);
    EXPECT_EQ(CTime(2005, 1, 1, -1, 0, 0).GetTime(), -1);
}

TEST(CTime, negative_count_has_no_parts) {
    for (const LONG count : {-1, -86400, INT32_MIN}) {
        const CTime time(count);
        std::tm parts{};
        parts.tm_year = 77;
        EXPECT_EQ(time.GetLocalTm(), nullptr);
        EXPECT_EQ(time.GetLocalTm(&parts), nullptr);
        EXPECT_EQ(parts.tm_year, 77);
        expect_date(time, 0, 0, 0);
        EXPECT_EQ(time.GetHour(), 0);
        EXPECT_EQ(time.GetTime(), count);
    }
}

TEST(CTime, local_parts_go_where_asked) {
    const Zone zone("UTC0");
    const CTime time(2005, 3, 5, 14, 30, 59);
    std::tm parts{};
    EXPECT_EQ(time.GetLocalTm(&parts), &parts);
    EXPECT_EQ(parts.tm_year, 105);
    EXPECT_EQ(parts.tm_mon, 2);
    ASSERT_NE(time.GetLocalTm(), nullptr);
    EXPECT_EQ(time.GetLocalTm()->tm_mday, 5);
}

#ifndef _WIN32
// Clocks that go forward at midnight: the day starts at one o'clock.
TEST(CTime, missing_midnight_moves_to_the_first_second_of_the_day) {
    const Zone zone("XST3XDT,M10.3.0/0,M2.3.0/0");
    const CTime time(2005, 10, 16, 0, 0, 0);
    expect_date(time, 2005, 10, 16);
    EXPECT_EQ(time.GetHour(), 1);
    EXPECT_EQ(time.GetMinute(), 0);
    EXPECT_EQ(time.GetSecond(), 0);
    const CTime inside(2005, 10, 16, 0, 40, 10);
    expect_date(inside, 2005, 10, 16);
}

// Summer time ends: 02:30 (01:30, 01:45) is shown twice. Whatever was asked before, one of the two is meant.
TEST(CTime, hour_that_occurs_twice_is_always_read_as_the_same_one) {
    struct Twice {
        const char* zone;
        int month, day, hour, minute;
        LONG count;
    };
    for (const Twice& twice : {
             Twice{"CET-1CEST,M3.5.0,M10.5.0/3", 10, 30, 2, 30, 1130635800},       // the second: 01:30 in Greenwich
             Twice{"EST5EDT,M4.1.0,M10.5.0", 10, 30, 1, 30, 1130650200},           // the first: 05:30 in Greenwich
             Twice{"LHST-10:30LHDT-11,M10.1.0,M3.5.0", 3, 27, 1, 45, 1111850100},  // the second: 15:15 the day before
         }) {
        const Zone zone(twice.zone);
        for (const int month_before : {1, 7, 1, 12, 6}) {
            const CTime before(2005, month_before, 15, 12, 0, 0);
            const CTime time(2005, twice.month, twice.day, twice.hour, twice.minute, 0);
            EXPECT_EQ(time.GetTime(), twice.count) << twice.zone << " after month " << month_before;
            EXPECT_EQ(time.GetHour(), twice.hour);
            EXPECT_EQ(time.GetMinute(), twice.minute);
            EXPECT_NE(before.GetTime(), 0);
        }
    }
}
#endif

TEST(CTime, every_day_of_a_year_round_trips_in_every_zone) {
    for (const char* rule : {"UTC0", "HST10", "CET-1CEST,M3.5.0,M10.5.0/3", "XST3XDT,M10.3.0/0,M2.3.0/0",
                             "NZST-12NZDT,M9.5.0,M4.1.0/3", "LHST-10:30LHDT-11,M10.1.0/0,M4.1.0"}) {
        const Zone zone(rule);
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= 28; ++day) {
                const CTime time(2006, month, day, 0, 0, 0);
                ASSERT_EQ(time.GetYear(), 2006) << rule;
                ASSERT_EQ(time.GetMonth(), month) << rule;
                ASSERT_EQ(time.GetDay(), day) << rule;
            }
        }
    }
}

TEST(CTime, comparison_is_by_count) {
    EXPECT_TRUE(CTime(5) == CTime(5));
    EXPECT_TRUE(CTime(5) != CTime(6));
    EXPECT_TRUE(CTime(-1) < CTime(0));
    EXPECT_TRUE(CTime(7) > CTime(6));
    EXPECT_TRUE(CTime(7) >= CTime(7));
    EXPECT_TRUE(CTime(7) <= CTime(7));
}
