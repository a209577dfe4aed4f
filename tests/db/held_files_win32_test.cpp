// A studio whose files other programs hold briefly, in each share mode.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "db/database_files.h"
#include "db/session.h"
#include "jet/tables/database.h"
#include "tests/afx/dao_test_support.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/handle_holder_win32.h"

namespace {

using testing_support::HandleHolder;

constexpr DWORD kShareModes[] = {0, FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_DELETE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE};
constexpr DWORD kAMoment = 300;

class HeldFiles : public FolderTest {
protected:
    HeldFiles() { db::set_database_folder(folder_.string()); }
    ~HeldFiles() override {
        db::close(db::kCloseAll);
        db::set_database_folder("");
    }

    // The studio as a killed host left it, with `color` as its last colour in the journal but not in the file.
    void leave_journal(LONG color) {
        testing_support::FaultFileSystem disk;
        std::unique_ptr<testing_support::FaultFileSystem> after;
        {
            const testing_support::UseFileSystem use(disk);
            db::open(gate_);
            for (const LONG value : {LONG{1}, color}) set_color(value);
            after = disk.crash(testing_support::CrashMode::kKeepUnsynced);
            db::close(db::kCloseAll);
        }
        for (const std::string& name : after->names()) {
            const std::vector<std::uint8_t> bytes = after->content(name);
            std::ofstream(name, std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
        ASSERT_GT(std::filesystem::file_size(journal()), 0u);
    }
    std::string main_file() { return path("sldb.mdb"); }
    std::string journal() { return path("sldb.mdb-journal"); }
    void set_color(LONG color) {
        const HeadInfo head{0, color, 0};
        EXPECT_EQ(db::set_head(gate_, &head), S_OK);
    }
    LONG color() {
        HeadInfo head;
        EXPECT_EQ(db::get_head(gate_, &head), S_OK);
        return head.Color1;
    }

    db::GateDatabases gate_;
};

TEST_F(HeldFiles, file_that_another_program_holds_for_a_moment_is_opened_when_it_is_free) {
    db::open(gate_);
    db::close(db::kCloseAll);
    for (const DWORD share : kShareModes) {
        HandleHolder holder(main_file(), GENERIC_READ, share, kAMoment);
        ASSERT_TRUE(holder.holds()) << share;
        EXPECT_EQ(error_of([&] { db::open(gate_); }), 0) << share;
        db::close(db::kCloseAll);
    }
}

TEST_F(HeldFiles, file_that_another_program_keeps_is_in_use) {
    db::open(gate_);
    db::close(db::kCloseAll);
    HandleHolder holder(main_file(), GENERIC_READ, FILE_SHARE_READ);
    ASSERT_TRUE(holder.holds());
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3356);
    holder.release();
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 0);
}

TEST_F(HeldFiles, journal_that_another_program_holds_for_a_moment_is_replayed) {
    for (const DWORD share : kShareModes) {
        leave_journal(2);
        HandleHolder holder(journal(), GENERIC_READ, share, kAMoment);
        ASSERT_TRUE(holder.holds()) << share;
        EXPECT_EQ(error_of([&] { db::open(gate_); }), 0) << share;
        EXPECT_EQ(color(), 2) << share;
        holder.release();
        set_color(3);
        db::close(db::kCloseAll);
        EXPECT_FALSE(std::filesystem::exists(journal())) << share;
        std::filesystem::remove(main_file());
        std::filesystem::remove(path("kvinvdb.mdb"));
        std::filesystem::remove(path("kvinvdb.mdb-journal"));
    }
}

// It can be written but not removed: it is replayed, emptied, reused, and removed by a later opening.
TEST_F(HeldFiles, journal_that_another_program_keeps_from_being_removed_stops_nothing) {
    leave_journal(2);
    HandleHolder holder(journal(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(holder.holds());
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 0);
    EXPECT_EQ(color(), 2);
    EXPECT_EQ(std::filesystem::file_size(journal()), 0u);
    set_color(3);
    set_color(4);
    db::close(db::kCloseAll);
    EXPECT_EQ(std::filesystem::file_size(journal()), 0u);
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 0);
    EXPECT_EQ(color(), 4);
    db::close(db::kCloseAll);
    holder.release();
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 0);
    EXPECT_FALSE(std::filesystem::exists(journal()));
    EXPECT_EQ(color(), 4);
}

TEST_F(HeldFiles, journal_held_while_the_studio_is_closed_is_no_danger_to_the_next_opening) {
    for (const DWORD share :
         {DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE}}) {
        db::open(gate_);
        set_color(1);
        set_color(5);
        HandleHolder holder(journal(), GENERIC_READ, share);
        ASSERT_TRUE(holder.holds()) << share;
        db::close(db::kCloseAll);
        holder.release();
        EXPECT_EQ(error_of([&] { db::open(gate_); }), 0) << share;
        EXPECT_EQ(color(), 5) << share;
        db::close(db::kCloseAll);
        EXPECT_FALSE(std::filesystem::exists(journal())) << share;
    }
}

TEST_F(HeldFiles, studio_is_closed_opened_and_changed_while_a_journal_is_held) {
    for (const DWORD share : kShareModes) {
        db::open(gate_);
        set_color(1);
        set_color(2);
        // A file open for writing refuses openers that do not share writing.
        const bool can_be_held = (share & FILE_SHARE_WRITE) != 0;
        HandleHolder holder(journal(), GENERIC_READ, share);
        ASSERT_EQ(holder.holds(), can_be_held) << share;
        for (const LONG value : {LONG{3}, LONG{4}}) {
            db::close(db::kCloseAll);
            EXPECT_EQ(error_of([&] { db::open(gate_); }), 0) << share;
            EXPECT_EQ(color(), value - 1) << share;
            set_color(value);
        }
        holder.release();
        db::close(db::kCloseAll);
        EXPECT_EQ(error_of([&] { db::open(gate_); }), 0) << share;
        EXPECT_EQ(color(), 4) << share;
        db::close(db::kCloseAll);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2) << "nothing is left behind";
    }
}

// In a folder whose name no Western code page can express.
TEST_F(HeldFiles, folder_with_a_name_beyond_the_code_page_is_the_studio_itself) {
    const std::filesystem::path folder = std::filesystem::path(folder_) / L"Micha\x0142 \x30B9\x30BF";
    std::filesystem::create_directory(folder);
    const std::u8string utf8 = folder.u8string();
    db::set_database_folder(std::string(utf8.begin(), utf8.end()));
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 0);
    set_color(1);
    EXPECT_TRUE(std::filesystem::exists(folder / L"sldb.mdb"));
    EXPECT_TRUE(std::filesystem::exists(folder / L"sldb.mdb-journal"));
    db::close(db::kCloseAll);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1) << "nothing under a similar name";
}

}  // namespace
