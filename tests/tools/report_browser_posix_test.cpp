// The page of a report in a browser without a window: what it shows, what can be done with it, and how fast.
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>

#include "tests/tools/report_studio.h"
#include "tests/tools/rich_file.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class ReportInterop : public Tool {
protected:
    void look_at(const std::string& study, const std::string& source) {
        if (std::system("command -v node >/dev/null 2>&1") != 0) GTEST_SKIP() << "no node";
        const std::string page = scratch_.file("page.html");
        const Outcome report = run("report " + in_quotes(source) + " -o " + in_quotes(page));
        ASSERT_EQ(report.code, 0) << report.errors;
        const std::string rows = scratch_.file("rows.json");
        ASSERT_EQ(run_with("tables " + in_quotes(source) + " --json", ">" + in_quotes(rows)).code, 0);
        const std::string said = scratch_.file("said");
        const std::string command = "node " + in_quotes(KVDB_TEST_SCRIPTS "/check_report.mjs") + " " + study + " " +
                                    in_quotes(page) + " " + in_quotes(rows) + " >" + in_quotes(said) + " 2>&1";
        const int status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "no browser";
        EXPECT_EQ(WEXITSTATUS(status), 0) << contents(said);
        EXPECT_NE(contents(said).find(study + ": 0 wrong"), std::string::npos) << contents(said);
        if (study == "volume") std::printf("%s", contents(said).c_str());
    }
};

TEST_F(ReportInterop, studio_is_shown_sorted_searched_and_read_aloud) {
    ASSERT_EQ(demo().code, 0);
    look_at("studio", studio_);
}

TEST_F(ReportInterop, hostile_texts_are_shown_as_texts) {
    ASSERT_EQ(demo().code, 0);
    ASSERT_EQ(std::filesystem::exists(file("sldb.mdb")), true);
    add_hostile_rows(file("sldb.mdb"));
    look_at("hostile", studio_);
}

TEST_F(ReportInterop, file_that_is_no_studios_is_shown) {
    make_rich_file(scratch_.file("rich.mdb"));
    look_at("plain", scratch_.file("rich.mdb"));
}

TEST_F(ReportInterop, hundred_thousand_rows_stay_fluid) {
    ASSERT_EQ(demo().code, 0);
    add_many_rows(file("sldb.mdb"));
    look_at("volume", studio_);
}

}  // namespace
