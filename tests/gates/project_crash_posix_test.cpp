// The host is a copy of this process.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <map>
#include <random>

#include "tests/gates/project_crash.h"
#include "tests/support/figures.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace testing_support;

constexpr int kKills = 200;

TEST(GateCrash, killed_host_loses_no_call_that_had_returned) {
    TempFolder folder;
    std::map<std::int32_t, std::int32_t> projects = read_projects(folder.path());
    ASSERT_TRUE(projects.empty());
    std::mt19937 random(4711);
    std::size_t calls = 0;
    for (unsigned kill_no = 1; kill_no <= kKills; ++kill_no) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            close(ends[0]);
            _exit(work(folder.path(), kill_no, projects, [&](const Told& told) {
                if (write(ends[1], &told, sizeof told) != sizeof told) _exit(3);
            }));
        }
        close(ends[1]);
        // The first word says that the studio is open; from then on anything may be cut off.
        Told told{};
        ASSERT_EQ(read(ends[0], &told, sizeof told), static_cast<ssize_t>(sizeof told)) << "the child did not begin";
        usleep(static_cast<useconds_t>(random() % 12000));
        kill(child, SIGKILL);
        count_tried(Figure::kKills);
        std::map<std::int32_t, std::int32_t> told_projects = projects;
        Told cut_off = told;
        while (read(ends[0], &told, sizeof told) == static_cast<ssize_t>(sizeof told)) {
            take_in(told_projects, told);
            if (told.kind == Told::kBegun) cut_off = told;
            calls += told.kind != Told::kBegun;
        }
        close(ends[0]);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the child ended by itself with " << WEXITSTATUS(status);

        projects = projects_after_kill(folder.path(), told_projects, cut_off);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "after kill " << kill_no;
    }
    EXPECT_GT(calls, 1000u);
    expect_sound(folder.path(), "kvinvdb.mdb");
}

}  // namespace
