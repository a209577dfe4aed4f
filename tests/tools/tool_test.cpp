// The command-line tool as a user meets it: what it prints, where, and its exit codes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_folder.h"

namespace {

using testing_support::TempFolder;

struct Outcome {
    int code = -1;
    std::string out;
    std::string errors;
};

std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string in_quotes(const std::string& text) { return "'" + text + "'"; }

class Tool : public ::testing::Test {
protected:
    Outcome run(const std::string& arguments) {
        const std::string command = "LC_ALL=C.UTF-8 " + in_quotes(KVDB_TOOL) + " " + arguments + " >" +
                                    in_quotes(scratch_.file("out")) + " 2>" + in_quotes(scratch_.file("err"));
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(scratch_.file("out")),
                contents(scratch_.file("err"))};
    }
    Outcome demo() { return run("demo " + in_quotes(studio_)); }
    std::string main_file() const { return in_quotes(studio_ + "/sldb.mdb"); }

    TempFolder scratch_;
    std::string studio_ = scratch_.file("a studio");  // a blank in the name, as users have them
};

void expect_failure(const Outcome& outcome, int code, const std::string& text) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_NE(outcome.errors.find(text), std::string::npos) << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
}

TEST_F(Tool, demo_makes_a_studio_and_shows_what_it_did) {
    const Outcome outcome = demo();
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("Grüße aus Köln"), std::string::npos);
    EXPECT_NE(outcome.out.find("34 tables, structural check: sound"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(studio_ + "/sldb.mdb"));
    EXPECT_TRUE(std::filesystem::exists(studio_ + "/kvinvdb.mdb"));
}

TEST_F(Tool, demo_refuses_a_folder_that_holds_a_studio) {
    demo();
    const std::string before = contents(studio_ + "/sldb.mdb");
    expect_failure(demo(), 1, "already");
    EXPECT_EQ(contents(studio_ + "/sldb.mdb"), before);
}

TEST_F(Tool, info_tells_version_and_rows) {
    demo();
    const Outcome outcome = run("info " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("schema version 210000"), std::string::npos);
    EXPECT_NE(outcome.out.find("Projects                        3 rows"), std::string::npos) << outcome.out;
}

TEST_F(Tool, info_on_a_folder_without_studio_fails_and_makes_nothing) {
    std::filesystem::create_directory(studio_);
    expect_failure(run("info " + in_quotes(studio_)), 1, "no studio");
    EXPECT_TRUE(std::filesystem::is_empty(studio_));
    expect_failure(run("info " + in_quotes(studio_ + "/nowhere")), 1, "no folder");
}

TEST_F(Tool, projects_filters_and_prints_json) {
    demo();
    const Outcome all = run("projects " + in_quotes(studio_));
    EXPECT_NE(all.out.find("3 projects"), std::string::npos) << all.out;
    const Outcome one = run("projects " + in_quotes(studio_) + " --client 9 --type Album --json");
    EXPECT_EQ(one.code, 0);
    EXPECT_NE(one.out.find("\"Name\": \"Grüße aus Köln\""), std::string::npos) << one.out;
    EXPECT_EQ(one.out.find("Night Trains"), std::string::npos);
    const Outcome none = run("projects " + in_quotes(studio_) + " --client 12345");
    EXPECT_EQ(none.code, 0);
    EXPECT_NE(none.out.find("0 projects"), std::string::npos);
}

TEST_F(Tool, engine_commands_read_a_file_and_ask_for_its_password) {
    demo();
    expect_failure(run("tables " + main_file()), 1, "password");
    expect_failure(run("rows " + main_file() + " Projects --password wrong"), 1, "password");
    expect_failure(run("check " + in_quotes(studio_ + "/nothing.mdb")), 1, "nothing.mdb");
}

TEST_F(Tool, engine_commands_show_tables_columns_and_rows) {
    std::ifstream sample(KVDB_SAMPLES "/testV2000.mdb");
    if (!sample) GTEST_SKIP() << "no sample files beside the project";
    const std::string file = in_quotes(KVDB_SAMPLES "/testV2000.mdb");
    EXPECT_EQ(run("tables " + file).out, "Table1\nTable2\nTable3\nTable4\n");
    EXPECT_NE(run("schema " + file + " Table4").out.find("guid"), std::string::npos);
    const Outcome rows = run("rows " + file + " Table1 --csv");
    EXPECT_EQ(rows.code, 0) << rows.errors;
    EXPECT_NE(rows.out.find("abcdefg,hijklmnop"), std::string::npos) << rows.out;
    EXPECT_NE(run("rows " + file + " Table1 --json").out.find("\"abcdefg\""), std::string::npos);
    expect_failure(run("rows " + file + " Nothing"), 1, "Nothing");
}

TEST_F(Tool, foreign_and_old_files_give_one_clear_line) {
    std::ofstream(scratch_.file("text.mdb")) << "this is no database";
    expect_failure(run("tables " + in_quotes(scratch_.file("text.mdb"))), 1, "not a Jet database");
    std::ifstream sample(KVDB_SAMPLES "/testV1997.mdb");
    if (!sample) GTEST_SKIP() << "no sample files beside the project";
    expect_failure(run("tables " + in_quotes(KVDB_SAMPLES "/testV1997.mdb")), 1, "Jet 3");
}

TEST_F(Tool, help_is_everywhere_and_succeeds) {
    EXPECT_EQ(run("--help").code, 0);
    for (const std::string command : {"demo", "info", "projects", "tables", "schema", "rows", "check"}) {
        const Outcome outcome = run(command + " --help");
        EXPECT_EQ(outcome.code, 0) << command;
        EXPECT_NE(outcome.out.find("kvdb " + command), std::string::npos);
        EXPECT_NE(run("--help").out.find("kvdb " + command), std::string::npos);
    }
}

TEST_F(Tool, what_is_not_understood_is_a_usage_error) {
    expect_failure(run(""), 2, "--help");
    expect_failure(run("dance"), 2, "dance");
    expect_failure(run("info"), 2, "usage: kvdb info");
    expect_failure(run("projects x --client many"), 2, "--client");
    expect_failure(run("projects x --colour red"), 2, "--colour");
    expect_failure(run("rows a b --json --csv"), 2, "--csv");
}

}  // namespace
