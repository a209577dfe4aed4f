// Dates as the tool shows them, to the millisecond.
#include "tools/value_text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::string shown(double days) { return tools::plain_text(jet::Date{days}); }

TEST(ShownDates, time_of_day_counts_forward_on_either_side_of_day_0) {
    EXPECT_EQ(shown(38416), "2005-03-05");
    EXPECT_EQ(shown(38416.5), "2005-03-05T12:00:00");
    EXPECT_EQ(shown(0.25), "1899-12-30T06:00:00");
    EXPECT_EQ(shown(-1.25), "1899-12-29T06:00:00");
}

// What rounds to the next midnight is that day's, without a time.
TEST(ShownDates, hair_below_midnight_is_the_next_day_and_never_24_hours) {
    EXPECT_EQ(shown(std::nextafter(38417.0, 0.0)), "2005-03-06");
    EXPECT_EQ(shown(38416 + 86399.9996 / 86400), "2005-03-06");
    EXPECT_EQ(shown(38416 + 86399.9994 / 86400), "2005-03-05T23:59:59.999");
    EXPECT_EQ(shown(std::nextafter(1.0, 0.0)), "1899-12-31");
    EXPECT_EQ(shown(-1.9999999999), "1899-12-30");
    EXPECT_EQ(shown(std::nextafter(36526.0, 0.0)), "2000-01-01");
    EXPECT_EQ(shown(std::nextafter(38351.0 + 1, 0.0)), "2004-12-31");
}

}  // namespace
