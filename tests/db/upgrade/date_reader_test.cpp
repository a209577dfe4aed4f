#include "db/upgrade/date_reader.h"

#include <gtest/gtest.h>

#include "db/upgrade/duration.h"

namespace {

using os::DateOrder;

class DateReaderTest : public ::testing::Test {
protected:
    ~DateReaderTest() override { os::set_date_format_for_test("", DateOrder::kMonthDayYear); }

    static std::string read(const char* separator, DateOrder order, const char* text) {
        os::set_date_format_for_test(separator, order);
        const auto date = db::DateReader().read(text);
        return date ? std::string(date->Format("%Y-%m-%d %H:%M:%S")) : "none";
    }
    static std::string read(const char* text) { return read("/", DateOrder::kMonthDayYear, text); }
};

TEST_F(DateReaderTest, order_and_separator_are_the_systems) {
    EXPECT_EQ(read("/", DateOrder::kMonthDayYear, "3/5/2005"), "2005-03-05 00:00:00");
    EXPECT_EQ(read(".", DateOrder::kDayMonthYear, "3.5.2005"), "2005-05-03 00:00:00");
    EXPECT_EQ(read("-", DateOrder::kYearMonthDay, "2005-03-05"), "2005-03-05 00:00:00");
    EXPECT_EQ(read(". ", DateOrder::kYearMonthDay, "2005. 03. 05"), "2005-03-05 00:00:00");
    EXPECT_EQ(read("/", DateOrder::kMonthDayYear, "3.5.2005"), "none");
    EXPECT_EQ(read("/", DateOrder::kMonthDayYear, "25/3/2005"), "none");
}

TEST_F(DateReaderTest, years_of_two_digits_are_in_the_window) {
    EXPECT_EQ(read("1/2/00"), "2000-01-02 00:00:00");
    EXPECT_EQ(read("1/2/29"), "2029-01-02 00:00:00");
    EXPECT_EQ(read("1/2/30"), "1930-01-02 00:00:00");
    EXPECT_EQ(read("1/2/99"), "1999-01-02 00:00:00");
    EXPECT_EQ(read("1/2/5"), "2005-01-02 00:00:00");
    EXPECT_EQ(read("1/2/100"), "100-01-02 00:00:00");
    EXPECT_EQ(read("1/2/005"), "none");
}

TEST_F(DateReaderTest, blanks_around_numbers_are_no_matter) {
    EXPECT_EQ(read(" 3 / 5 / 2005 "), "2005-03-05 00:00:00");
}

TEST_F(DateReaderTest, days_that_do_not_exist_are_none) {
    EXPECT_EQ(read("2/29/2004"), "2004-02-29 00:00:00");
    EXPECT_EQ(read("2/29/2005"), "none");
    EXPECT_EQ(read("4/31/2005"), "none");
    EXPECT_EQ(read("0/1/2005"), "none");
    EXPECT_EQ(read("13/1/2005"), "none");
    EXPECT_EQ(read("1/0/2005"), "none");
}

TEST_F(DateReaderTest, anything_but_three_numbers_is_none) {
    for (const char* const text :
         {"", " ", "/", "//", "3/5", "3/5/", "/3/5", "3/5/2005/1", "3/5/2005 12:00", "-3/5/2005", "+3/5/2005",
          "3,5,2005", "three/5/2005", "3/5/20055", "99999999999/5/2005"}) {
        EXPECT_EQ(read(text), "none") << text;
    }
}

std::string hours(const char* text) { return std::string(db::hours_of(text).Format()); }

TEST(Duration, of_hours_and_minutes_is_in_hours) {
    EXPECT_EQ(hours("2:30"), "2.5");
    EXPECT_EQ(hours("0:20"), "0.3333");
    EXPECT_EQ(hours("0:40"), "0.6667");
    EXPECT_EQ(hours("12:00"), "12");
    EXPECT_EQ(hours(" 1:15 "), "1.25");
}

TEST(Duration, of_a_number_is_hours) {
    EXPECT_EQ(hours("3"), "3");
    EXPECT_EQ(hours("1.5"), "1.5");
    EXPECT_EQ(hours(".25"), "0.25");
    EXPECT_EQ(hours("0.33335"), "0.3334");
    EXPECT_EQ(hours("-1.25"), "-1.25");
}

TEST(Duration, of_anything_else_is_0) {
    for (const char* const text : {"", " ", "long", "1:60", "2:75", "2:5", "2:005", ":30", "2:", "-1:30", "1:30:00",
                                   "1,5", "2h", "nan", "inf", "1e300", "99999999999:00", "1 2"}) {
        EXPECT_EQ(hours(text), "0") << text;
    }
}

}  // namespace
