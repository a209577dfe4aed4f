// Nothing is printed by a component that these tests load, whatever they do to it.
#include "tests/support/silence.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

const bool is_silent = testing_support::expect_silence();

// What the other tests rest on.
TEST(FrameSilence, printing_is_noticed_on_both_streams) {
    if (!is_silent || !testing_support::is_capturing()) GTEST_SKIP() << "nothing is captured in sanitized builds";
    EXPECT_EQ(testing_support::take_printed(), "");
    std::fputs("to the one", stdout);
    std::fputs(" and the other", stderr);
    const std::string printed = testing_support::take_printed();
    EXPECT_NE(printed.find("to the one"), std::string::npos);
    EXPECT_NE(printed.find("and the other"), std::string::npos);
    EXPECT_EQ(testing_support::take_printed(), "");
}

}  // namespace
