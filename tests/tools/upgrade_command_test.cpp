// The tool on studios of earlier versions: what info says of them, and what upgrade does and says.
#include <chrono>
#include <filesystem>
#include <vector>

#include "os/file.h"
#include "os/system.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"
#include "tests/support/fault_file_system.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
using namespace testing_support;

class OldStudioTool : public Tool {
protected:
    OldStudioTool() { std::filesystem::create_directory(studio_); }

    std::string studio() const { return file("sldb.mdb"); }
    std::string invoices() const { return file("kvinvdb.mdb"); }
    // Files of that beginning besides the one itself.
    std::vector<std::string> copies(const std::string& stem) const {
        std::vector<std::string> found;
        for (const std::string& name : names()) {
            if (name.starts_with(stem + "-")) found.push_back(name);
        }
        return found;
    }
};

void expect_line(const Outcome& outcome, const std::string& text) {
    EXPECT_NE(outcome.out.find(text), std::string::npos) << text << "\nin\n" << outcome.out;
}
void expect_no_line(const Outcome& outcome, const std::string& text) {
    EXPECT_EQ(outcome.out.find(text), std::string::npos) << text << "\nin\n" << outcome.out;
}

TEST_F(OldStudioTool, info_tells_what_an_upgrade_would_do_and_changes_nothing) {
    make_old_studio(studio_, 100005);
    const std::string before = both_files();
    const Outcome outcome = run("info " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    expect_line(outcome, "schema version 100005, colours 0 and 1");
    expect_line(outcome, "- replace the former password\n");
    expect_line(outcome, "- add the demo project\n");
    expect_line(outcome, "- write the contact categories\n");
    expect_line(outcome, "- date the lines of invoices\n");
    expect_line(outcome, "Sessions                      400 rows");
    expect_no_line(outcome, "incomplete");
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(OldStudioTool, info_names_only_the_steps_of_the_files_version) {
    make_old_studio(studio_, 200010);
    const Outcome outcome = run("info " + in_quotes(studio_));
    expect_line(outcome, "schema version 200010");
    expect_no_line(outcome, "former password");
    expect_no_line(outcome, "table of taxes");
    expect_line(outcome, "- convert contacts\n");
}

TEST_F(OldStudioTool, info_on_a_current_studio_says_nothing_is_to_be_done) {
    demo();
    const Outcome outcome = run("info " + in_quotes(studio_));
    expect_line(outcome, "upgrade: nothing to do");
    expect_no_line(outcome, "would");
}

TEST_F(OldStudioTool, info_without_an_invoice_file_tells_the_rest_and_fails) {
    make_old_studio(studio_, 200010);
    std::filesystem::remove(invoices());
    const Outcome outcome = run("info " + in_quotes(studio_));
    expect_failure(outcome, 1, "kvinvdb.mdb is not there");
    expect_line(outcome, "Projects                       12 rows");
    expect_line(outcome, "invoices: no file yet");
}

TEST_F(OldStudioTool, info_on_a_header_without_a_row_says_that_no_upgrade_is_possible) {
    Oddities oddities;
    oddities.header_row = false;
    OldFile(studio(), OldFile::Kind::kStudio, 200010, oddities).close();
    OldFile(invoices(), OldFile::Kind::kInvoice, 200010).close();
    const Outcome outcome = run("info " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    expect_line(outcome, "no header row");
    expect_line(outcome, "upgrade: not possible, for its table DBHeader has no row that tells the version; ");
    for (const std::string command : {"upgrade", "projects"}) {
        expect_failure(run(command + " " + in_quotes(studio_)), 1, "DBHeader has no row");
    }
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(OldStudioTool, upgrade_shows_versions_and_rows_and_keeps_dated_copies) {
    for (const std::int32_t version : kOldVersions) {
        std::filesystem::remove_all(studio_);
        std::filesystem::create_directory(studio_);
        make_old_studio(studio_, version);
        const std::string old_studio = contents(studio());
        const std::string old_invoices = contents(invoices());
        const Outcome outcome = run("upgrade " + in_quotes(studio_));
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        expect_line(outcome, "sldb.mdb: version " + std::to_string(version) + ", now 210000");
        expect_line(outcome, "kvinvdb.mdb: version " + std::to_string(version) + ", now 210000");
        expect_line(outcome, "Projects                       12       13\n");
        expect_line(outcome, "Sessions                      400      400\n");
        expect_line(outcome, "Clients                        60       72\n");
        expect_line(outcome, "ContactCategories               -       10\n");
        expect_line(outcome, "InvoiceParams                 120      120\n");
        EXPECT_EQ(content_of(studio()).at("Participants").rows.size(), 348u);
        ASSERT_EQ(copies("sldb").size(), 1u);
        ASSERT_EQ(copies("kvinvdb").size(), 1u);
        EXPECT_EQ(copies("sldb")[0].size(), std::string("sldb-2005-03-05.mdb").size());
        EXPECT_EQ(contents(file(copies("sldb")[0])), old_studio);
        EXPECT_EQ(contents(file(copies("kvinvdb")[0])), old_invoices);
        EXPECT_EQ(names().size(), 4u);  // neither library nor journal stays
    }
}

TEST_F(OldStudioTool, upgrade_of_an_upgraded_studio_does_and_copies_nothing) {
    make_old_studio(studio_, 100006);
    EXPECT_EQ(run("upgrade " + in_quotes(studio_) + " --no-copy").code, 0);
    EXPECT_EQ(names(), kBothFiles);
    const std::string before = both_files();
    const Outcome again = run("upgrade " + in_quotes(studio_));
    EXPECT_EQ(again.code, 0) << again.errors;
    expect_line(again, "nothing to do");
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(names().size(), 2u);
}

TEST_F(OldStudioTool, second_copy_of_a_day_gets_a_number) {
    make_old_studio(studio_, 200010);
    EXPECT_EQ(run("upgrade " + in_quotes(studio_)).code, 0);
    std::filesystem::remove(studio());
    std::filesystem::remove(invoices());
    make_old_studio(studio_, 200000);
    EXPECT_EQ(run("upgrade " + in_quotes(studio_)).code, 0);
    ASSERT_EQ(copies("sldb").size(), 2u);
    EXPECT_TRUE(copies("sldb")[0].ends_with("-2.mdb")) << copies("sldb")[0];
    EXPECT_EQ(content_of(file(copies("sldb")[0])).at("DBHeader").rows[0].at("DBversion"), "200000");
    EXPECT_EQ(content_of(file(copies("sldb")[1])).at("DBHeader").rows[0].at("DBversion"), "200010");
}

TEST_F(OldStudioTool, copy_holds_what_the_journal_of_a_crash_holds) {
    FaultFileSystem disk;
    std::unique_ptr<FaultFileSystem> after_crash;
    {
        const UseFileSystem use(disk);
        make_old_studio("/studio", 200010);
        // The second commit waits in the journal when the process ends.
        jet::OpenOptions options;
        options.ignore_password = true;
        options.pager.sync_interval = std::chrono::hours(24);
        const auto database = jet::Database::open(os::join_path("/studio", "sldb.mdb"), options);
        jet::Table& rooms = *database->find_table(u"Def_Rooms");
        rooms.insert({});
        rooms.insert({});
        after_crash = disk.crash(CrashMode::kKeepUnsynced);
    }
    for (const char* const name : {"sldb.mdb", "sldb.mdb-journal", "kvinvdb.mdb"}) {
        const auto bytes = after_crash->content(os::join_path("/studio", name));
        std::ofstream(file(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    EXPECT_EQ(run("upgrade " + in_quotes(studio_)).code, 0);
    ASSERT_EQ(copies("sldb").size(), 1u);  // one file is the whole
    EXPECT_EQ(content_of(file(copies("sldb")[0])).at("Def_Rooms").rows.size(), 5u);
    EXPECT_EQ(content_of(studio()).at("Def_Rooms").rows.size(), 5u);
}

// The table that the step is to make is there already.
void make_studio_that_stops(const std::string& path, std::int32_t version) {
    Oddities oddities;
    oddities.also = {"Services"};
    OldFile file(path, OldFile::Kind::kStudio, version, oddities);
    fill_studio(file);
    file.close();
}

TEST_F(OldStudioTool, upgrade_that_stops_says_why_and_takes_both_files_back) {
    make_studio_that_stops(studio(), 200010);
    OldFile invoice_file(invoices(), OldFile::Kind::kInvoice, 200010);
    fill_invoices(invoice_file);
    invoice_file.close();
    const std::string before = both_files();
    const Outcome outcome = run("upgrade " + in_quotes(studio_));
    expect_failure(outcome, 1, "in sldb.mdb the step \"create the tables of contacts");
    expect_failure(outcome, 1, "Services");
    expect_failure(outcome, 1, "both files are as they were before");
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(copies("sldb").size(), 1u);
    EXPECT_EQ(copies("kvinvdb").size(), 1u);

    // The files are equal to their copies, so there are no further ones.
    const std::vector<std::string> all = names();
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "Services");
    EXPECT_EQ(names(), all);
    EXPECT_EQ(both_files(), before);
}

TEST_F(OldStudioTool, upgrade_whose_second_file_fails_takes_the_first_one_back) {
    OldFile studio_file(studio(), OldFile::Kind::kStudio, 100006);
    fill_studio(studio_file);
    studio_file.close();
    Oddities oddities;
    oddities.kinds = {{"DBHeader.DBversion", "date"}};  // it takes the new number and makes a day of it
    oddities.header_row = false;
    OldFile invoice_file(invoices(), OldFile::Kind::kInvoice, 100006, oddities);
    invoice_file.add("DBHeader", {{"DBversion", day(2005, 3, 5)}});
    invoice_file.close();
    const std::string before = both_files();
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "kvinvdb.mdb is of version 0");
    EXPECT_EQ(both_files(), before);
}

TEST_F(OldStudioTool, upgrade_that_goes_on_without_something_says_so_and_keeps_the_copies) {
    Oddities oddities;
    oddities.without = {"Bookings"};
    OldFile(studio(), OldFile::Kind::kStudio, 200010, oddities).close();
    OldFile(invoices(), OldFile::Kind::kInvoice, 200010).close();
    const Outcome outcome = run("upgrade " + in_quotes(studio_) + " --no-copy");
    expect_failure(outcome, 1, "in sldb.mdb the step \"convert bookings\" failed: ");
    expect_failure(outcome, 1, "incomplete: not there: Bookings");
    expect_line(outcome, "sldb.mdb: version 200010, now 210000");
    EXPECT_EQ(copies("sldb").size(), 1u);
}

TEST_F(OldStudioTool, upgrade_that_fails_without_copies_leaves_the_files_and_no_invoices_of_its_own) {
    Oddities oddities;
    oddities.password = kStudioPassword;  // the step expects the former one
    OldFile(studio(), OldFile::Kind::kStudio, 100005, oddities).close();
    const std::string before = contents(studio());
    const Outcome outcome = run("upgrade " + in_quotes(studio_) + " --no-copy");
    expect_failure(outcome, 1, "the step \"replace the former password\" failed: The old password of");
    EXPECT_EQ(contents(studio()), before);
    EXPECT_FALSE(std::filesystem::exists(invoices()));
}

TEST_F(OldStudioTool, file_of_the_current_version_that_lacks_something_is_told) {
    Oddities oddities;
    oddities.without = {"Messages"};
    OldFile(studio(), OldFile::Kind::kStudio, 210000, oddities).close();
    OldFile(invoices(), OldFile::Kind::kInvoice, 210000).close();
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "incomplete: not there: Messages");
    expect_line(run("info " + in_quotes(studio_)), "incomplete: not there: Messages");
    expect_failure(run("list " + in_quotes(studio_) + " Messages ContactID=1"), 1, "Messages cannot be read");
}

TEST_F(OldStudioTool, newer_studio_is_lowered_only_when_it_is_asked_for) {
    OldFile(studio(), OldFile::Kind::kStudio, 220000).close();
    OldFile(invoices(), OldFile::Kind::kInvoice, 220000).close();
    const std::string before = both_files();
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "newer than the 210000");
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "--lower");
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(names(), kBothFiles);
    const Outcome lowered = run("upgrade " + in_quotes(studio_) + " --lower");
    EXPECT_EQ(lowered.code, 0) << lowered.errors;
    expect_line(lowered, "sldb.mdb: version 220000, now 210000");
    EXPECT_EQ(copies("sldb").size(), 1u);
}

TEST_F(OldStudioTool, interrupted_copy_is_made_anew_and_no_name_that_is_in_use_is_taken) {
    make_old_studio(studio_, 200010);
    ASSERT_EQ(run("upgrade " + in_quotes(studio_)).code, 0);
    const std::string copy = file(copies("sldb")[0]);
    std::ofstream(copy, std::ios::binary) << "of somebody else";
    std::filesystem::remove(studio());
    std::filesystem::remove(invoices());
    make_old_studio(studio_, 100006);
    const std::string numbered = copy.substr(0, copy.size() - 4) + "-2.mdb";
    std::ofstream(numbered + "-unfinished") << "the beginning of a copy";
    const std::string old = contents(studio());
    ASSERT_EQ(run("upgrade " + in_quotes(studio_)).code, 0);
    EXPECT_EQ(contents(copy), "of somebody else");
    EXPECT_EQ(contents(numbered), old);
    EXPECT_FALSE(std::filesystem::exists(numbered + "-unfinished"));
}

TEST_F(OldStudioTool, commands_but_upgrade_refuse_older_and_newer_studios_and_change_nothing) {
    for (const std::int32_t version : {100006, 220000}) {
        for (const bool is_studio_other : {true, false}) {
            std::filesystem::remove_all(studio_);
            std::filesystem::create_directory(studio_);
            OldFile(studio(), OldFile::Kind::kStudio, is_studio_other ? version : 210000).close();
            OldFile(invoices(), OldFile::Kind::kInvoice, is_studio_other ? 210000 : version).close();
            const std::string before = both_files();
            const std::string other = is_studio_other ? "sldb.mdb" : "kvinvdb.mdb";
            for (const std::string command : {"list", "show", "add", "set", "delete", "projects"}) {
                const std::string key = command == "show" || command == "set" || command == "delete" ? " 1" : "";
                const std::string table = command == "projects" ? "" : " Projects";
                const std::string member = command == "add" || command == "set" ? " Name=x" : "";
                const Outcome outcome = run(command + " " + in_quotes(studio_) + table + key + member);
                expect_failure(outcome, 1, other + " is of version " + std::to_string(version));
                expect_failure(outcome, 1, "kvdb upgrade");
                EXPECT_TRUE(outcome.out.empty()) << outcome.out;
            }
            EXPECT_EQ(both_files(), before);
            EXPECT_EQ(names(), kBothFiles);
        }
    }
}

TEST_F(OldStudioTool, upgrade_without_a_studio_fails_and_makes_nothing) {
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "no studio");
    EXPECT_TRUE(names().empty());
    expect_failure(run("upgrade " + in_quotes(studio_ + "/nowhere")), 1, "no folder");
}

TEST_F(OldStudioTool, upgrade_of_a_studio_that_is_in_use_fails_and_leaves_it) {
    make_old_studio(studio_, 200010);
    const std::string before = contents(studio());
    {
        const auto held = os::native_file_system().open(studio(), os::OpenMode::kExclusive);
        const Outcome outcome = run("upgrade " + in_quotes(studio_));
        expect_failure(outcome, 1, "is in use by another program");
    }
    EXPECT_EQ(contents(studio()), before);
    EXPECT_EQ(names().size(), 2u);
}

}  // namespace
