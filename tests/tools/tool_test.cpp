// The command-line tool as a user meets it: what it prints, where, and its exit codes.
#include <filesystem>

#include "jet/tables/database.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

TEST_F(Tool, demo_makes_a_studio_and_shows_what_it_did) {
    const Outcome outcome = demo();
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    for (const char* text : {"Grüße aus Köln", "Last Departure", "Lindström", "2026-03-12T10:00", "930.56", "R-84"}) {
        EXPECT_NE(outcome.out.find(text), std::string::npos) << text;
    }
    EXPECT_NE(outcome.out.find("34 tables, structural check: sound"), std::string::npos);
    EXPECT_EQ(names(), kBothFiles);  // and nothing else
}

TEST_F(Tool, what_demo_advises_works) {
    const std::string text = demo().out;
    std::size_t tried = 0;
    for (std::size_t at = text.find("\nTry: kvdb "); at != std::string::npos; at = text.find("     kvdb ", at + 1)) {
        const std::size_t begin = text.find("kvdb ", at) + 5;
        std::string advice = text.substr(begin, text.find('\n', begin) - begin);
        std::replace(advice.begin(), advice.end(), '"', '\'');  // as the fixture takes words with blanks
        const Outcome outcome = run(advice);
        EXPECT_EQ(outcome.code, 0) << advice << ": " << outcome.errors;
        EXPECT_NE(outcome.out, "") << advice;
        ++tried;
    }
    EXPECT_EQ(tried, 5U) << text;
}

TEST_F(Tool, message_says_which_file_why_and_what_to_do) {
    demo();
    const std::string folder = in_quotes(studio_);
    expect_failure(run("add " + folder + " Projects Name=" + std::string(300, 'n')), 2,
                   "Name of Projects takes at most 255 characters, not 300");
    expect_failure(run("add " + folder + " Def_TrackTypes 'Name=2\" tape'"), 1, "takes no double quote");
    expect_failure(run("list " + in_quotes(studio_ + "/nowhere") + " Projects"), 1, "there is no folder ");
    expect_failure(run("rows " + in_quotes(studio_ + "/nowhere.mdb") + " Projects"), 1, "there is no file or folder ");
    // A later format's first bytes.
    std::string later = contents(file("sldb.mdb"));
    later.replace(4, 15, "Standard ACE DB");
    std::ofstream(scratch_.file("later.accdb"), std::ios::binary) << later;
    for (const std::string command : {"tables", "check", "info"}) {
        expect_failure(
            run(command + " " + in_quotes(scratch_.file("later.accdb"))), 1,
            "later.accdb is of the format of Access 2007 and later (.accdb), which this engine does not read; "
            "save it as an .mdb of Access 2000 to 2003");
    }
}

TEST_F(Tool, info_tells_the_tables_of_another_file) {
    demo();
    jet::Database::create(scratch_.file("other.mdb"), {})->close();
    const jet::NewColumn columns[] = {{.name = u"Name", .type = jet::ColumnType::kText}};
    {
        const auto database = jet::Database::open(scratch_.file("other.mdb"), {});
        database->create_table(u"Things", columns);
        database->find_table(u"Things")->insert({std::u16string(u"one")});
        database->close();
    }
    const Outcome outcome = run("info " + in_quotes(scratch_.file("other.mdb")));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("none of a studio's"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("Things                          1 row\n"), std::string::npos) << outcome.out;
}

TEST_F(Tool, demo_refuses_a_folder_that_holds_one_of_the_files) {
    demo();
    for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
        const std::string folder = scratch_.file(std::string("only ") + name);
        std::filesystem::create_directory(folder);
        std::filesystem::copy_file(file(name), folder + "/" + name);
        expect_failure(run("demo " + in_quotes(folder)), 1, "already");
        EXPECT_EQ(contents(folder + "/" + name), contents(file(name)));
    }
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

TEST_F(Tool, one_of_the_two_files_stands_for_its_folder) {
    demo();
    for (const std::string command : {"info", "projects", "upgrade"}) {
        const Outcome by_folder = run(command + " " + in_quotes(studio_));
        EXPECT_EQ(by_folder.code, 0) << by_folder.errors;
        for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
            const Outcome by_file = run(command + " " + in_quotes(file(name)));
            EXPECT_EQ(by_file.code, 0) << by_file.errors;
            EXPECT_EQ(by_file.out, by_folder.out);
        }
    }
    std::ofstream(scratch_.file("notes.txt")) << "no studio";
    expect_failure(run("projects " + in_quotes(scratch_.file("notes.txt"))), 1, "notes.txt is a file, and none of");
}

TEST_F(Tool, folder_stands_for_both_its_files) {
    demo();
    const std::string folder = in_quotes(studio_);
    const std::string invoices = in_quotes(file("kvinvdb.mdb"));
    EXPECT_EQ(run("tables " + folder).out, run("tables " + main_file()).out + run("tables " + invoices).out);
    EXPECT_EQ(run("schema " + folder).out, run("schema " + main_file()).out + run("schema " + invoices).out);
    EXPECT_EQ(run("rows " + folder + " Invoices").out, run("rows " + invoices + " Invoices").out);
    EXPECT_EQ(run("rows " + folder + " Projects").out, run("rows " + main_file() + " Projects").out);
    const Outcome check = run("check " + folder);
    EXPECT_EQ(check.code, 0) << check.out;
    EXPECT_NE(check.out.find("sldb.mdb: sound\n"), std::string::npos) << check.out;
    EXPECT_NE(check.out.find("kvinvdb.mdb: sound\n"), std::string::npos) << check.out;
    expect_failure(run("rows " + folder + " Invoces"), 2, "did you mean Invoices?");
    std::filesystem::create_directory(scratch_.file("empty"));
    expect_failure(run("tables " + in_quotes(scratch_.file("empty"))), 1, "no studio in");
}

TEST_F(Tool, missing_file_is_an_error_and_is_not_made) {
    demo();
    std::filesystem::remove(file("kvinvdb.mdb"));
    for (const std::string command : {"projects", "list", "show", "add", "set", "delete"}) {
        const std::string rest = command == "projects" ? ""
                                 : command == "list"   ? " Projects"
                                 : command == "add"    ? " Projects Name=x"
                                 : command == "set"    ? " Projects 1 Name=x"
                                                       : " Projects 1";
        expect_failure(run(command + " " + in_quotes(studio_) + rest), 1, "kvinvdb.mdb is not there");
    }
    EXPECT_EQ(names(), std::vector<std::string>{"sldb.mdb"});
}

TEST_F(Tool, projects_filters_and_prints_json) {
    demo();
    const Outcome all = run("projects " + in_quotes(studio_));
    EXPECT_NE(all.out.find("3 projects"), std::string::npos) << all.out;
    const Outcome one = run("projects " + in_quotes(studio_) + " --client 3 --type Album --json");
    EXPECT_EQ(one.code, 0);
    EXPECT_NE(one.out.find("\"Name\": \"Grüße aus Köln\""), std::string::npos) << one.out;
    EXPECT_EQ(one.out.find("Night Trains"), std::string::npos);
    const Outcome none = run("projects " + in_quotes(studio_) + " --client 12345");
    EXPECT_EQ(none.code, 0);
    EXPECT_NE(none.out.find("0 projects"), std::string::npos);
}

TEST_F(Tool, studio_passwords_are_tried_and_another_one_is_asked_for) {
    demo();
    for (const std::string command : {"tables", "schema", "check"}) {
        const Outcome outcome = run(command + " " + main_file());
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_NE(outcome.out, "");
    }
    EXPECT_NE(run("rows " + main_file() + " Projects").out.find("Night Trains"), std::string::npos);
    expect_failure(run("rows " + main_file() + " Projects --password wrong"), 1, "password");
    jet::CreateOptions create;
    create.password = u"own";
    jet::Database::create(scratch_.file("other.mdb"), create)->close();
    expect_failure(run("tables " + in_quotes(scratch_.file("other.mdb"))), 1, "give it with --password");
    EXPECT_EQ(run("tables " + in_quotes(scratch_.file("other.mdb")) + " --password own").code, 0);
    expect_failure(run("check " + in_quotes(studio_ + "/nothing.mdb")), 1, "nothing.mdb");
}

TEST_F(Tool, demo_fails_where_no_folder_can_be_made) {
    std::ofstream(scratch_.file("file")) << "no folder";
    expect_failure(run("demo " + in_quotes(scratch_.file("file"))), 1, "cannot make the folder");
}

TEST_F(Tool, check_tells_sound_files_from_others) {
    std::ifstream sample(KVDB_SAMPLES "/testV2000.mdb");
    if (!sample) GTEST_SKIP() << "no sample files beside the project";
    const Outcome sound = run("check " + in_quotes(KVDB_SAMPLES "/indexTestV2000.mdb"));
    EXPECT_EQ(sound.code, 0) << sound.out;
    EXPECT_NE(sound.out.find(": sound\n"), std::string::npos) << sound.out;
    const Outcome leaky = run("check " + in_quotes(KVDB_SAMPLES "/testV2000.mdb"));
    EXPECT_EQ(leaky.code, 0) << "what Access leaves behind is no damage";
    EXPECT_NE(leaky.out.find("page-leaked (693)"), std::string::npos) << leaky.out;
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
    expect_failure(run("rows " + file + " Nothing"), 2, "Nothing");
    expect_failure(run("schema " + file + " Nothing"), 2, "Nothing");
    EXPECT_NE(run("tables " + file + " --system").out.find("MSysObjects"), std::string::npos);
}

TEST_F(Tool, foreign_and_old_files_give_one_clear_line) {
    std::ofstream(scratch_.file("text.mdb")) << "this is no database";
    expect_failure(run("tables " + in_quotes(scratch_.file("text.mdb"))), 1, "not a Jet database");
    std::ifstream sample(KVDB_SAMPLES "/testV1997.mdb");
    if (!sample) GTEST_SKIP() << "no sample files beside the project";
    EXPECT_NE(run("tables " + in_quotes(KVDB_SAMPLES "/testV1997.mdb")).out.find("Table1"), std::string::npos);
}

TEST_F(Tool, help_is_everywhere_and_succeeds) {
    EXPECT_EQ(run("--help").code, 0);
    for (const std::string command : {"demo", "info", "upgrade", "projects", "list", "show", "add", "set", "delete",
                                      "tables", "schema", "rows", "check", "search", "sql", "export", "import"}) {
        const Outcome outcome = run(command + " --help");
        EXPECT_EQ(outcome.code, 0) << command;
        EXPECT_NE(outcome.out.find("kvdb " + command), std::string::npos);
        EXPECT_NE(run("--help").out.find("kvdb " + command), std::string::npos);
    }
}

TEST_F(Tool, help_tells_version_commands_and_options) {
    EXPECT_EQ(run("--version").out.substr(0, 5), "kvdb ");
    EXPECT_EQ(run("-h").out, run("--help").out);
    EXPECT_EQ(run("help").out, run("--help").out);
    for (const std::string command : {"list", "upgrade", "rows"}) {
        const Outcome outcome = run("help " + command);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_EQ(outcome.out, run(command + " -h").out);
        EXPECT_EQ(outcome.out.find("usage: kvdb " + command), 0U) << outcome.out;
    }
    EXPECT_NE(run("help upgrade").out.find("--lower"), std::string::npos);
    const std::string help = run("help list").out;
    EXPECT_NE(help.find("[--where CONDITION ...]"), std::string::npos) << help;
    EXPECT_LT(help.find("--limit N"), help.rfind("-h, --help")) << help;
    expect_failure(run("help lits"), 2, "did you mean list?");
}

TEST_F(Tool, mistyped_command_or_option_gets_a_suggestion) {
    expect_failure(run("lst x Projects"), 2, "unknown command 'lst'; did you mean list?");
    expect_failure(run("uprgade x"), 2, "did you mean upgrade?");
    expect_failure(run("rows x Projects --jsn"), 2, "unknown option --jsn; did you mean --json?");
    const Outcome far_off = run("xylophone");
    expect_failure(far_off, 2, "unknown command 'xylophone'");
    EXPECT_EQ(far_off.errors.find("did you mean"), std::string::npos) << far_off.errors;
}

TEST_F(Tool, what_is_not_understood_is_a_usage_error) {
    expect_failure(run(""), 2, "--help");
    expect_failure(run("dance"), 2, "dance");
    expect_failure(run("info"), 2, "usage: kvdb info");
    expect_failure(run("upgrade"), 2, "usage: kvdb upgrade");
    expect_failure(run("upgrade x --backup"), 2, "--backup");
    expect_failure(run("projects x --client many"), 2, "--client");
    expect_failure(run("projects x --colour red"), 2, "--colour");
    expect_failure(run("rows a b --json --csv"), 2, "--csv");
    for (const std::string command : {"list", "show", "add", "set", "delete", "tables", "schema", "rows", "check",
                                      "search", "sql", "export", "import"}) {
        expect_failure(run(command), 2, "usage: kvdb " + command);
    }
    expect_failure(run("demo one two"), 2, "usage: kvdb demo");
}

}  // namespace
