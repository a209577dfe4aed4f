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

    std::string file(const std::string& name) const { return studio_ + "/" + name; }
    std::string studio() const { return file("sldb.mdb"); }
    std::string invoices() const { return file("kvinvdb.mdb"); }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(studio_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
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
    const std::string before = contents(studio()) + contents(invoices());
    const Outcome outcome = run("info " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    expect_line(outcome, "schema version 100005, colours 0 and 1");
    expect_line(outcome, "- replace the former password\n");
    expect_line(outcome, "- add the demo project\n");
    expect_line(outcome, "- write the contact categories\n");
    expect_line(outcome, "- date the lines of invoices\n");
    expect_line(outcome, "Sessions                      400 rows");
    expect_no_line(outcome, "incomplete");
    EXPECT_EQ(contents(studio()) + contents(invoices()), before);
    EXPECT_EQ(names(), (std::vector<std::string>{"kvinvdb.mdb", "sldb.mdb"}));
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

TEST_F(OldStudioTool, info_without_an_invoice_file_says_so) {
    make_old_studio(studio_, 200010);
    std::filesystem::remove(invoices());
    const Outcome outcome = run("info " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    expect_line(outcome, "invoices: no file yet");
}

TEST_F(OldStudioTool, info_on_a_header_without_a_row_says_that_no_upgrade_is_possible) {
    Oddities oddities;
    oddities.header_row = false;
    OldFile(studio(), OldFile::Kind::kStudio, 200010, oddities).close();
    const Outcome outcome = run("info " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    expect_line(outcome, "no header row");
    expect_line(outcome, "upgrade: not possible");
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
    EXPECT_EQ(names(), (std::vector<std::string>{"kvinvdb.mdb", "sldb.mdb"}));
    const std::string before = contents(studio()) + contents(invoices());
    const Outcome again = run("upgrade " + in_quotes(studio_));
    EXPECT_EQ(again.code, 0) << again.errors;
    expect_line(again, "nothing to do");
    EXPECT_EQ(contents(studio()) + contents(invoices()), before);
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

TEST_F(OldStudioTool, copy_takes_the_journal_of_a_crash_along) {
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
    ASSERT_EQ(copies("sldb").size(), 2u);
    EXPECT_EQ(content_of(file(copies("sldb")[0])).at("Def_Rooms").rows.size(), 5u);
    EXPECT_EQ(content_of(studio()).at("Def_Rooms").rows.size(), 5u);
}

TEST_F(OldStudioTool, upgrade_that_stops_or_leaves_something_out_fails_and_says_what) {
    Oddities oddities;
    oddities.also = {"Services"};
    OldFile(studio(), OldFile::Kind::kStudio, 200010, oddities).close();
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "incomplete: not there: Participants, Gear");
    // The number says 210000, so it is not tried again; but it is told again.
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "incomplete");
    expect_line(run("info " + in_quotes(studio_)), "incomplete: not there: ");

    std::filesystem::remove(studio());
    oddities = {};
    oddities.password = kStudioPassword;
    OldFile(studio(), OldFile::Kind::kStudio, 100005, oddities).close();
    expect_failure(run("upgrade " + in_quotes(studio_) + " --no-copy"), 1, "its version is 100005");
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
        EXPECT_EQ(outcome.code, 1);
        EXPECT_FALSE(outcome.errors.empty());
    }
    EXPECT_EQ(contents(studio()), before);
    EXPECT_EQ(names().size(), 2u);
}

}  // namespace
