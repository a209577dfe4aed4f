// The behaviour of files that all platforms share.
#include "os/file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <vector>

#include "os/system_error.h"
#include "tests/os/fault_of.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using os::FileError;
using os::FileFault;
using os::OpenMode;
using testing_support::fault_of;
using testing_support::TempFolder;
using Bytes = std::vector<std::uint8_t>;

constexpr OpenMode kAllModes[] = {OpenMode::kReadOnly, OpenMode::kExclusive, OpenMode::kCreateExclusive,
                                  OpenMode::kReadSide, OpenMode::kOpenSide,  OpenMode::kCreateSide};

Bytes numbered_bytes(std::size_t count) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

class NativeFile : public testing::Test {
protected:
    void make(const std::string& path, const std::string& content = "x") {
        std::ofstream(path, std::ios::binary) << content;
    }
    std::unique_ptr<os::File> open(const std::string& path, OpenMode mode) { return system_.open(path, mode); }

    TempFolder folder_;
    os::FileSystem& system_ = os::native_file_system();
    std::string path_ = folder_.file("x.mdb");
};

TEST_F(NativeFile, bytes_written_are_read_back_at_their_place) {
    const auto file = open(path_, OpenMode::kCreateExclusive);
    const Bytes bytes = numbered_bytes(1000);
    file->write(0, bytes);
    Bytes middle(100);
    EXPECT_EQ(file->read(300, middle), 100u);
    EXPECT_EQ(middle, Bytes(bytes.begin() + 300, bytes.begin() + 400));
    EXPECT_EQ(file->size(), 1000u);
}

TEST_F(NativeFile, read_across_the_end_is_short_and_past_it_empty) {
    const auto file = open(path_, OpenMode::kCreateExclusive);
    file->write(0, numbered_bytes(10));
    Bytes into(8, 0xEE);
    EXPECT_EQ(file->read(6, into), 4u);
    EXPECT_EQ(into, (Bytes{7, 8, 9, 10, 0xEE, 0xEE, 0xEE, 0xEE}));
    EXPECT_EQ(file->read(10, into), 0u);
    EXPECT_EQ(file->read(5000, into), 0u);
    EXPECT_EQ(file->read(0, std::span<std::uint8_t>()), 0u);
}

TEST_F(NativeFile, write_past_the_end_extends_with_zeros) {
    const auto file = open(path_, OpenMode::kCreateExclusive);
    file->write(4, Bytes{9});
    Bytes into(5, 0xEE);
    EXPECT_EQ(file->read(0, into), 5u);
    EXPECT_EQ(into, (Bytes{0, 0, 0, 0, 9}));
    file->write(100, Bytes{});
    EXPECT_EQ(file->size(), 5u) << "no bytes, no change";
}

TEST_F(NativeFile, truncate_cuts_and_extends_with_zeros) {
    const auto file = open(path_, OpenMode::kCreateExclusive);
    file->write(0, numbered_bytes(10));
    file->truncate(2);
    EXPECT_EQ(file->size(), 2u);
    file->truncate(4);
    Bytes into(4, 0xEE);
    EXPECT_EQ(file->read(0, into), 4u);
    EXPECT_EQ(into, (Bytes{1, 2, 0, 0}));
}

// A system may keep a position of its own between transfers.
TEST_F(NativeFile, transfers_in_any_order_go_to_their_offsets) {
    constexpr std::size_t kLargest = 5000;
    const auto file = open(path_, OpenMode::kCreateExclusive);
    Bytes expected;
    std::mt19937 random{11};
    const auto below = [&](std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit)(random); };
    for (int step = 0; step < 2000; ++step) {
        const std::size_t at = below(kLargest);
        const std::size_t count = below(300);
        switch (below(3)) {
            case 0: {
                const Bytes bytes(count, static_cast<std::uint8_t>(step));
                file->write(at, bytes);
                if (count > 0) expected.resize(std::max(expected.size(), at + count));
                std::copy(bytes.begin(), bytes.end(),
                          expected.begin() + static_cast<std::ptrdiff_t>(count > 0 ? at : 0));
                break;
            }
            case 1:
                file->truncate(at);
                expected.resize(at);
                break;
            default: {
                Bytes bytes(count);
                bytes.resize(file->read(at, bytes));
                const std::size_t begin = std::min(at, expected.size());
                const std::size_t end = std::min(at + count, expected.size());
                ASSERT_EQ(bytes, Bytes(expected.begin() + static_cast<std::ptrdiff_t>(begin),
                                       expected.begin() + static_cast<std::ptrdiff_t>(end)));
            }
        }
        ASSERT_EQ(file->size(), expected.size());
    }
}

TEST_F(NativeFile, transfer_after_a_refused_one_goes_to_its_offset) {
    make(path_, "0123456789");
    const auto file = open(path_, OpenMode::kReadOnly);
    Bytes bytes(4);
    ASSERT_EQ(file->read(0, bytes), 4u);
    EXPECT_EQ(fault_of([&] { file->write(4, bytes); }), FileFault::kAccessDenied);
    ASSERT_EQ(file->read(4, bytes), 4u);
    EXPECT_EQ(bytes, (Bytes{'4', '5', '6', '7'}));
}

TEST_F(NativeFile, large_offset_beyond_4_gib_works) {
    const auto file = open(path_, OpenMode::kCreateExclusive);
    constexpr std::uint64_t kFar = (std::uint64_t{5} << 30) + 3;
    try {
        file->write(kFar, Bytes{7});
    } catch (const FileError& error) {
        ASSERT_EQ(error.fault(), FileFault::kDiskFull);
        GTEST_SKIP() << "no room for a sparse file: " << error.what();
    }
    Bytes into(1);
    EXPECT_EQ(file->read(kFar, into), 1u);
    EXPECT_EQ(into, Bytes{7});
    EXPECT_EQ(file->size(), kFar + 1);
}

TEST_F(NativeFile, sync_of_file_and_folder_succeeds) {
    const auto file = open(path_, OpenMode::kCreateExclusive);
    file->write(0, Bytes{1});
    EXPECT_NO_THROW(file->sync());
    EXPECT_NO_THROW(system_.sync_folder_of(path_));
}

TEST_F(NativeFile, sync_of_missing_folder_is_bad_path) {
    EXPECT_EQ(fault_of([&] { system_.sync_folder_of(folder_.file("none") + "/x"); }), FileFault::kBadPath);
}

TEST_F(NativeFile, open_missing_is_not_found_and_makes_nothing) {
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kReadOnly); }), FileFault::kNotFound);
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kExclusive); }), FileFault::kNotFound);
    EXPECT_FALSE(system_.exists(path_));
}

TEST_F(NativeFile, side_file_is_made_where_there_is_none_and_opened_where_there_is) {
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kOpenSide); }), FileFault::kNotFound);
    open(path_, OpenMode::kCreateSide)->write(0, Bytes{1, 2});
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kCreateSide); }), FileFault::kExists);
    EXPECT_EQ(open(path_, OpenMode::kOpenSide)->size(), 2u);
    EXPECT_EQ(open(path_, OpenMode::kReadSide)->size(), 2u);
}

TEST_F(NativeFile, create_exclusive_on_existing_is_exists_and_leaves_it) {
    make(path_, "keep");
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kCreateExclusive); }), FileFault::kExists);
    EXPECT_EQ(fs::file_size(path_), 4u);
}

TEST_F(NativeFile, open_in_missing_folder_is_bad_path_in_every_mode) {
    for (const OpenMode mode : kAllModes) {
        EXPECT_EQ(fault_of([&] { open(folder_.file("none") + "/x.mdb", mode); }), FileFault::kBadPath);
    }
}

TEST_F(NativeFile, open_malformed_name_is_bad_path_in_every_mode) {
    for (const std::string& path : {std::string(), path_ + std::string(1, '\0') + ".txt"}) {
        for (const OpenMode mode : kAllModes) {
            EXPECT_EQ(fault_of([&] { open(path, mode); }), FileFault::kBadPath);
        }
        EXPECT_FALSE(system_.exists(path));
        EXPECT_EQ(fault_of([&] { system_.remove(path); }), FileFault::kBadPath);
        EXPECT_EQ(fault_of([&] { system_.rename(path, path_); }), FileFault::kBadPath);
    }
    EXPECT_FALSE(system_.exists(path_));
}

TEST_F(NativeFile, open_folder_is_refused_in_every_mode) {
    for (const OpenMode mode : {OpenMode::kReadOnly, OpenMode::kExclusive, OpenMode::kOpenSide}) {
        EXPECT_EQ(fault_of([&] { open(folder_.path(), mode); }), FileFault::kAccessDenied);
    }
    EXPECT_EQ(fault_of([&] { open(folder_.path(), OpenMode::kCreateExclusive); }), FileFault::kExists);
}

TEST_F(NativeFile, exclusive_file_second_exclusive_opening_in_this_process_is_locked) {
    make(path_);
    auto holder = open(path_, OpenMode::kExclusive);
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kExclusive); }), FileFault::kLocked);
    holder.reset();
    EXPECT_NO_THROW(open(path_, OpenMode::kExclusive));
}

TEST_F(NativeFile, created_file_second_exclusive_opening_is_locked) {
    const auto holder = open(path_, OpenMode::kCreateExclusive);
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kExclusive); }), FileFault::kLocked);
}

TEST_F(NativeFile, readers_keep_a_writer_out_and_a_writer_keeps_readers_out) {
    make(path_);
    {
        const auto reader = open(path_, OpenMode::kReadOnly);
        EXPECT_NO_THROW(open(path_, OpenMode::kReadOnly));
        EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kExclusive); }), FileFault::kLocked);
    }
    const auto writer = open(path_, OpenMode::kExclusive);
    EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kReadOnly); }), FileFault::kLocked);
}

TEST_F(NativeFile, side_files_do_not_lock) {
    const auto journal = open(path_, OpenMode::kCreateSide);
    const auto second = open(path_, OpenMode::kOpenSide);
    EXPECT_NO_THROW(open(path_, OpenMode::kReadSide));
    journal->write(0, Bytes{1});
    EXPECT_NO_THROW(second->sync());
}

TEST_F(NativeFile, kept_lock_outlasts_the_closing_and_the_next_opening_takes_it_over) {
    make(path_);
    {
        const auto kept = system_.keep_lock(path_);
        open(path_, OpenMode::kExclusive).reset();
        EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kReadOnly); }), FileFault::kLocked) << "nobody gets in between";
        auto again = open(path_, OpenMode::kExclusive);
        EXPECT_EQ(again->size(), 1u);
        EXPECT_EQ(fault_of([&] { open(path_, OpenMode::kExclusive); }), FileFault::kLocked);
        again.reset();
    }
    EXPECT_NO_THROW(open(path_, OpenMode::kExclusive)) << "nothing is kept any more";
}

TEST_F(NativeFile, longer_names_are_those_that_go_on) {
    for (const char* const name : {"x.mdb", "x.mdb-journal", "x.mdb-new-1", "y.mdb-new-1", "x.md"}) {
        make(folder_.file(name));
    }
    std::vector<std::string> found = system_.longer_names(path_);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{path_ + "-journal", path_ + "-new-1"}));
}

TEST_F(NativeFile, read_only_file_write_and_truncate_are_refused) {
    make(path_, "keep");
    const auto file = open(path_, OpenMode::kReadOnly);
    EXPECT_EQ(fault_of([&] { file->write(0, Bytes{1}); }), FileFault::kAccessDenied);
    EXPECT_THROW(file->truncate(0), FileError);
    EXPECT_EQ(file->size(), 4u);
}

TEST_F(NativeFile, remove_takes_the_file_away_and_missing_is_not_found) {
    make(path_);
    system_.remove(path_);
    EXPECT_FALSE(system_.exists(path_));
    EXPECT_EQ(fault_of([&] { system_.remove(path_); }), FileFault::kNotFound);
}

TEST_F(NativeFile, rename_never_replaces_the_target) {
    const std::string target = folder_.file("y.mdb");
    make(path_, "new");
    make(target, "old one");
    EXPECT_EQ(fault_of([&] { system_.rename(path_, target); }), FileFault::kExists);
    EXPECT_EQ(fs::file_size(path_), 3u);
    EXPECT_EQ(fs::file_size(target), 7u);
    fs::remove(target);
    system_.rename(path_, target);
    EXPECT_FALSE(system_.exists(path_));
    EXPECT_EQ(fs::file_size(target), 3u);
}

TEST_F(NativeFile, rename_missing_source_or_folder_is_told_apart) {
    EXPECT_EQ(fault_of([&] { system_.rename(path_, folder_.file("y")); }), FileFault::kNotFound);
    make(path_);
    EXPECT_EQ(fault_of([&] { system_.rename(path_, folder_.file("none") + "/y"); }), FileFault::kBadPath);
    EXPECT_TRUE(system_.exists(path_));
}

TEST_F(NativeFile, exists_tells_file_and_missing_apart) {
    EXPECT_FALSE(system_.exists(path_));
    make(path_);
    EXPECT_TRUE(system_.exists(path_));
}

TEST_F(NativeFile, name_with_blanks_and_non_ascii_bytes_works) {
    const std::string path = folder_.file("a b \xC3\xA4.mdb");
    open(path, OpenMode::kCreateExclusive)->write(0, Bytes{1});
    EXPECT_EQ(open(path, OpenMode::kReadOnly)->size(), 1u);
    system_.remove(path);
    EXPECT_FALSE(system_.exists(path));
}

TEST_F(NativeFile, error_text_is_one_line_with_operation_path_and_reason) {
    try {
        open(path_ + "\n2", OpenMode::kReadOnly);
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.find("Cannot open \"" + path_ + "?2\": "), 0u) << text;
        EXPECT_GT(text.size(), path_.size() + 20) << "the reason is missing";
        EXPECT_EQ(text.find('\n'), std::string::npos);
    }
}

TEST(FileSystemInUse, replacement_is_used_until_taken_back) {
    EXPECT_EQ(&os::file_system(), &os::native_file_system());
    testing_support::FaultFileSystem replacement;
    EXPECT_EQ(os::set_file_system(&replacement), nullptr);
    EXPECT_EQ(&os::file_system(), &replacement);
    EXPECT_EQ(os::set_file_system(nullptr), &replacement);
    EXPECT_EQ(&os::file_system(), &os::native_file_system());
}

}  // namespace
