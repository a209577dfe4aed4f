// backup, restore, compact, diff and check as their owner types them.
#include <filesystem>

#include "jet/base/jet4.h"
#include "jet/tables/database.h"
#include "tests/old_files/file_content.h"
#include "tests/tools/tool_fixture.h"
#include "tools/rescue/finding.h"

namespace {

using namespace testing_tool;
namespace fs = std::filesystem;

class Keeping : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    std::string copies() const { return scratch_.file("copies on a stick"); }
    Outcome backup(const std::string& more = "") {
        return run("backup " + in_quotes(studio_) + " " + in_quotes(copies()) + " " + more);
    }
    Outcome restore(const std::string& folder, const std::string& more = "") {
        return run("restore " + in_quotes(copies()) + " " + in_quotes(folder) + " " + more);
    }
    std::vector<std::string> copy_names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(copies())) names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void add_project(const std::string& name) {
        ASSERT_EQ(run("add " + in_quotes(studio_) + " Projects Name=" + in_quotes(name)).code, 0);
    }
    void damage(const std::string& name) {
        std::string bytes = contents(file(name));
        bytes.replace(bytes.size() / 2, jet::jet4::kPageSize, jet::jet4::kPageSize, 'x');
        std::ofstream(file(name), std::ios::binary | std::ios::trunc) << bytes;
    }
};

TEST_F(Keeping, backup_makes_a_dated_set_of_both_files_and_leaves_the_studio_alone) {
    const std::string before = both_files();
    const Outcome outcome = backup();
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    ASSERT_EQ(copy_names().size(), 2u);
    EXPECT_TRUE(copy_names()[0].starts_with("kvinvdb-2"));
    EXPECT_TRUE(copy_names()[1].starts_with("sldb-2"));
    EXPECT_EQ(contents(copies() + "/" + copy_names()[1]), contents(file("sldb.mdb")));
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Keeping, backups_of_one_second_are_two_and_keep_leaves_the_newest) {
    for (int i = 0; i < 4; ++i) ASSERT_EQ(backup().code, 0);
    EXPECT_EQ(copy_names().size(), 8u);
    std::ofstream(copies() + "/sldb-my-own.mdb") << "mine";
    add_project("the newest");
    const Outcome outcome = backup("--keep 2");
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(copy_names().size(), 5u) << "two sets, and what is none of them";
    const Outcome list = run("restore --list " + in_quotes(copies()));
    EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 2) << list.out;
    ASSERT_EQ(restore(scratch_.file("elsewhere")).code, 0);
    EXPECT_NE(run("list " + in_quotes(scratch_.file("elsewhere")) + " Projects").out.find("the newest"),
              std::string::npos);
    EXPECT_EQ(backup("--keep 0").code, 2);
}

TEST_F(Keeping, damaged_studio_is_not_taken_for_a_copy_and_the_older_ones_stay) {
    ASSERT_EQ(backup().code, 0);
    damage("sldb.mdb");
    const Outcome outcome = backup("--keep 1");
    expect_failure(outcome, 1, "sldb.mdb is damaged, so no copy was made of the studio: kvdb check ");
    for (const char* const part : {" says what is the matter", "kvdb salvage ", " NEW.mdb saves its rows",
                                   "kvdb restore ", "all older copies are kept"}) {
        EXPECT_NE(outcome.errors.find(part), std::string::npos) << outcome.errors;
    }
    EXPECT_EQ(copy_names().size(), 2u);
    const Outcome first = run("backup " + in_quotes(studio_) + " " + in_quotes(scratch_.file("other")));
    expect_failure(first, 1, "there is no older copy in ");
    EXPECT_EQ(first.errors.find("kvdb restore"), std::string::npos) << first.errors;
}

TEST_F(Keeping, damaged_copy_is_not_restored_and_the_way_to_others_is_named) {
    ASSERT_EQ(backup().code, 0);
    const std::string before = both_files();
    const std::string copy = copies() + "/" + copy_names()[1];
    std::string bytes = contents(copy);
    bytes.replace(bytes.size() / 2, jet::jet4::kPageSize, jet::jet4::kPageSize, 'x');
    std::ofstream(copy, std::ios::binary | std::ios::trunc) << bytes;
    const Outcome outcome = restore(studio_);
    expect_failure(outcome, 1, " is damaged, so nothing was restored and ");
    for (const char* const part : {" is as it was", "kvdb restore --list ", "kvdb salvage "}) {
        EXPECT_NE(outcome.errors.find(part), std::string::npos) << outcome.errors;
    }
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Keeping, studio_that_is_open_elsewhere_is_left_alone) {
    ASSERT_EQ(backup().code, 0);
    jet::OpenOptions options;
    options.ignore_password = true;
    const auto held = jet::Database::open(file("sldb.mdb"), options);
    expect_failure(backup(), 1, "is in use");
    expect_failure(restore(studio_), 1, "is in use");
    expect_failure(run("compact " + in_quotes(studio_)), 1, "is in use");
    EXPECT_EQ(copy_names().size(), 2u);
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Keeping, restore_keeps_what_was_there) {
    ASSERT_EQ(backup().code, 0);
    add_project("after the backup");
    const std::string changed = contents(file("sldb.mdb"));
    const Outcome outcome = restore(studio_);
    ASSERT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(run("list " + in_quotes(studio_) + " Projects").out.find("after the backup"), std::string::npos);
    std::size_t kept = 0;
    for (const std::string& name : names()) {
        if (!name.starts_with("sldb-before-restore-")) continue;
        ++kept;
        EXPECT_EQ(contents(file(name)), changed);
    }
    EXPECT_EQ(kept, 1u);
    EXPECT_EQ(names().size(), 4u);
}

TEST_F(Keeping, restore_takes_a_set_by_its_date_by_one_of_its_files_or_a_plain_folder) {
    ASSERT_EQ(backup().code, 0);
    const std::string set = copy_names()[1].substr(5, copy_names()[1].size() - 9);
    for (const std::string& words : {in_quotes(copies()) + " " + in_quotes(scratch_.file("a")) + " --at " + set,
                                     in_quotes(copies() + "/" + copy_names()[0]) + " " + in_quotes(scratch_.file("b")),
                                     in_quotes(studio_) + " " + in_quotes(scratch_.file("c"))}) {
        const Outcome outcome = run("restore " + words);
        EXPECT_EQ(outcome.code, 0) << words << outcome.errors;
    }
    for (const char* const folder : {"a", "b", "c"}) {
        EXPECT_EQ(run("diff " + in_quotes(studio_) + " " + in_quotes(scratch_.file(folder))).out,
                  "both hold the same\n");
    }
    expect_failure(restore(studio_, "--at 2001-01-01-000000"), 1, "there is no backup 2001-01-01-000000");
    expect_failure(run("restore " + in_quotes(studio_) + " " + in_quotes(studio_)), 1, "the studio's own file");
    expect_failure(run("restore " + in_quotes(scratch_.file("none")) + " " + in_quotes(studio_)), 1,
                   "there is no backup");
    EXPECT_EQ(run("restore " + in_quotes(copies())).code, 2);
}

TEST_F(Keeping, compact_keeps_everything_and_gives_room_back) {
    for (int i = 0; i < 3; ++i) add_project("to go");
    {
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(file("sldb.mdb"), options);
        jet::Table& songs = *database->find_table(u"Songs");
        std::vector<jet::RowId> rows;
        for (int i = 0; i < 300; ++i) {
            std::vector<jet::Value> row(songs.def().columns.size());
            row[*songs.def().find_column(u"Notes")] = std::u16string(3000, u'n');
            rows.push_back(songs.insert(row));
        }
        for (const jet::RowId row : rows) songs.erase(row);
        database->close();
    }
    ASSERT_EQ(run("delete " + in_quotes(studio_) + " Projects 7").code, 0);
    const auto before = testing_support::content_of(file("sldb.mdb"));
    const auto size = fs::file_size(file("sldb.mdb"));
    const Outcome outcome = run("compact " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_LT(fs::file_size(file("sldb.mdb")), size / 2);
    EXPECT_EQ(testing_support::difference(before, testing_support::content_of(file("sldb.mdb"))), "");
    EXPECT_EQ(testing_support::password_in(file("sldb.mdb")), "KvStudio2005sl");
    EXPECT_EQ(names(), kBothFiles);
    // The number that was given last is not given again.
    EXPECT_EQ(run("add " + in_quotes(studio_) + " Projects Name=next").out, "8\n");
}

TEST_F(Keeping, compact_refuses_what_it_could_not_make_anew) {
    const std::string sample = KVDB_SAMPLES "/indexTestV2000.mdb";
    if (!fs::exists(sample)) GTEST_SKIP() << "no sample files beside the project";
    fs::copy_file(sample, file("sldb.mdb"), fs::copy_options::overwrite_existing);
    const std::string before = contents(file("sldb.mdb"));
    expect_failure(run("compact " + in_quotes(studio_)), 1, "cannot be made anew without loss");
    EXPECT_EQ(contents(file("sldb.mdb")), before);
}

TEST_F(Keeping, diff_tells_added_removed_and_changed_rows) {
    ASSERT_EQ(backup().code, 0);
    ASSERT_EQ(restore(scratch_.file("before")).code, 0);
    add_project("a new one");
    ASSERT_EQ(run("set " + in_quotes(studio_) + " Projects 2 Producer=Somebody").code, 0);
    ASSERT_EQ(run("delete " + in_quotes(studio_) + " Gear 1").code, 0);
    const std::string words = in_quotes(scratch_.file("before")) + " " + in_quotes(studio_);
    const Outcome text = run("diff " + words);
    EXPECT_EQ(text.code, 1);
    for (const char* const line : {"+ Projects 5\n", "    Name: \"a new one\"\n", "~ Projects 2\n", "-> \"Somebody\"\n",
                                   "- Gear 1\n", "1 added, 1 removed, 1 changed\n"}) {
        EXPECT_NE(text.out.find(line), std::string::npos) << line << text.out;
    }
    const Outcome json = run("diff " + words + " --json");
    EXPECT_EQ(json.code, 1);
    EXPECT_NE(json.out.find("{\"table\": \"Projects\", \"change\": \"changed\", \"key\": 2"), std::string::npos)
        << json.out;
    EXPECT_EQ(run("diff " + in_quotes(studio_) + " " + in_quotes(studio_)).code, 0);
    EXPECT_EQ(run("diff " + in_quotes(studio_) + " " + main_file()).code, 2);
}

TEST_F(Keeping, check_tells_damage_from_remarks_and_what_helps) {
    EXPECT_EQ(run("check " + in_quotes(studio_)).code, 0);
    damage("sldb.mdb");
    const Outcome outcome = run("check " + in_quotes(studio_));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("sldb.mdb: DAMAGED"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("kvdb salvage "), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("kvinvdb.mdb: sound\n"), std::string::npos) << outcome.out;
}

TEST_F(Keeping, check_finds_no_damage_in_files_of_access) {
    const fs::path samples = KVDB_SAMPLES;
    if (!fs::is_directory(samples)) GTEST_SKIP() << "no sample files beside the project";
    int checked = 0;
    for (const auto& entry : fs::directory_iterator(samples)) {
        if (entry.path().extension() != ".mdb" || entry.path().string().find("V1997") != std::string::npos) continue;
        const Outcome outcome = run("check " + in_quotes(entry.path().string()));
        EXPECT_EQ(outcome.code, 0) << outcome.out << outcome.errors;
        EXPECT_EQ(outcome.out.find("DAMAGED"), std::string::npos) << outcome.out;
        ++checked;
    }
    EXPECT_GE(checked, 10);
}

// A leak of thousands of pages is counted to its end in a few lines, and hides no damage.
TEST_F(Keeping, findings_of_one_rule_do_not_hide_those_of_another) {
    fs::resize_file(file("sldb.mdb"), fs::file_size(file("sldb.mdb")) + 3000 * jet::jet4::kPageSize);
    {
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(file("sldb.mdb"), options);
        const jet::PageNumber used = database->find_table(u"Projects")->next_row({})->page;
        jet::Transaction change(database->pager());
        const jet::MutablePage map = database->pager().modify(jet::jet4::kGlobalMapPage);
        const std::size_t at = jet::load_u16(map.bytes(), jet::jet4::data::kSlots) & jet::jet4::data::kOffsetMask;
        std::fill(map.bytes().begin() + static_cast<long>(at + jet::jet4::usage::kBitmap), map.bytes().end(),
                  std::uint8_t{0});
        map.bytes()[at + jet::jet4::usage::kBitmap + used / 8] = static_cast<std::uint8_t>(1u << used % 8);
        change.commit();
        database->close();
    }
    const Outcome outcome = run("check " + main_file());
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("DAMAGED, 1 finding and 3"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("page-free (1)"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("page-leaked (3"), std::string::npos) << outcome.out;
    EXPECT_LT(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 20) << outcome.out;
    const Outcome all = run("check --all " + main_file());
    EXPECT_GT(std::count(all.out.begin(), all.out.end(), '\n'), 100);
}

TEST_F(Keeping, folder_that_was_made_for_nothing_goes_away_again) {
    damage("sldb.mdb");
    EXPECT_EQ(backup().code, 1);
    EXPECT_FALSE(fs::exists(copies()));
    // One that was there stays.
    fs::create_directory(copies());
    EXPECT_EQ(backup().code, 1);
    EXPECT_TRUE(fs::exists(copies()));
}

TEST_F(Keeping, advice_names_a_path_with_blanks_as_it_is_to_be_typed) {
    damage("sldb.mdb");
    const Outcome outcome = run("check " + in_quotes(studio_));
    const std::string path = fs::path(file("sldb.mdb")).make_preferred().string();
    EXPECT_NE(outcome.out.find("kvdb salvage \"" + path + "\" NEW.mdb"), std::string::npos) << outcome.out;
}

TEST(CheckRules, rule_that_nobody_knows_is_damage) {
    EXPECT_EQ(tools::rule_of("row-count").grade, tools::Grade::kRemark);
    EXPECT_EQ(tools::rule_of("page-leaked").grade, tools::Grade::kRemark);
    EXPECT_EQ(tools::rule_of("slot-order").grade, tools::Grade::kDamage);
    EXPECT_EQ(tools::rule_of("index-level-unset").grade, tools::Grade::kRemark);
    EXPECT_EQ(tools::rule_of("a new one").grade, tools::Grade::kDamage);
}

}  // namespace
