// A standard output that takes nothing, on Windows.
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

TEST_F(Tool, output_that_cannot_be_written_fails_a_command_whose_work_is_done) {
    ASSERT_EQ(demo().code, 0);
    constexpr bool kTakesNothing = true;
    expect_failure(run("list " + in_quotes(studio_) + " Projects", kTakesNothing), 1, "the output is not complete");
    expect_failure(run("add " + in_quotes(studio_) + " Projects Name=Kept", kTakesNothing), 1, "not complete");
    EXPECT_NE(run("list " + in_quotes(studio_) + " Projects").out.find("Kept"), std::string::npos);
}

}  // namespace
