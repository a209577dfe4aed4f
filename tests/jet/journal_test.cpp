#include "jet/pages/journal.h"

#include <gtest/gtest.h>

#include "tests/jet/pager_fixture.h"

namespace jet {
namespace {

using testing_support::CrashMode;
using testing_support::FaultFileSystem;
using testing_support::UseFileSystem;

constexpr std::size_t kCommitHeader = 24;

// A journal written by the class itself, on a disk of its own.
class JournalTest : public ::testing::Test {
protected:
    void append(Journal& journal, const std::vector<PageNumber>& page_numbers, std::uint8_t fill,
                std::uint32_t page_count) {
        const ByteVector bytes(jet4::kPageSize, fill);
        std::vector<JournalPage> pages;
        for (const PageNumber page_no : page_numbers) pages.push_back({page_no, bytes.data()});
        journal.append(pages, page_count);
    }
    // Three commits: pages {5, 9}, {5}, {20, 6}.
    ByteVector three_commits(std::uint8_t first_fill = 1) {
        Journal journal(disk_, kPath);
        if (disk_.exists(journal.path())) disk_.remove(journal.path());
        journal.start({77, 5});
        append(journal, {5, 9}, first_fill, 18);
        append(journal, {5}, static_cast<std::uint8_t>(first_fill + 1), 18);
        append(journal, {20, 6}, static_cast<std::uint8_t>(first_fill + 2), 21);
        return disk_.content(journal.path());
    }
    bool read(ByteVector bytes, JournalContent& content) {
        disk_.set_content("x", std::move(bytes));
        return Journal::read(*disk_.open("x", os::OpenMode::kReadOnly), content);
    }
    std::uint8_t fill_at(const ByteVector& journal, const JournalContent& content, PageNumber page_no) {
        for (const JournalContent::Image& image : content.last_images) {
            if (image.page_no == page_no)
                return slice(journal, static_cast<std::size_t>(image.at), jet4::kPageSize)[100];
        }
        return 0;
    }
    // Where each commit ends.
    static std::vector<std::size_t> ends() {
        const auto commit = [](std::size_t pages) { return kCommitHeader + pages * (4 + jet4::kPageSize); };
        const std::size_t first = Journal::kHeaderBytes + commit(2);
        return {Journal::kHeaderBytes, first, first + commit(1), first + commit(1) + commit(2)};
    }

    static constexpr char kPath[] = "d/a.mdb";
    FaultFileSystem disk_;
};

TEST_F(JournalTest, last_image_of_each_page_is_found) {
    const ByteVector bytes = three_commits();
    ASSERT_EQ(bytes.size(), ends().back());
    JournalContent content;
    ASSERT_TRUE(read(bytes, content));
    EXPECT_EQ(content.binding.identity, 77u);
    EXPECT_EQ(content.binding.base_counter, 5u);
    EXPECT_EQ(content.page_count, 21u);
    ASSERT_EQ(content.last_images.size(), 4u);
    EXPECT_EQ(fill_at(bytes, content, 5), 2);
    EXPECT_EQ(fill_at(bytes, content, 9), 1);
    EXPECT_EQ(fill_at(bytes, content, 6), 3);
    EXPECT_EQ(fill_at(bytes, content, 20), 3);
}

// How many whole commits a reader must find in the first `size` bytes.
std::size_t whole_commits(const std::vector<std::size_t>& ends, std::size_t size) {
    std::size_t commits = 0;
    while (commits + 1 < ends.size() && ends[commits + 1] <= size) ++commits;
    return commits;
}

void expect_commits(const JournalContent& content, std::size_t commits, std::size_t at) {
    constexpr std::uint32_t kPageCounts[] = {0, 18, 18, 21};
    constexpr std::size_t kImages[] = {0, 2, 2, 4};
    ASSERT_EQ(content.page_count, kPageCounts[commits]) << at;
    ASSERT_EQ(content.last_images.size(), kImages[commits]) << at;
}

TEST_F(JournalTest, tail_torn_at_any_byte_ends_behind_the_last_whole_commit) {
    const ByteVector bytes = three_commits();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        JournalContent content;
        const bool valid = read(ByteVector(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)), content);
        ASSERT_EQ(valid, size >= Journal::kHeaderBytes) << size;
        if (valid) expect_commits(content, whole_commits(ends(), size), size);
        if (HasFatalFailure()) return;
    }
}

TEST_F(JournalTest, changed_byte_ends_the_journal_before_its_commit) {
    const ByteVector bytes = three_commits();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        ByteVector changed = bytes;
        changed[at] = static_cast<std::uint8_t>(changed[at] ^ 1u << (at % 8));
        JournalContent content;
        const bool valid = read(std::move(changed), content);
        ASSERT_EQ(valid, at >= Journal::kHeaderBytes) << at;
        if (valid) expect_commits(content, whole_commits(ends(), at), at);
        if (HasFatalFailure()) return;
    }
}

TEST_F(JournalTest, commits_of_an_older_generation_behind_the_newer_are_ignored) {
    const ByteVector older = three_commits(10);
    ByteVector newer = three_commits(1);
    ASSERT_EQ(older.size(), newer.size());
    const std::size_t first_end = ends()[1];
    std::copy(older.begin() + static_cast<std::ptrdiff_t>(first_end), older.end(),
              newer.begin() + static_cast<std::ptrdiff_t>(first_end));
    JournalContent content;
    ASSERT_TRUE(read(newer, content));
    expect_commits(content, 1, 0);
    EXPECT_EQ(fill_at(newer, content, 5), 1);
}

TEST_F(JournalTest, reordered_and_repeated_commits_break_the_chain) {
    const ByteVector bytes = three_commits();
    const auto part = [&](std::size_t from, std::size_t to) {
        return ByteVector(bytes.begin() + static_cast<std::ptrdiff_t>(ends()[from]),
                          bytes.begin() + static_cast<std::ptrdiff_t>(ends()[to]));
    };
    ByteVector swapped(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(ends()[0]));
    append_bytes(swapped, part(1, 2));
    append_bytes(swapped, part(0, 1));
    JournalContent content;
    ASSERT_TRUE(read(swapped, content));
    expect_commits(content, 0, 0);
    ByteVector repeated(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(ends()[2]));
    append_bytes(repeated, part(1, 2));
    ASSERT_TRUE(read(repeated, content));
    expect_commits(content, 2, 0);
}

TEST_F(JournalTest, hostile_page_count_allocates_nothing) {
    ByteVector bytes = three_commits();
    store_u32(bytes, Journal::kHeaderBytes + 4, 0xFFFFFFFF);
    JournalContent content;
    ASSERT_TRUE(read(bytes, content));
    expect_commits(content, 0, 0);
}

TEST_F(JournalTest, generations_differ_even_with_the_same_binding) {
    const ByteVector one = three_commits();
    const ByteVector two = three_commits();
    EXPECT_NE(ByteVector(one.begin(), one.begin() + Journal::kHeaderBytes),
              ByteVector(two.begin(), two.begin() + Journal::kHeaderBytes));
}

TEST_F(JournalTest, checksum_depends_on_every_byte_its_place_and_the_seed) {
    ByteVector bytes(100, 0);
    const std::uint64_t plain = checksum64(bytes, 1);
    EXPECT_NE(plain, checksum64(bytes, 2));
    EXPECT_NE(plain, checksum64(ByteSpan(bytes).first(99), 1));
    std::set<std::uint64_t> seen{plain};
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int value : {1, 128, 255}) {
            bytes[at] = static_cast<std::uint8_t>(value);
            EXPECT_TRUE(seen.insert(checksum64(bytes, 1)).second) << at;
        }
        bytes[at] = 0;
    }
}

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
    journal.resize(Journal::kHeaderBytes + 500);
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
    ASSERT_TRUE(Journal::read(*disk().open(journal_path(), os::OpenMode::kReadSide), content));
    for (const std::uint32_t page_count : {kPages + 2, jet4::kMaxPages}) {
        disk().remove(journal_path());
        Journal forged(disk(), path_);
        forged.start(content.binding);
        const ByteVector page(jet4::kPageSize, 0);
        forged.append({{kPages, page.data()}}, page_count);
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
