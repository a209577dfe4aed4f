#include "afx/ole_date_time.h"

#include <limits>

#include <gtest/gtest.h>

#include "afx/ole_variant.h"

namespace {

TEST(OleDateTime, default_is_the_first_day_of_the_count) {
    const COleDateTime moment;
    EXPECT_EQ(moment.GetStatus(), COleDateTime::valid);
    EXPECT_EQ(moment.Format("%d/%m/%Y"), "30/12/1899");
}

TEST(OleDateTime, known_days_have_known_counts) {
    EXPECT_EQ(COleDateTime(2005, 3, 1, 0, 0, 0).m_dt, 38412);
    EXPECT_EQ(COleDateTime(2004, 12, 31, 0, 0, 0).m_dt, 38352);
    EXPECT_EQ(COleDateTime(1970, 1, 1, 0, 0, 0).m_dt, 25569);
    EXPECT_EQ(COleDateTime(100, 1, 1, 0, 0, 0).m_dt, -657434);
    EXPECT_EQ(COleDateTime(9999, 12, 31, 0, 0, 0).m_dt, 2958465);
}

TEST(OleDateTime, parts_round_trip) {
    for (const int year : {100, 1600, 1899, 1900, 2000, 2004, 9999}) {
        const COleDateTime moment(year, 2, 28, 23, 59, 58);
        EXPECT_EQ(moment.GetYear(), year);
        EXPECT_EQ(moment.GetMonth(), 2);
        EXPECT_EQ(moment.GetDay(), 28);
        EXPECT_EQ(moment.GetHour(), 23);
        EXPECT_EQ(moment.GetMinute(), 59);
        EXPECT_EQ(moment.GetSecond(), 58);
    }
}

TEST(OleDateTime, fraction_before_the_first_day_is_a_positive_time) {
    const COleDateTime moment(1899, 12, 28, 6, 0, 0);
    EXPECT_EQ(moment.m_dt, -2.25);
    EXPECT_EQ(moment.GetDay(), 28);
    EXPECT_EQ(moment.GetHour(), 6);
}

TEST(OleDateTime, hair_below_midnight_is_the_next_day) {
    const COleDateTime moment(38412.99999999);
    EXPECT_EQ(moment.GetDay(), 2);
    EXPECT_EQ(moment.GetHour(), 0);
    EXPECT_EQ(moment.GetSecond(), 0);
}

TEST(OleDateTime, set_date_refuses_what_no_calendar_has) {
    COleDateTime moment;
    EXPECT_EQ(moment.SetDate(2004, 2, 29), 0);
    EXPECT_EQ(moment.SetDate(2005, 2, 29), 1);
    EXPECT_EQ(moment.GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(moment.SetDate(2005, 4, 31), 1);
    EXPECT_EQ(moment.SetDate(2005, 13, 1), 1);
    EXPECT_EQ(moment.SetDate(99, 1, 1), 1);
    EXPECT_EQ(moment.SetDate(-1, -1, -1), 1);
    EXPECT_EQ(moment.SetDateTime(2005, 1, 1, 24, 0, 0), 1);
    EXPECT_EQ(moment.GetYear(), -1);
}

TEST(OleDateTime, null_variant_gives_invalid) {
    COleVariant null;
    null.vt = VT_NULL;
    const COleDateTime moment(null);
    EXPECT_EQ(moment.GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(moment.GetYear(), -1);
    EXPECT_EQ(moment.GetMonth(), -1);
    EXPECT_EQ(moment.GetDay(), -1);
    EXPECT_EQ(moment.Format("%d"), "Invalid DateTime");
}

TEST(OleDateTime, variant_conversions) {
    EXPECT_EQ(COleDateTime(COleVariant()).GetStatus(), COleDateTime::valid);
    EXPECT_EQ(COleDateTime(COleVariant(38412)).GetYear(), 2005);
    EXPECT_EQ(COleDateTime(COleVariant("nonsense")).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(COleDateTime(COleVariant(1e9)).GetStatus(), COleDateTime::invalid);
}

TEST(OleDateTime, count_out_of_range_has_no_parts) {
    for (const double days : {1e300, -1e300, 2958466.0, -657435.0, std::numeric_limits<double>::quiet_NaN()}) {
        const COleDateTime moment(days);
        EXPECT_EQ(moment.GetYear(), -1) << days;
        EXPECT_EQ(moment.Format("%Y"), "Invalid DateTime");
    }
    EXPECT_EQ(COleDateTime(2958465.9999999).GetYear(), -1);
}

TEST(OleDateTime, format_codes) {
    const COleDateTime moment(2005, 3, 1, 14, 5, 9);
    EXPECT_EQ(moment.Format("%d/%m/%Y %H:%M:%S %y %%"), "01/03/2005 14:05:09 05 %");
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    EXPECT_EQ(null.Format("%d"), "");
}

TEST(OleDateTime, current_time_has_whole_seconds) {
    const COleDateTime now = COleDateTime::GetCurrentTime();
    const double seconds = now.m_dt * 86400;
    EXPECT_NEAR(seconds, static_cast<double>(static_cast<std::int64_t>(seconds + 0.5)), 1e-3);
    EXPECT_GT(now.GetYear(), 2004);
}

}  // namespace
