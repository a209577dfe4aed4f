// import that is cut off: all of it is there, or nothing.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class InterruptedImport : public Tool {};

TEST_F(InterruptedImport, adds_everything_or_nothing) {
    ASSERT_EQ(demo().code, 0);
    constexpr int kLines = 50000;
    {
        std::ofstream csv(scratch_.file("many.csv"), std::ios::binary);
        csv << "Name,Notes\n";
        for (int i = 0; i < kLines; ++i) csv << "Project " << i << "," << std::string(60, 'n') << "\n";
    }
    for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
        SCOPED_TRACE(signal);
        const std::string before = run("list " + in_quotes(studio_) + " Projects --csv").out;
        const pid_t child = ::fork();
        if (child == 0) {
            std::fclose(stderr);
            ::execl(KVDB_TOOL, "kvdb", "import", studio_.c_str(), "Projects", scratch_.file("many.csv").c_str(),
                    nullptr);
            std::_Exit(127);
        }
        // Long enough to be among the lines, and no harm where it is not.
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        ::kill(child, signal);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        const Outcome after = run("list " + in_quotes(studio_) + " Projects --csv");
        ASSERT_EQ(after.code, 0) << after.errors;
        const auto added =
            std::count(after.out.begin(), after.out.end(), '\n') - std::count(before.begin(), before.end(), '\n');
        EXPECT_TRUE(added == 0 || added == kLines) << added;
        if (WIFEXITED(status) && WEXITSTATUS(status) == 1) {
            EXPECT_EQ(added, 0);
        }
        EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
    }
}

}  // namespace
