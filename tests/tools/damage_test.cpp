// Damaged files: what can be read is printed, each place that cannot be is named on standard error, and the command
// fails; a file of which nothing can be read is told in one line.
#include "jet/tables/database.h"
#include "tests/old_files/old_files.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

constexpr std::int32_t kSongs = 600;

class DamagedStudio : public Tool, public ::testing::WithParamInterface<const jet::Format*> {
protected:
    std::size_t page_size() const { return GetParam()->page_size; }

    void SetUp() override {
        make_studio();
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(file("sldb.mdb"), options);
        jet::Transaction filling(database->pager());
        jet::Table& songs = *database->find_table(u"Songs");
        const auto at = [&](const char16_t* name) { return *songs.def().find_column(name); };
        for (std::int32_t n = 0; n < kSongs; ++n) {
            std::vector<jet::Value> row(songs.def().columns.size());
            row[at(u"SongID")] = 1000 + n;
            row[at(u"ProjID")] = std::int32_t{77};
            row[at(u"Name")] = jet::from_utf8("song number " + std::to_string(1000 + n));
            const jet::RowId id = songs.insert(row);
            if (n == kSongs / 2) page_ = id.page;
        }
        filling.commit();
        database->close();
    }

    void make_studio() {
        if (!GetParam()->is_jet3()) {
            ASSERT_EQ(demo().code, 0);
            return;
        }
        std::filesystem::create_directory(studio_);
        const testing_support::UseOldFormat use(*GetParam());
        testing_support::make_old_studio(studio_, 200010);
        ASSERT_EQ(run("upgrade --no-copy " + in_quotes(studio_)).code, 0);
    }

    // Zeros in place of the page of the song in the middle.
    void lose_a_page() const {
        std::string bytes = contents(file("sldb.mdb"));
        bytes.replace(page_ * page_size(), page_size(), page_size(), '\0');
        std::ofstream(file("sldb.mdb"), std::ios::binary | std::ios::trunc) << bytes;
    }
    void cut_the_file() const { std::filesystem::resize_file(file("sldb.mdb"), page_ * page_size()); }

    std::string songs_by_gate() const { return "list " + in_quotes(studio_) + " Songs ProjID=77"; }
    std::string songs_by_engine() const { return "rows " + main_file() + " Songs --password KvStudio2005sl"; }

    // The songs 1000 to 1599 that the text names.
    static int count_songs(const std::string& text) {
        int count = 0;
        for (std::int32_t n = 0; n < kSongs; ++n) {
            count += text.find("song number " + std::to_string(1000 + n)) != std::string::npos ? 1 : 0;
        }
        return count;
    }

    jet::PageNumber page_ = 0;
};

void expect_damage(const Outcome& outcome, const std::string& place) {
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.errors.find("sldb.mdb: "), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find(place), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("1 place could not be read, and what was given out is not all"), std::string::npos)
        << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 2) << outcome.errors;
}

TEST_P(DamagedStudio, report_says_in_its_page_that_it_is_not_all) {
    const std::string page = scratch_.file("page.html");
    const std::string command = "report " + in_quotes(studio_) + " -o " + in_quotes(page);
    ASSERT_EQ(run(command).code, 0);
    EXPECT_EQ(contents(page).find("What is shown is not all"), std::string::npos);
    std::filesystem::remove(page);
    lose_a_page();
    // The tables are read more than once for it, and the place is told once.
    expect_damage(run(command), "page " + std::to_string(page_) + ": ");
    EXPECT_NE(
        contents(page).find("What is shown is not all.</strong> The files are damaged: 1 place could not be read"),
        std::string::npos);
    EXPECT_GT(count_songs(contents(page)), kSongs / 2);
}

TEST_P(DamagedStudio, lost_page_is_named_and_the_rows_around_it_are_listed) {
    ASSERT_EQ(count_songs(run(songs_by_gate()).out), kSongs);
    ASSERT_EQ(count_songs(run(songs_by_engine()).out), kSongs);
    lose_a_page();
    for (const std::string& command : {songs_by_gate(), songs_by_engine()}) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        expect_damage(outcome, "page " + std::to_string(page_) + ": ");
        const int left = count_songs(outcome.out);
        EXPECT_GT(left, kSongs / 2);
        EXPECT_LT(left, kSongs);
        EXPECT_NE(outcome.out.find("song number 1000"), std::string::npos);
        EXPECT_NE(outcome.out.find("song number 1599"), std::string::npos) << "it is behind the damage";
        EXPECT_EQ(outcome.out.find("song number 1300"), std::string::npos);
    }
}

TEST_P(DamagedStudio, end_that_was_cut_off_is_named_and_the_rows_before_it_are_listed) {
    cut_the_file();
    for (const std::string& command : {songs_by_gate(), songs_by_engine()}) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        expect_damage(outcome, "page ");
        EXPECT_NE(outcome.out.find("song number 1000"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.out.find("song number 1300"), std::string::npos);
    }
}

TEST_P(DamagedStudio, list_in_json_is_whole_though_the_file_is_not) {
    lose_a_page();
    for (const std::string& command : {songs_by_gate(), songs_by_engine()}) {
        const Outcome outcome = run(command + " --json");
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(outcome.out.starts_with("[\n")) << outcome.out.substr(0, 20);
        EXPECT_TRUE(outcome.out.ends_with("\n]\n"));
    }
}

TEST_P(DamagedStudio, changes_and_single_records_say_what_is_damaged) {
    lose_a_page();
    const std::string before = both_files();
    const std::string page = "page " + std::to_string(page_);
    expect_failure(run("set " + in_quotes(studio_) + " Songs 1300 Name=x"), 1, page);
    expect_failure(run("delete " + in_quotes(studio_) + " Songs 1300"), 1, page);
    const Outcome shown = run("show " + in_quotes(studio_) + " Songs 1300");
    EXPECT_EQ(shown.code, 1);
    EXPECT_NE(shown.errors.find(page), std::string::npos) << shown.errors;
    EXPECT_TRUE(shown.out.empty()) << shown.out;
    EXPECT_EQ(both_files(), before);
}

TEST_P(DamagedStudio, sound_tables_of_the_file_are_listed_without_a_word) {
    lose_a_page();
    const Outcome outcome = run("list " + in_quotes(studio_) + " Tracks SongID=1");
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_TRUE(outcome.errors.empty()) << outcome.errors;
}

constexpr auto kNameOfFormat = [](const ::testing::TestParamInfo<const jet::Format*>& tested) {
    return std::string(tested.param->is_jet3() ? "Jet3" : "Jet4");
};
INSTANTIATE_TEST_SUITE_P(Formats, DamagedStudio, ::testing::Values(&jet::kJet4, &jet::kJet3), kNameOfFormat);

}  // namespace
