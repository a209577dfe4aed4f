#include "os/system.h"

#include <gtest/gtest.h>

#include <cmath>

#include "os/system_parts.h"

namespace {

TEST(Path, folder_of_file_has_no_trailing_separator) {
    EXPECT_EQ(os::folder_of(os::join_path("here", "x.mdb")), "here");
    EXPECT_EQ(os::folder_of("a/b/c.mdb"), "a/b");
    EXPECT_EQ(os::folder_of("a//c.mdb"), "a");
    EXPECT_EQ(os::folder_of("a/b/"), "a/b");
}

TEST(Path, folder_of_bare_name_is_empty) {
    EXPECT_EQ(os::folder_of("c.mdb"), "");
    EXPECT_EQ(os::folder_of(""), "");
}

TEST(Path, folder_of_file_in_root_is_the_root) { EXPECT_EQ(os::folder_of("/c.mdb"), "/"); }

TEST(Path, join_uses_exactly_one_separator) {
    const std::string separator(1, os::detail::kPathSeparator);
    const std::string expected = "a" + separator + "b";
    EXPECT_EQ(os::join_path("a", "b"), expected);
    EXPECT_EQ(os::join_path("a/", "b"), expected);
    EXPECT_EQ(os::join_path("a//", "b"), expected);
    EXPECT_EQ(os::join_path("a", "/b"), expected);
    EXPECT_EQ(os::join_path("a/", "//b"), expected);
    EXPECT_EQ(os::join_path("/", "b"), separator + "b");
}

TEST(Path, join_with_empty_folder_is_the_name) {
    EXPECT_EQ(os::join_path("", "b"), "b");
    EXPECT_EQ(os::join_path(os::folder_of("b"), "b"), "b");
}

TEST(DateFormatOverride, override_given_is_answered_until_taken_back) {
    const std::string separator = os::date_separator();
    const os::DateOrder order = os::date_order();
    os::set_date_format_for_test("~", os::DateOrder::kYearMonthDay);
    EXPECT_EQ(os::date_separator(), "~");
    EXPECT_EQ(os::date_order(), os::DateOrder::kYearMonthDay);
    os::set_date_format_for_test("", os::DateOrder::kDayMonthYear);
    EXPECT_EQ(os::date_separator(), separator);
    EXPECT_EQ(os::date_order(), order);
}

TEST(OleDate, known_dates_have_their_day_numbers) {
    const auto date = [](std::int32_t year, std::int32_t month, std::int32_t day) {
        return os::detail::ole_date_of({.year = year, .month = month, .day = day});
    };
    EXPECT_EQ(date(1899, 12, 30), 0.0);
    EXPECT_EQ(date(1899, 12, 31), 1.0);
    EXPECT_EQ(date(1900, 3, 1), 61.0);
    EXPECT_EQ(date(1970, 1, 1), 25569.0);
    EXPECT_EQ(date(2000, 2, 29), 36585.0);
    EXPECT_EQ(date(2005, 3, 5), 38416.0);
    EXPECT_EQ(date(9999, 12, 31), 2958465.0);
}

TEST(OleDate, time_of_day_is_the_fraction) {
    os::detail::LocalTime time{.year = 2005, .month = 3, .day = 5, .hour = 18};
    EXPECT_EQ(os::detail::ole_date_of(time), 38416.75);
    time = {.year = 2005, .month = 3, .day = 5, .hour = 23, .minute = 59, .second = 59, .millisecond = 999};
    EXPECT_EQ(std::llround((os::detail::ole_date_of(time) - 38416.0) * 86'400'000.0), 86'399'999);
}

TEST(OleDate, leap_second_stays_in_its_minute) {
    const os::detail::LocalTime leap{.year = 2016, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 60};
    EXPECT_LT(os::detail::ole_date_of(leap), 42736.0);
}

TEST(OleDate, local_time_is_whole_milliseconds_and_does_not_run_backwards) {
    const double first = os::local_time_as_ole_date();
    const double milliseconds = first * 86'400'000.0;
    EXPECT_NEAR(milliseconds, std::round(milliseconds), 0.01);
    EXPECT_GT(first, 45000.0);
    EXPECT_GE(os::local_time_as_ole_date(), first);
}

}  // namespace
