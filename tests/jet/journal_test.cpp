#include "jet/pages/journal.h"

#include <gtest/gtest.h>

#include "jet/pages/journal_reader.h"
#include "jet/pages/recovery.h"
#include "tests/jet/former_journal.h"
#include "tests/jet/pager_fixture.h"

namespace jet {
namespace {

using testing_support::CrashMode;
using testing_support::FaultFileSystem;
using testing_support::UseFileSystem;

// Journals left beside a file by a program that was killed, and what opening the file makes of them.
class JournalBindingTest : public PagerFixture {
protected:
    // A file with `mark` on page 7, its journal already gone or (`killed`) still beside it.
    static void write(FaultFileSystem& disk, const std::string& path, std::uint8_t first, std::uint8_t second,
                      bool killed) {
        std::unique_ptr<FaultFileSystem> after;
        {
            const UseFileSystem use(disk);
            auto pager = open(path, rarely_synced());
            put(*pager, 7, first);
            put(*pager, 7, second);
            if (killed) after = disk.crash(CrashMode::kKeepUnsynced);
        }
        if (!killed) return;
        disk.set_content(path, after->content(path));
        disk.set_content(Journal::path_for(path), after->content(Journal::path_for(path)));
    }
    void expect_set_aside(std::uint8_t expected_mark) {
        const ByteVector journal = disk().content(journal_path());
        EXPECT_EQ(mark(*open(rarely_synced()), 7), expected_mark);
        EXPECT_FALSE(disk().exists(journal_path()));
        EXPECT_EQ(disk().content(journal_path() + "-set-aside"), journal);
        EXPECT_TRUE(disk().is_durable(journal_path() + "-set-aside"));
    }
};

TEST_F(JournalBindingTest, own_journal_is_replayed_and_removed) {
    write(disk(), path_, 1, 2, true);
    EXPECT_EQ(stored_mark(7), 1);
    auto pager = open(rarely_synced());
    EXPECT_EQ(mark(*pager, 7), 2);
    EXPECT_EQ(stored_mark(7), 2);
    EXPECT_TRUE(disk().is_durable(path_));
    EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
}

TEST_F(JournalBindingTest, journal_is_replayed_at_any_point_of_an_earlier_replay) {
    write(disk(), path_, 1, 2, true);
    std::vector<std::unique_ptr<FaultFileSystem>> states;
    disk().set_observer([&](testing_support::Operation, const std::string&) {
        for (const CrashMode mode : {CrashMode::kKeepUnsynced, CrashMode::kDropUnsynced})
            states.push_back(disk().crash(mode));
        for (std::uint32_t seed = 0; seed < 8; ++seed) states.push_back(disk().crash(CrashMode::kTearUnsynced, seed));
    });
    open(rarely_synced())->close();
    disk().set_observer({});
    EXPECT_GE(states.size(), 40u);
    for (const auto& state : states) {
        const UseFileSystem use(*state);
        EXPECT_EQ(mark(*open(rarely_synced()), 7), 2);
    }
}

TEST_F(JournalBindingTest, journal_of_another_file_is_set_aside) {
    FaultFileSystem other;
    other.set_content(path_, build_empty_database(create_options(42330.25)));
    write(other, path_, 3, 4, true);
    write(disk(), path_, 1, 2, false);
    disk().set_content(journal_path(), other.content(journal_path()));
    expect_set_aside(2);
}

TEST_F(JournalBindingTest, journal_of_an_older_copy_is_set_aside) {
    FaultFileSystem copy;
    copy.set_content(path_, disk().content(path_));
    write(copy, path_, 3, 4, true);
    for (std::uint8_t i = 0; i < 3; ++i) write(disk(), path_, 1, i, false);
    disk().set_content(journal_path(), copy.content(journal_path()));
    expect_set_aside(2);
}

TEST_F(JournalBindingTest, journal_of_a_newer_copy_is_set_aside) {
    FaultFileSystem copy;
    copy.set_content(path_, disk().content(path_));
    write(disk(), path_, 1, 2, false);
    write(copy, path_, 5, 6, false);
    write(copy, path_, 5, 7, false);
    write(copy, path_, 3, 4, true);
    disk().set_content(journal_path(), copy.content(journal_path()));
    expect_set_aside(2);
}

TEST_F(JournalBindingTest, journal_of_a_copy_that_went_its_own_way_is_set_aside) {
    FaultFileSystem copy;
    copy.set_content(path_, disk().content(path_));
    write(copy, path_, 3, 4, true);
    // As many changes here as there, but others.
    write(disk(), path_, 1, 2, false);
    disk().set_content(journal_path(), copy.content(journal_path()));
    expect_set_aside(2);
}

TEST_F(JournalBindingTest, second_journal_set_aside_does_not_replace_the_first) {
    for (const char* content : {"first", "second", "third"}) {
        disk().set_content(journal_path(), ByteVector(content, content + std::strlen(content)));
        open(rarely_synced())->close();
    }
    EXPECT_EQ(disk().content(journal_path() + "-set-aside"), (ByteVector{'f', 'i', 'r', 's', 't'}));
    EXPECT_EQ(disk().content(journal_path() + "-set-aside-2").size(), 6u);
    EXPECT_EQ(disk().content(journal_path() + "-set-aside-3"), (ByteVector{'t', 'h', 'i', 'r', 'd'}));
}

TEST_F(JournalBindingTest, empty_journal_is_removed) {
    disk().set_content(journal_path(), {});
    open(rarely_synced())->close();
    EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
}

TEST_F(JournalBindingTest, journal_without_a_whole_commit_changes_nothing_and_is_removed) {
    const ByteVector before = disk().content(path_);
    FaultFileSystem copy;
    copy.set_content(path_, before);
    write(copy, path_, 3, 4, true);
    ByteVector journal = copy.content(journal_path());
    journal.resize(journal::kHeaderBytes + 500);
    disk().set_content(journal_path(), journal);
    open(rarely_synced())->close();
    EXPECT_EQ(disk().content(path_), before);
    EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
}

TEST_F(JournalBindingTest, journal_that_cannot_be_looked_for_keeps_the_file_from_opening) {
    write(disk(), path_, 1, 2, true);
    const ByteVector journal = disk().content(journal_path());
    for (const bool read_only : {false, true}) {
        PagerOptions options = rarely_synced();
        options.read_only = read_only;
        auto file = disk().open(path_, read_only ? os::OpenMode::kReadOnly : os::OpenMode::kExclusive);
        disk().plan({.operation = testing_support::Operation::kOpen});
        EXPECT_EQ(error_number([&] { const Pager refused(disk(), std::move(file), path_, options); }),
                  errors::kDiskError);
        EXPECT_EQ(disk().content(journal_path()), journal);
        disk().clear_faults();
    }
    EXPECT_EQ(mark(*open(rarely_synced()), 7), 2);
}

TEST_F(JournalBindingTest, replayed_journal_that_cannot_be_removed_is_emptied_and_does_not_stop_the_opening) {
    write(disk(), path_, 1, 2, true);
    disk().plan({.operation = testing_support::Operation::kRemove, .lasting = true});
    auto pager = open(rarely_synced());
    EXPECT_EQ(mark(*pager, 7), 2);
    EXPECT_TRUE(disk().content(journal_path()).empty());
    EXPECT_TRUE(disk().is_durable(journal_path()));
    put(*pager, 7, 3);
    put(*pager, 7, 4);
    EXPECT_NO_THROW(pager->close());
    EXPECT_TRUE(disk().content(journal_path()).empty());
    disk().clear_faults();
    EXPECT_EQ(mark(*open(rarely_synced()), 7), 4);
    EXPECT_FALSE(disk().exists(journal_path()));
}

TEST_F(JournalBindingTest, journal_that_is_gone_already_counts_as_removed) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    disk().remove(journal_path());
    EXPECT_NO_THROW(pager->close());
    EXPECT_EQ(stored_mark(7), 1);
}

TEST_F(JournalBindingTest, journal_that_appears_while_the_file_is_open_is_not_overwritten) {
    auto pager = open(rarely_synced());
    disk().set_content(journal_path(), ByteVector{1, 2, 3});
    EXPECT_NE(error_number([&] { put(*pager, 7, 1); }), 0);
    EXPECT_EQ(disk().content(journal_path()), (ByteVector{1, 2, 3}));
}

// Forged: bound to the file, with right checksums, of one commit that makes the file as long as a file may be.
TEST_F(JournalBindingTest, journal_that_lacks_the_pages_it_grows_the_file_by_is_damage) {
    write(disk(), path_, 1, 2, true);
    const ByteVector before = disk().content(path_);
    JournalContent content;
    ASSERT_TRUE(read_journal(*disk().open(journal_path(), os::OpenMode::kReadSide), content));
    for (const std::uint32_t page_count : {kPages + 2, jet4::kMaxPages}) {
        disk().remove(journal_path());
        Journal forged(disk(), path_);
        forged.start(content.binding);
        const ByteVector page(jet4::kPageSize, 0);
        const JournalPage added{kPages, page.data()};
        forged.append({&added, 1}, page_count);
        forged.release();
        EXPECT_EQ(error_number([&] { open(rarely_synced()); }), errors::kDamaged);
        EXPECT_EQ(disk().content(path_), before);
    }
}

TEST_F(JournalBindingTest, read_only_leaves_every_journal_where_it_is) {
    PagerOptions options;
    options.read_only = true;
    for (const std::size_t size : {0u, 5u, 5000u}) {
        disk().set_content(journal_path(), ByteVector(size, 0x55));
        open(options)->close();
        EXPECT_EQ(disk().content(journal_path()).size(), size);
    }
    EXPECT_EQ(disk().change_count(), 0u);
}

}  // namespace
}  // namespace jet
