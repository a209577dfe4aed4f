// Dates between #.
#include <gtest/gtest.h>

#include "jet/sql/date_literal.h"

namespace {

double serial(std::u16string_view text) {
    const auto date = jet::sql::parse_date_literal(text);
    if (!date) throw std::invalid_argument("no date");
    return date->days;
}

bool is_valid_date(std::u16string_view text) { return jet::sql::parse_date_literal(text).has_value(); }

TEST(DateLiteral, order_is_month_day_year) {
    EXPECT_EQ(38412, serial(u"03/01/2005"));
    EXPECT_EQ(38352, serial(u"12/31/2004"));
    EXPECT_EQ(25569, serial(u"1/1/1970"));
    EXPECT_EQ(0, serial(u"12/30/1899"));
    EXPECT_EQ(-1, serial(u"12/29/1899"));
    EXPECT_EQ(2958465, serial(u"12/31/9999"));
    EXPECT_EQ(-657434, serial(u"1/1/100"));
}

TEST(DateLiteral, separators_are_equal_and_may_have_blanks) {
    for (const auto* text : {u"3-1-2005", u"3.1.2005", u"3. 1. 2005", u" 03 / 01 / 2005 ", u"03/01/2005"}) {
        EXPECT_EQ(38412, serial(text));
    }
}

// Whatever the system's date separator is, as hosts put it between the numbers.
TEST(DateLiteral, every_separator_of_a_system_is_taken) {
    const std::u16string separators[] = {u". ",
                                         u", ",
                                         u" ",
                                         u"  ",
                                         u",",
                                         u"a",
                                         u"de",
                                         u"\u5E74",
                                         u"\u200F/",
                                         u"\u200E-",
                                         u"\u060C\u00A0",
                                         u"\u00A0",
                                         u":",
                                         u"'",
                                         u"\"",
                                         u"]",
                                         u"[",
                                         u"+",
                                         u"#",
                                         u"\uFFFD",
                                         u"\t",
                                         u" - ",
                                         u"//",
                                         std::u16string(99, u'x')};
    for (const std::u16string& separator : separators) {
        const std::u16string text = u"03" + separator + u"01" + separator + u"2005";
        EXPECT_EQ(38412, serial(text)) << jet::to_utf8(text);
    }
}

TEST(DateLiteral, impossible_month_is_exchanged_with_the_day) {
    EXPECT_EQ(serial(u"12/25/2005"), serial(u"25/12/2005"));
    EXPECT_FALSE(is_valid_date(u"25/13/2005"));
    EXPECT_EQ(serial(u"2/3/2005"), serial(u"02/03/2005"));
}

TEST(DateLiteral, year_may_come_first) {
    EXPECT_EQ(38412, serial(u"2005-03-01"));
    EXPECT_EQ(38412, serial(u"2005/3/1"));
    EXPECT_EQ(serial(u"2005-12-25"), serial(u"2005-25-12"));
}

TEST(DateLiteral, short_years_are_within_1930_and_2029) {
    EXPECT_EQ(serial(u"1/1/2000"), serial(u"1/1/00"));
    EXPECT_EQ(serial(u"1/1/2029"), serial(u"1/1/29"));
    EXPECT_EQ(serial(u"1/1/1930"), serial(u"1/1/30"));
    EXPECT_EQ(serial(u"1/1/1999"), serial(u"1/1/99"));
    EXPECT_EQ(serial(u"1/1/2005"), serial(u"1/1/5"));
    EXPECT_FALSE(is_valid_date(u"1/1/005"));
}

TEST(DateLiteral, days_that_do_not_exist_are_refused) {
    EXPECT_FALSE(is_valid_date(u"2/30/2005"));
    EXPECT_FALSE(is_valid_date(u"2/29/2005"));
    EXPECT_TRUE(is_valid_date(u"2/29/2004"));
    EXPECT_FALSE(is_valid_date(u"2/29/1900"));
    EXPECT_FALSE(is_valid_date(u"0/1/2005"));
    EXPECT_FALSE(is_valid_date(u"1/0/2005"));
    EXPECT_FALSE(is_valid_date(u"1/1/10000"));
    EXPECT_FALSE(is_valid_date(u"1/1/99999999999"));
    EXPECT_FALSE(is_valid_date(u"02/29/01"));
}

TEST(DateLiteral, other_texts_are_refused) {
    for (const auto* text : {u"", u" ", u"3/1", u"3/1/2005/7", u"3/1-2005", u"x", u"3/1/2005x", u"/3/1/2005",
                             u"3//1/2005", u"-3/1/2005", u"1 Mar 2005", u"03012005", u"3 1/2005"}) {
        EXPECT_FALSE(is_valid_date(text));
    }
}

TEST(DaySerial, every_day_follows_the_one_before) {
    double last = *jet::sql::day_serial(1899, 12, 31);
    EXPECT_EQ(1, last);
    for (int year = 1900; year < 2101; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= 31; ++day) {
                const auto serial_of_day = jet::sql::day_serial(year, month, day);
                if (!serial_of_day) continue;
                ASSERT_EQ(last + 1, *serial_of_day);
                last = *serial_of_day;
            }
        }
    }
}

}  // namespace
