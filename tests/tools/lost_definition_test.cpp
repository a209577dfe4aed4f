// Studios of which a table's definition, or the end of a file, is lost: everything else is printed, and one sentence
// names the file, what is damaged, and the commands that help.
#include <functional>

#include "jet/base/jet4.h"
#include "jet/tables/database.h"
#include "tests/tools/json_reader.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

// A command, and what it prints of the tables that are left.
struct Reading {
    const char* command;  // STUDIO, FILE, WHOLE and OUT stand for paths
    const char* printed;
    const char* printed_of_cut = printed;  // the same where little more than definitions is left
};

class LostDefinition : public Tool {
protected:
    void SetUp() override {
        ASSERT_EQ(demo().code, 0);
        std::filesystem::copy(studio_, whole_, std::filesystem::copy_options::recursive);
    }

    jet::PageNumber definition_of(const std::u16string& table, const char* name = "sldb.mdb") const {
        jet::OpenOptions options;
        options.ignore_password = options.read_only = true;
        for (const jet::CatalogEntry& entry : jet::Database::open(file(name), options)->catalog()) {
            if (entry.name == table) return static_cast<jet::PageNumber>(entry.id);
        }
        ADD_FAILURE() << "no such table";
        return 0;
    }
    void lose_page(jet::PageNumber page, const char* name = "sldb.mdb") const {
        std::string bytes = contents(file(name));
        bytes.replace(std::size_t{page} * jet::jet4::kPageSize, jet::jet4::kPageSize, jet::jet4::kPageSize, '\0');
        std::ofstream(file(name), std::ios::binary | std::ios::trunc) << bytes;
    }
    void lose(const std::u16string& table) const { lose_page(definition_of(table)); }
    void cut() const { std::filesystem::resize_file(file("sldb.mdb"), 300'000); }

    std::string out_place(const std::string& name) const { return scratch_.file(name); }

    // Runs each command of kOfWholeStudio; what it prints as JSON is whole.
    void for_each_reading(const std::function<void(const Reading& reading, const Outcome& outcome)>& look);

    const std::string whole_ = scratch_.file("the whole one");
};

constexpr Reading kOfWholeStudio[] = {
    {"search STUDIO Aurora", "Clients\t", "Invoices\t"},
    {"search STUDIO Aurora --json", "\"Table\": \"Clients\"", "\"Table\": \"Invoices\""},
    {"search STUDIO Aurora --csv", "Clients,", "Invoices,"},
    {"search FILE Aurora", "Clients\t", "Table\tKey"},
    {"info STUDIO", "invoices: "},
    {"info STUDIO", "  Invoices "},
    {"info STUDIO", "  Clients "},
    {"info FILE", "  Clients "},
    {"tables STUDIO --json", "\"Table\": \"Invoices\""},
    {"tables STUDIO --csv", ",Invoices,"},
    {"tables FILE --json", "\"Table\": \"Clients\""},
    {"schema STUDIO", "Invoices ("},
    {"schema STUDIO --json", "\"Table\": \"Invoices\""},
    {"schema STUDIO --csv", ",Invoices,"},
    {"schema FILE", "Clients ("},
    {"export STUDIO OUT --to csv", " tables, "},
    {"export STUDIO OUT --to jsonl", " tables, "},
    {"export STUDIO OUT --to sqlite", " tables, "},
    {"export STUDIO OUT --to postgres", " tables, "},
    {"export STUDIO OUT --to html", " tables, "},
    {"report STUDIO -o OUT", " tables, "},
    {"diff STUDIO WHOLE", "added, "},
    {"diff WHOLE STUDIO", "added, "},
    {"diff STUDIO WHOLE --json", ""},
};

std::string with_paths(std::string command, const std::vector<std::pair<std::string, std::string>>& paths) {
    for (const auto& [name, path] : paths) {
        const std::size_t at = command.find(name);
        if (at != std::string::npos) command.replace(at, name.size(), in_quotes(path));
    }
    return command;
}

void expect_help(const Outcome& outcome, const std::string& file, const std::string& what) {
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.errors.find(file), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find(what), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("kvdb check "), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("kvdb salvage "), std::string::npos) << outcome.errors;
}

void expect_whole_json(const std::string& command, const Outcome& outcome) {
    if (command.find("--json") != std::string::npos && !outcome.out.empty()) json_of(outcome.out);
}

void LostDefinition::for_each_reading(const std::function<void(const Reading& reading, const Outcome& outcome)>& look) {
    for (const Reading& reading : kOfWholeStudio) {
        SCOPED_TRACE(reading.command);
        std::filesystem::remove_all(out_place("made"));
        const std::string command = with_paths(
            reading.command,
            {{"STUDIO", studio_}, {"FILE", file("sldb.mdb")}, {"WHOLE", whole_}, {"OUT", out_place("made")}});
        const Outcome outcome = run(command);
        look(reading, outcome);
        expect_whole_json(command, outcome);
    }
}

TEST_F(LostDefinition, reading_commands_print_the_other_tables_and_name_the_help) {
    const jet::PageNumber page = definition_of(u"GearRentals");
    lose_page(page);
    for_each_reading([&](const Reading& reading, const Outcome& outcome) {
        expect_help(outcome, "sldb.mdb", "table GearRentals cannot be read");
        EXPECT_NE(outcome.errors.find("page " + std::to_string(page)), std::string::npos) << outcome.errors;
        EXPECT_NE(outcome.out.find(reading.printed), std::string::npos) << outcome.out.substr(0, 400);
        if (std::string(reading.command).find("OUT") != std::string::npos) {
            EXPECT_TRUE(std::filesystem::exists(out_place("made")));
        }
    });
}

TEST_F(LostDefinition, cut_file_is_read_as_far_as_it_goes_by_every_command) {
    cut();
    for_each_reading([&](const Reading& reading, const Outcome& outcome) {
        expect_help(outcome, "sldb.mdb", "behind the end of the file");
        EXPECT_NE(outcome.out.find(reading.printed_of_cut), std::string::npos) << outcome.out.substr(0, 400);
    });
}

TEST_F(LostDefinition, the_table_itself_is_refused_with_its_file_and_help) {
    lose(u"GearRentals");
    const std::string folder = in_quotes(studio_);
    for (const std::string& command :
         {"rows " + folder + " GearRentals", "rows " + main_file() + " GearRentals --json",
          "list " + folder + " GearRentals", "show " + folder + " GearRentals 1", "schema " + folder + " GearRentals",
          "sql " + folder + " 'SELECT * FROM GearRentals'"}) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        expect_help(outcome, "sldb.mdb", "page ");
        EXPECT_TRUE(outcome.out.empty()) << outcome.out;
    }
    EXPECT_EQ(run("list " + folder + " Projects").code, 0);
    EXPECT_EQ(run("rows " + folder + " Projects").code, 0);
    EXPECT_EQ(run("tables " + folder).code, 0) << "its name is there";
}

TEST_F(LostDefinition, lost_header_stops_changes_and_no_reading) {
    lose(u"DBHeader");
    const std::string folder = in_quotes(studio_);
    for (const std::string& command : {"list " + folder + " Projects --json", "list " + folder + " Invoices",
                                       "show " + folder + " Projects 1", "projects " + folder, "info " + folder}) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        expect_help(outcome, "sldb.mdb", "table DBHeader cannot be read");
        EXPECT_GT(outcome.out.size(), 100U) << outcome.out;
        expect_whole_json(command, outcome);
    }
    const std::string before = both_files();
    for (const std::string& command : {"set " + folder + " Projects 1 Name=x", "delete " + folder + " Projects 1",
                                       "add " + folder + " Projects Name=x", "upgrade " + folder}) {
        SCOPED_TRACE(command);
        expect_help(run(command), "sldb.mdb", "is damaged");
        EXPECT_EQ(both_files(), before);
        EXPECT_EQ(names(), kBothFiles);
    }
}

TEST_F(LostDefinition, file_that_cannot_be_opened_leaves_the_other_one_to_read) {
    lose_page(jet::jet4::kObjectsPage);
    const std::string folder = in_quotes(studio_);
    for (const std::string& command :
         {"search " + folder + " Aurora --json", "tables " + folder, "schema " + folder + " --csv",
          "rows " + folder + " Invoices --json", "list " + folder + " Invoices --json", "info " + folder,
          "sql " + folder + " 'SELECT * FROM Invoices'", "diff " + folder + " " + in_quotes(whole_)}) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        expect_help(outcome, "sldb.mdb", "cannot be opened");
        EXPECT_FALSE(outcome.out.empty());
        expect_whole_json(command, outcome);
    }
    for (const std::string& command : {"list " + folder + " Projects", "tables " + main_file(), "compact " + folder}) {
        SCOPED_TRACE(command);
        expect_help(run(command), "sldb.mdb", "cannot be opened");
    }
}

}  // namespace
