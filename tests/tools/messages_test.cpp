// What a command says of words that are mistaken, and of files that are not what they seem.
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class Messages : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }
    Outcome on(const std::string& command, const std::string& rest) {
        return run(command + " " + in_quotes(studio_) + " " + rest);
    }
};

TEST_F(Messages, unknown_table_is_not_understood_by_any_command) {
    for (const char* const command : {"list", "rows", "show", "schema"}) {
        SCOPED_TRACE(command);
        expect_failure(on(command, std::string("Projetcs") + (std::string(command) == "show" ? " 1" : "")), 2,
                       "did you mean Projects?");
    }
    expect_failure(on("export", in_quotes(scratch_.file("out.db")) + " --to sqlite --tables Projetcs"), 2,
                   "did you mean Projects?");
    expect_failure(on("sql", "'SELECT * FROM Projetcs'"), 2, "no table Projetcs");
    expect_failure(on("sql", "'select * from [Projetcs] order by Name'"), 2, "Did you mean Projects?");
    expect_failure(on("rows", "Nothing"), 2, "; kvdb tables ");
}

TEST_F(Messages, statement_that_is_empty_is_told_once) {
    const Outcome outcome = on("sql", "''");
    expect_failure(outcome, 2, "The statement is empty.");
    EXPECT_EQ(outcome.errors.find("empty"), outcome.errors.rfind("empty")) << outcome.errors;
}

TEST_F(Messages, option_without_its_value_is_not_passed_over) {
    expect_failure(on("list", "Projects --sort ''"), 2, "--sort names no column");
    expect_failure(on("rows", "Projects --sort ' , '"), 2, "--sort names no column");
    expect_failure(on("list", "Projects --sort -"), 2, "sign without a column");
    expect_failure(on("list", "Projects --limit many"), 2, "--limit takes a whole number, not 'many'");
    expect_failure(on("backup", in_quotes(scratch_.file("b")) + " --keep ten"), 2,
                   "--keep takes a whole number, not 'ten'");
}

TEST_F(Messages, mistyped_member_gets_its_suggestion_and_a_key_its_reason) {
    for (const std::string command : {"add", "set"}) {
        const std::string table = command == "add" ? "Projects " : "Projects 1 ";
        expect_failure(on(command, table + "Nme=x"), 2, "has no member 'Nme' to set; did you mean Name?");
        expect_failure(on(command, table + "projid=9"), 2, "ProjID is the key of Projects, which the studio gives");
    }
}

TEST_F(Messages, salvage_of_nothing_says_so) {
    expect_failure(run("salvage " + in_quotes(scratch_.file("none.mdb")) + " " + in_quotes(scratch_.file("x"))), 1,
                   "there is no file or folder ");
}

TEST_F(Messages, sql_on_a_folder_names_both_files_for_an_unknown_table) {
    const Outcome outcome = on("sql", "'SELECT * FROM Projetcs'");
    EXPECT_NE(outcome.errors.find("sldb.mdb"), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("kvinvdb.mdb"), std::string::npos) << outcome.errors;
}

TEST_F(Messages, diff_with_what_is_not_there_says_so) {
    const std::string nowhere = in_quotes(scratch_.file("nowhere"));
    expect_failure(on("diff", nowhere), 1, "there is no file or folder " + scratch_.file("nowhere"));
    expect_failure(run("diff " + nowhere + " " + in_quotes(studio_)), 1, "there is no file or folder");
    expect_failure(on("diff", main_file()), 2, "two folders or two files");
}

TEST_F(Messages, salvage_of_a_folder_names_its_files_and_the_command) {
    const Outcome outcome = on("salvage", in_quotes(scratch_.file("new.mdb")));
    expect_failure(outcome, 2, "is a folder");
    EXPECT_NE(outcome.errors.find("sldb.mdb"), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("kvinvdb.mdb"), std::string::npos) << outcome.errors;
    EXPECT_FALSE(std::filesystem::exists(scratch_.file("new.mdb")));
}

TEST_F(Messages, restore_without_invoices_says_that_those_of_the_folder_stay) {
    const std::string invoices = contents(file("kvinvdb.mdb"));
    const std::string copy = scratch_.file("copy");
    std::filesystem::create_directory(copy);
    std::filesystem::copy(file("sldb.mdb"), copy + "/sldb.mdb");
    const Outcome beside = run("restore " + in_quotes(copy) + " " + in_quotes(studio_));
    EXPECT_EQ(beside.code, 0) << beside.errors;
    EXPECT_NE(beside.out.find("the copy has no invoices: "), std::string::npos) << beside.out;
    EXPECT_NE(beside.out.find("kvinvdb.mdb stays as it is, "), std::string::npos) << beside.out;
    EXPECT_EQ(contents(file("kvinvdb.mdb")), invoices);
    const Outcome alone = run("restore " + in_quotes(copy) + " " + in_quotes(scratch_.file("empty")));
    EXPECT_EQ(alone.code, 0) << alone.errors;
    EXPECT_NE(alone.out.find("the copy has no invoices, and there is no kvinvdb.mdb in "), std::string::npos)
        << alone.out;
}

#ifndef _WIN32

TEST_F(Messages, link_that_leads_nowhere_is_named_as_one) {
    std::filesystem::remove(file("sldb.mdb"));
    std::filesystem::create_symlink(scratch_.file("gone.mdb"), file("sldb.mdb"));
    const std::string made = in_quotes(scratch_.file("made"));
    const std::string both = in_quotes(studio_) + " ";
    for (const std::string& command : {"info " + both,
                                       "list " + both + "Projects",
                                       "show " + both + "Projects 1",
                                       "rows " + both + "Projects",
                                       "tables " + both,
                                       "tables " + main_file(),
                                       "schema " + both,
                                       "check " + both,
                                       "check " + main_file(),
                                       "search " + both + "x",
                                       "sql " + both + "'SELECT * FROM Projects'",
                                       "export " + both + made + " --to csv",
                                       "diff " + both + both,
                                       "report " + both + "-o " + made,
                                       "backup " + both + made,
                                       "compact " + both,
                                       "upgrade " + both,
                                       "projects " + both,
                                       "add " + both + "Projects Name=x",
                                       "set " + both + "Projects 1 Name=x",
                                       "delete " + both + "Projects 1",
                                       "salvage " + main_file() + " " + made}) {
        SCOPED_TRACE(command);
        expect_failure(
            run(command), 1,
            file("sldb.mdb") + " is a link that leads nowhere: " + scratch_.file("gone.mdb") + " is not there");
    }
    // With the other file gone too it is still the link that is at fault.
    std::filesystem::remove(file("kvinvdb.mdb"));
    expect_failure(on("add", "Projects Name=x"), 1, "is a link that leads nowhere");
    EXPECT_EQ(names(), std::vector<std::string>{"sldb.mdb"});
}

#endif

}  // namespace
