// Dates that were read before: what is remembered, and when it is forgotten.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <thread>

#include "afx/field_exchange.h"
#include "tests/support/time_zone.h"

namespace {

int conversions = 0;

// Noon, so that no zone leads to another day.
CTime converted(DATE days) {
    ++conversions;
    const auto day = static_cast<int>(days);
    return CTime(2001, 1, day, 12, 0, 0);
}

CTime another(DATE) { return CTime(LONG{7}); }

class KnownTimesTest : public testing::Test {
protected:
    KnownTimesTest() { conversions = 0; }
    // Reads ten dates, twice each; gives how many were converted.
    int read() {
        const int before = conversions;
        times_.begin_reading();
        for (int round = 0; round < 2; ++round) {
            for (int day = 1; day <= 10; ++day) EXPECT_EQ(times_.of(day, converted), expected(day));
        }
        return conversions - before;
    }
    static CTime expected(int day) { return CTime(2001, 1, day, 12, 0, 0); }

    // The next moments are of one second.
    static void begin_second() {
        const std::time_t now = std::time(nullptr);
        while (std::time(nullptr) == now) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    testing_support::TimeZone zone_{"UTC0"};
    afx::KnownTimes times_;
};

TEST_F(KnownTimesTest, dates_are_converted_once_also_for_the_next_reading) {
    begin_second();
    EXPECT_LT(read(), 20);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(times_.of(1, another), CTime(LONG{7})) << "each way of converting has its own";
}

TEST_F(KnownTimesTest, another_zone_holds_from_the_next_reading_on) {
    read();
    const CTime before = times_.of(1, converted);
    testing_support::TimeZone::set("XYZ-5");
    EXPECT_GT(read(), 0);
    EXPECT_EQ(times_.of(1, converted).GetTime(), before.GetTime() - 5 * 3600);
    testing_support::TimeZone::set("UTC0");
    EXPECT_GT(read(), 0);
    EXPECT_EQ(times_.of(1, converted), before);
}

TEST_F(KnownTimesTest, a_new_second_forgets_everything) {
    read();
    begin_second();
    EXPECT_GT(read(), 0);
}

}  // namespace
