// salvage as its owner meets it: what comes back, what is said, and that the studio program can go on with the new
// file.
#include <filesystem>

#include "jet/base/jet4.h"
#include "jet/tables/database.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class SalvageCommand : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    std::string new_file() const { return scratch_.file("new.mdb"); }
    Outcome salvage(const std::string& from) { return run("salvage " + in_quotes(from) + " " + in_quotes(new_file())); }

    static void overwrite(const std::string& path, std::size_t page, std::size_t pages, char with) {
        std::string bytes = contents(path);
        const std::size_t at = page * jet::jet4::kPageSize;
        const std::size_t count = std::min(bytes.size() - at, pages * jet::jet4::kPageSize);
        bytes.replace(at, count, count, with);
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    }
    // With each definition of the file lost.
    void expect_rows_without_definitions(const std::string& path, std::size_t page_bytes) {
        std::string bytes = contents(path);
        for (std::size_t at = 6 * page_bytes; at < bytes.size(); at += page_bytes) {
            if (bytes[at] == 2) bytes.replace(at, page_bytes, page_bytes, '\0');
        }
        const std::string damaged = scratch_.file("damaged.mdb");
        std::ofstream(damaged, std::ios::binary | std::ios::trunc) << bytes;
        std::filesystem::remove(new_file());
        const Outcome outcome = salvage(damaged);
        ASSERT_EQ(outcome.code, 0) << outcome.errors;
        const auto before = testing_support::content_of(path);
        const auto after = testing_support::content_of(new_file());
        for (const auto& [table, content] : before) {
            ASSERT_TRUE(after.contains(table)) << table;
            EXPECT_EQ(after.at(table).rows, content.rows) << table;
        }
        EXPECT_EQ(testing_support::password_in(new_file()), testing_support::password_in(path));
    }
    // The studio's folder with the salvaged file in the place of the old one.
    void put_in_place(const std::string& name) {
        std::filesystem::remove(file(name));
        std::filesystem::rename(new_file(), file(name));
    }
};

TEST_F(SalvageCommand, sound_file_gives_the_same_rows_and_nothing_is_missing) {
    const auto before = testing_support::content_of(file("sldb.mdb"));
    const Outcome outcome = salvage(file("sldb.mdb"));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("the studio's main file"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("Nothing is known to be missing"), std::string::npos) << outcome.out;
    EXPECT_EQ(testing_support::difference(before, testing_support::content_of(new_file())), "");
    EXPECT_EQ(testing_support::password_in(new_file()), testing_support::kStudioPassword);
}

TEST_F(SalvageCommand, studio_goes_on_with_a_file_whose_beginning_and_catalogue_were_lost) {
    const std::string projects = run("list " + in_quotes(studio_) + " Projects").out;
    overwrite(file("sldb.mdb"), 0, 18, '\0');
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 1);
    const Outcome outcome = salvage(file("sldb.mdb"));
    ASSERT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("The first page is damaged"), std::string::npos) << outcome.out;
    put_in_place("sldb.mdb");
    EXPECT_EQ(run("list " + in_quotes(studio_) + " Projects").out, projects);
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
    // The next number is beyond those that were given.
    const Outcome added = run("add " + in_quotes(studio_) + " Projects Name=next");
    EXPECT_EQ(added.code, 0) << added.errors;
    EXPECT_GE(std::atoi(added.out.c_str()), 4) << added.out;
}

TEST_F(SalvageCommand, invoices_are_known_by_their_tables) {
    const auto before = testing_support::content_of(file("kvinvdb.mdb"));
    overwrite(file("kvinvdb.mdb"), 0, 6, 'x');
    const Outcome outcome = salvage(file("kvinvdb.mdb"));
    ASSERT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("the studio's invoices"), std::string::npos) << outcome.out;
    EXPECT_EQ(testing_support::difference(before, testing_support::content_of(new_file())), "");
    EXPECT_EQ(testing_support::password_in(new_file()), testing_support::kInvoicePassword);
}

TEST_F(SalvageCommand, deleted_rows_stay_deleted) {
    EXPECT_EQ(run("delete " + in_quotes(studio_) + " Projects 2").code, 0);
    const auto before = testing_support::content_of(file("sldb.mdb"));
    overwrite(file("sldb.mdb"), 1, 1, '\0');  // the map of the file
    ASSERT_EQ(salvage(file("sldb.mdb")).code, 0);
    EXPECT_EQ(testing_support::difference(before, testing_support::content_of(new_file())), "");
}

TEST_F(SalvageCommand, what_cannot_be_saved_makes_no_file) {
    std::ofstream(scratch_.file("text.mdb")) << std::string(50000, 'a');
    expect_failure(salvage(scratch_.file("text.mdb")), 1, "nothing of");
    std::ofstream(scratch_.file("short.mdb")) << "x";
    expect_failure(salvage(scratch_.file("short.mdb")), 1, "there is nothing to save");
    expect_failure(salvage(scratch_.file("nowhere.mdb")), 1, "nowhere.mdb");
    EXPECT_FALSE(std::filesystem::exists(new_file()));
    std::ofstream(new_file()) << "mine";
    expect_failure(salvage(file("sldb.mdb")), 1, "is there already");
    EXPECT_EQ(contents(new_file()), "mine");
}

TEST_F(SalvageCommand, report_is_json_on_demand) {
    overwrite(file("sldb.mdb"), 2, 1, '\0');
    const Outcome outcome = run("salvage " + in_quotes(file("sldb.mdb")) + " " + in_quotes(new_file()) + " --json");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.out.starts_with("{\"from\": ")) << outcome.out.substr(0, 40);
    EXPECT_NE(outcome.out.find("\"table\": \"Projects\", \"saved\": 3"), std::string::npos) << outcome.out;
}

TEST_F(SalvageCommand, files_of_access_keep_their_tables_and_rows) {
    const auto count = [](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); };
    for (const char* const name : {"test2V2000.mdb", "testV1997.mdb", "overflowTestV1997.mdb"}) {
        SCOPED_TRACE(name);
        const std::string sample = std::string(KVDB_SAMPLES "/") + name;
        if (!std::filesystem::exists(sample)) GTEST_SKIP() << "no sample files beside the project";
        std::filesystem::remove(new_file());
        const auto tables = run("tables " + in_quotes(sample)).out;
        const Outcome outcome = salvage(sample);
        ASSERT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_EQ(run("tables " + in_quotes(new_file())).out, tables);
        std::istringstream names(tables);
        for (std::string table; std::getline(names, table);) {
            const std::string rows = run("rows " + in_quotes(sample) + " " + in_quotes(table)).out;
            EXPECT_EQ(count(run("rows " + in_quotes(new_file()) + " " + in_quotes(table)).out), count(rows)) << table;
        }
    }
}

TEST_F(SalvageCommand, studios_of_earlier_versions_come_back_without_their_definitions) {
    for (const jet::Format* format : {&jet::kJet4, &jet::kJet3}) {
        const testing_support::UseOldFormat use(*format);
        for (const std::int32_t version : testing_support::kOldVersions) {
            SCOPED_TRACE(format->name + (" " + std::to_string(version)));
            const std::string folder = scratch_.file(format->name + std::to_string(version));
            std::filesystem::create_directory(folder);
            testing_support::make_old_studio(folder, version, {3, 8, 8, 12, 3, 6, 4});
            for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
                SCOPED_TRACE(name);
                expect_rows_without_definitions(folder + "/" + name, format->page_size);
            }
        }
    }
}

}  // namespace
