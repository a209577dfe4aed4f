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

class InterruptedImport : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    void write_lines(int lines) const {
        std::ofstream csv(scratch_.file("many.csv"), std::ios::binary);
        csv << "Name,Notes\n";
        for (int i = 0; i < lines; ++i) csv << "Project " << i << "," << std::string(60, 'n') << "\n";
    }
    std::string import_words() const { return "import " + in_quotes(studio_) + " Projects "; }
    std::string projects() { return run("list " + in_quotes(studio_) + " Projects --csv").out; }

    // Sends the signal in the midst of the lines; the command's status.
    int interrupt(int signal) {
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
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return status;
    }
};

// A few lines are one transaction, more of them go into copies of the files.
TEST_F(InterruptedImport, adds_everything_or_nothing) {
    for (const int lines : {12000, 50000}) {
        write_lines(lines);
        for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
            SCOPED_TRACE(std::to_string(lines) + " lines, signal " + std::to_string(signal));
            const std::string before = projects();
            const int status = interrupt(signal);
            const std::string after = projects();
            const auto added =
                std::count(after.begin(), after.end(), '\n') - std::count(before.begin(), before.end(), '\n');
            EXPECT_TRUE(added == 0 || added == lines) << added;
            if (WIFEXITED(status) && WEXITSTATUS(status) == 1) {
                EXPECT_EQ(added, 0);
                EXPECT_EQ(names(), kBothFiles);
            }
            EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
        }
    }
}

TEST_F(InterruptedImport, what_a_killed_one_has_left_goes_with_the_next) {
    write_lines(50000);
    for (int i = 0; i < 20 && names() == kBothFiles; ++i) interrupt(SIGKILL);
    EXPECT_NE(names(), kBothFiles) << "none was killed among its lines";
    ASSERT_EQ(run(import_words() + in_quotes(scratch_.file("many.csv"))).code, 0);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(InterruptedImport, pipe_is_read_as_a_file_is) {
    for (const int lines : {3, 30000}) {
        write_lines(lines);
        const Outcome outcome = run_with(import_words() + "/dev/stdin", ">" + in_quotes(scratch_.file("out")) + " <" +
                                                                            in_quotes(scratch_.file("many.csv")));
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        const int piped = std::system(("cat " + in_quotes(scratch_.file("many.csv")) + " | " + in_quotes(KVDB_TOOL) +
                                       " " + import_words() + "/dev/stdin >" + in_quotes(scratch_.file("out")))
                                          .c_str());
        EXPECT_EQ(piped, 0);
        EXPECT_EQ(contents(scratch_.file("out")),
                  std::to_string(lines) + " of " + std::to_string(lines) + " lines added to Projects\n");
    }
}

}  // namespace
