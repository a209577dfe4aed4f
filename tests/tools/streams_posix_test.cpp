// Standard streams that are closed, full or read by nobody: a command says that its output is lost, and no file of the
// studio ever gets a standard stream's descriptor.
#include <unistd.h>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class Streams : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    // Every command that prints, with its arguments.
    std::vector<std::string> printing_commands() const {
        const std::string folder = in_quotes(studio_);
        const std::string password = " --password KvStudio2005sl";
        return {"--help",
                "help",
                "list --help",
                "info " + folder,
                "upgrade " + folder,
                "projects " + folder,
                "projects " + folder + " --json",
                "list " + folder + " Projects",
                "list " + folder + " Projects --csv",
                "list " + folder + " Def_ProjTypes --json",
                "show " + folder + " Projects 1",
                "show " + folder + " Projects 1 --json",
                "list " + folder + " Projects --where ProjID=1 --columns Name",
                "search " + folder + " Aurora",
                "search " + folder + " Aurora --json",
                "sql " + folder + " 'SELECT * FROM Projects'",
                "help list",
                "--version",
                "add " + folder + " Projects Name=x",
                "tables " + main_file() + password,
                "schema " + main_file() + password,
                "rows " + main_file() + " Projects" + password,
                "check " + main_file() + password,
                "demo " + in_quotes(scratch_.file("another"))};
    }
};

TEST_F(Streams, output_that_cannot_be_written_fails_every_command) {
    for (const std::string& command : printing_commands()) {
        SCOPED_TRACE(command);
        expect_failure(run_with(command, ">/dev/full"), 1, "the output is not complete: No space left on device");
        std::filesystem::remove_all(scratch_.file("another"));
    }
}

TEST_F(Streams, closed_output_fails_every_command_that_prints) {
    const std::string before = both_files();
    for (const std::string& command : printing_commands()) {
        if (command.starts_with("add")) continue;
        SCOPED_TRACE(command);
        expect_failure(run_with(command, ">&-"), 1, "standard output is closed");
        std::filesystem::remove_all(scratch_.file("another"));
    }
    EXPECT_EQ(both_files(), before);
}

TEST_F(Streams, closed_streams_leave_the_studio_whole) {
    const std::string folder = in_quotes(studio_);
    for (const std::string closed : {">&-", ">&- 2>&-", "<&- >&- 2>&-", "<&-", "2>&-"}) {
        SCOPED_TRACE(closed);
        const std::string before = both_files();
        const bool prints = closed.find(" >&-") != std::string::npos || closed.starts_with(">&-");
        EXPECT_EQ(run_with("show " + folder + " Projects 1", ">/dev/null " + closed).code, prints ? 1 : 0);
        EXPECT_EQ(both_files(), before);
        EXPECT_EQ(run_with("set " + folder + " Projects 1 " + in_quotes("Name=Closed " + closed), closed).code, 0);
        EXPECT_NE(run("show " + folder + " Projects 1").out.find("Name: Closed " + closed + "\n"), std::string::npos);
    }
    EXPECT_NE(run("check " + main_file() + " --password KvStudio2005sl").out.find(": sound\n"), std::string::npos);
}

TEST_F(Streams, change_whose_output_is_lost_is_made) {
    expect_failure(run_with("add " + in_quotes(studio_) + " Projects Name=Kept", ">/dev/full"), 1, "not complete");
    EXPECT_NE(run("list " + in_quotes(studio_) + " Projects").out.find("Kept"), std::string::npos);
}

TEST_F(Streams, reader_that_has_gone_ends_a_command_quietly_after_its_work) {
    // A pipe whose only reader has gone before the command begins.
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(dup2(ends[1], 9), 9);
    close(ends[0]);
    close(ends[1]);
    const Outcome added = run_with("add " + in_quotes(studio_) + " Projects Name=Piped", ">&9");
    EXPECT_EQ(added.code, 1);
    EXPECT_TRUE(added.errors.empty()) << added.errors;
    const Outcome listed = run_with("list " + in_quotes(studio_) + " Projects", ">&9");
    EXPECT_EQ(listed.code, 1);
    EXPECT_TRUE(listed.errors.empty()) << listed.errors;
    close(9);
    EXPECT_NE(run("list " + in_quotes(studio_) + " Projects").out.find("Piped"), std::string::npos);
}

TEST_F(Streams, limit_of_the_file_size_is_an_error_and_no_end) {
    const std::string command = "ulimit -f 0; " + in_quotes(KVDB_TOOL) + " list " + in_quotes(studio_) + " Projects >" +
                                in_quotes(scratch_.file("out")) + " 2>/dev/null";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
