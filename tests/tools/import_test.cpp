// import: a CSV file through the gates, all of it or nothing.
#include <fstream>

#include "jet/tables/database.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class Import : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    Outcome take(const std::string& table, const std::string& text, const std::string& more = "") {
        std::ofstream(scratch_.file("in.csv"), std::ios::binary) << text;
        return run("import " + in_quotes(studio_) + " " + table + " " + in_quotes(scratch_.file("in.csv")) + " " +
                   more);
    }
    std::string rows(const std::string& table, const std::string& more = "") {
        return run("list " + in_quotes(studio_) + " " + table + " --csv " + more).out;
    }
};

constexpr const char* kMixed =
    "name,Type,ProjCreateDate,DiscountVal\r\n"
    "First,Album,2026-03-04,1.5\r\n"
    "\"Second, \"\"bad\"\"\",Demo,2026-13-04,2\r\n"
    "Third,\"two\r\nlines\",,\r\n"
    "Fourth,Demo,2026-01-01\r\n";

TEST_F(Import, refused_line_keeps_all_of_them_out) {
    const std::string before = rows("Projects");
    const Outcome outcome = take("Projects", kMixed);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out,
              "line 3: ProjCreateDate takes a date as YYYY-MM-DD from 1970 to 2038, not '2026-13-04'\n"
              "line 6: it has 3 fields, the first line has 4\n");
    EXPECT_NE(outcome.errors.find("2 of 4 lines are refused, so nothing was added to Projects"), std::string::npos)
        << outcome.errors;
    EXPECT_EQ(rows("Projects"), before);
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Import, partly_keeps_the_lines_that_are_accepted) {
    const Outcome outcome = take("Projects", kMixed, "--partly");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("2 of 4 lines added to Projects\n"), std::string::npos) << outcome.out;
    EXPECT_EQ(rows("Projects", "--where 'ProjID>4' --columns ProjID,Name,Type,ProjCreateDate,DiscountVal"),
              "ProjID,Name,Type,ProjCreateDate,DiscountVal\r\n5,First,Album,2026-03-04,1.5\r\n"
              "6,Third,\"two\r\nlines\",,0\r\n");
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
}

TEST_F(Import, dry_run_tells_and_keeps_nothing) {
    const std::string before = rows("Projects");
    const Outcome some = take("Projects", kMixed, "--dry-run");
    EXPECT_EQ(some.code, 1);
    EXPECT_NE(some.out.find("2 of 4 lines would be added to Projects; nothing was changed"), std::string::npos);
    const Outcome all = take("Projects", "Name\nOne\nTwo\n", "--dry-run");
    EXPECT_EQ(all.code, 0) << all.errors;
    EXPECT_EQ(all.out, "2 of 2 lines would be added to Projects; nothing was changed\n");
    EXPECT_EQ(rows("Projects"), before);
}

TEST_F(Import, what_list_prints_can_be_taken_in_again) {
    for (const std::string table : {"Projects", "Bookings", "Clients", "Gear", "InvoiceParams", "Def_EquipActs"}) {
        SCOPED_TRACE(table);
        const std::string before = rows(table);
        const Outcome outcome = take(table, before);
        EXPECT_EQ(outcome.code, 0) << outcome.errors << outcome.out;
        const std::string after = rows(table);
        EXPECT_EQ(after.substr(0, before.size()), before);
        if (table == "Bookings") {
            EXPECT_EQ(rows(table, "--where RecID=3 --columns DateStart"), "DateStart\r\n2026-03-12T10:00:00\r\n");
        }
    }
}

TEST_F(Import, files_of_spreadsheets_are_understood) {
    EXPECT_EQ(take("Projects", "\xEF\xBB\xBFName;Type\r\n\"a;b\";Demo\r\n\r\nc;Album").code, 0);
    EXPECT_EQ(rows("Projects", "--where 'ProjID>4' --columns Name,Type"), "Name,Type\r\na;b,Demo\r\nc,Album\r\n");
}

// More than an import keeps in one transaction.
constexpr int kManyLines = 12000;

std::string many_lines(const char* member) {
    std::string text = std::string(member) + "\n";
    for (int i = 0; i < kManyLines; ++i) text += "number " + std::to_string(i) + std::string(90, 'n') + "\n";
    return text;
}

TEST_F(Import, many_lines_are_all_added_or_none) {
    const std::string before = both_files();
    const Outcome refused = take("Projects", many_lines("Name") + std::string(300, 'x') + "\n");
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.errors.find("1 of 12001 lines is refused, so nothing was added"), std::string::npos)
        << refused.errors;
    EXPECT_TRUE(both_files() == before);
    EXPECT_EQ(take("Projects", many_lines("Name"), "--dry-run").code, 0);
    EXPECT_TRUE(both_files() == before);
    expect_failure(take("Projects", many_lines("Name") + "\"x\n"), 2, "never closed");
    EXPECT_TRUE(both_files() == before);
    const Outcome partly = take("Projects", many_lines("Name") + std::string(300, 'x') + "\n", "--partly");
    EXPECT_EQ(partly.code, 1);
    EXPECT_NE(partly.out.find("12000 of 12001 lines added"), std::string::npos) << partly.out;
    const std::string invoices = contents(file("kvinvdb.mdb"));
    EXPECT_EQ(take("Projects", many_lines("Name")).code, 0);
    EXPECT_TRUE(contents(file("kvinvdb.mdb")) == invoices);
    const std::string names_now = rows("Projects", "--columns Name");
    EXPECT_EQ(std::count(names_now.begin(), names_now.end(), '\n'), 1 + 3 + 2 * kManyLines);
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Import, many_lines_go_into_the_file_of_their_table) {
    const std::string studio = contents(file("sldb.mdb"));
    const Outcome outcome = take("Invoices", many_lines("ClientName"));
    ASSERT_EQ(outcome.code, 0) << outcome.errors << outcome.out;
    EXPECT_TRUE(contents(file("sldb.mdb")) == studio);
    const std::string added = rows("Invoices", "--columns ClientName --where ClientName~number");
    EXPECT_EQ(std::count(added.begin(), added.end(), '\n'), 1 + kManyLines);
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
}

TEST_F(Import, many_lines_wait_for_no_studio_that_is_open_elsewhere) {
    jet::OpenOptions options;
    options.ignore_password = true;
    const auto held = jet::Database::open(file("kvinvdb.mdb"), options);
    expect_failure(take("Projects", many_lines("Name")), 1, "is in use");
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Import, column_that_fits_no_member_is_a_usage_error) {
    const std::string before = both_files();
    expect_failure(take("Projects", "Nam,Type\nx,y\n"), 2, "did you mean Name?");
    expect_failure(take("Projects", "Colour\nx\n"), 2, "no member of Projects; it has Name");
    expect_failure(take("Projects", "Name,name\nx,y\n"), 2, "names Name twice");
    expect_failure(take("Projects", ""), 2, "no line of column names");
    expect_failure(take("Nothing", "Name\nx\n"), 2, "no records in a table 'Nothing'");
    expect_failure(run("import " + in_quotes(studio_) + " Projects " + in_quotes(scratch_.file("none.csv"))), 1,
                   "none.csv cannot be read");
    expect_failure(run("import " + in_quotes(studio_) + " Projects " + in_quotes(studio_)), 1, "is a folder");
    expect_failure(take("Projects", "Name\n\"x\n"), 2, "never closed");
    EXPECT_EQ(both_files(), before);
}

}  // namespace
