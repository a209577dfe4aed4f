// Nothing is printed by a component that these tests load, whatever they do to it.
#include "tests/support/silence.h"

#include <gtest/gtest.h>

namespace {

const bool is_silent = testing_support::expect_silence();

TEST(GateSilence, printing_is_noticed_on_both_streams) {
    if (!is_silent || !testing_support::is_capturing()) GTEST_SKIP() << "nothing is captured in sanitized builds";
    testing_support::expect_printing_to_be_noticed();
}

}  // namespace
