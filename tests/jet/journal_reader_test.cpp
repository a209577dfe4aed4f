#include "jet/pages/journal_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "jet/pages/journal.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/former_journal.h"

namespace jet {
namespace {

using journal::Kind;
using testing_support::FaultFileSystem;

// Three commits: pages {5, 9}, {5}, {20, 6}; the second changes one byte of page 5, kMarkAt.
struct Sample {
    ByteVector bytes;
    std::vector<std::size_t> ends;  // of the header and of each commit
};

constexpr std::size_t kMarkAt = 100;

class JournalReaderTest : public ::testing::TestWithParam<Kind> {
protected:
    static Sample changes_sample(std::uint8_t fill) {
        FaultFileSystem disk;
        Journal journal(disk, "d/a.mdb");
        Sample sample;
        const ByteVector first(jet4::kPageSize, fill);
        ByteVector second = first;
        second[kMarkAt] = static_cast<std::uint8_t>(fill + 1);
        const ByteVector third(jet4::kPageSize, static_cast<std::uint8_t>(fill + 2));
        const auto append = [&](const std::vector<JournalPage>& pages, std::uint32_t page_count) {
            journal.append(pages, page_count);
            sample.ends.push_back(static_cast<std::size_t>(journal.size_bytes()));
        };
        journal.start({77, 5, 9});
        sample.ends.push_back(journal::kHeaderBytes);
        append({{5, first.data()}, {9, first.data()}}, 18);
        append({{5, second.data(), first.data()}}, 18);
        append({{20, third.data()}, {6, third.data()}}, 21);
        sample.bytes = disk.content(journal.path());
        return sample;
    }
    static Sample pages_sample(std::uint8_t fill) {
        FormerJournal journal({77, 5, 9}, fresh_salt());
        Sample sample;
        ByteVector page(jet4::kPageSize, fill);
        const auto commit = [&](const std::vector<FormerJournal::WholePage>& pages, std::uint32_t page_count) {
            journal.commit(pages, page_count);
            sample.ends.push_back(journal.bytes().size());
        };
        sample.ends.push_back(journal.bytes().size());
        commit({{5, page}, {9, page}}, 18);
        page[kMarkAt] = static_cast<std::uint8_t>(fill + 1);
        commit({{5, page}}, 18);
        page.assign(page.size(), static_cast<std::uint8_t>(fill + 2));
        commit({{20, page}, {6, page}}, 21);
        sample.bytes = journal.bytes();
        return sample;
    }
    static Sample sample(std::uint8_t fill = 1) {
        return GetParam() == Kind::kChanges ? changes_sample(fill) : pages_sample(fill);
    }

    bool read(const ByteVector& bytes) {
        disk_.set_content("x", bytes);
        return read_journal(*disk_.open("x", os::OpenMode::kReadOnly), content_);
    }
    // Byte kMarkAt of the page as the journal leaves it; -1 when it has none.
    int mark(PageNumber page_no) {
        for (std::size_t i = 0; i < content_.changes.size(); ++i) {
            if (content_.changes[i].page_no != page_no) continue;
            const ByteVector page = read_journal_page(*disk_.open("x", os::OpenMode::kReadOnly), content_.of_page(i));
            EXPECT_GE(std::count(page.begin(), page.end(), page[0]), std::ptrdiff_t{jet4::kPageSize} - 1);
            return page[kMarkAt];
        }
        return -1;
    }
    void expect_commits(std::size_t commits, std::size_t at) {
        constexpr std::uint32_t kPageCounts[] = {0, 18, 18, 21};
        constexpr int kMarks[][4] = {{-1, -1, -1, -1}, {1, 1, -1, -1}, {2, 1, -1, -1}, {2, 1, 3, 3}};
        constexpr PageNumber kPages[] = {5, 9, 20, 6};
        ASSERT_TRUE(content_.is_sound) << at;
        ASSERT_EQ(content_.page_count, kPageCounts[commits]) << at;
        for (std::size_t i = 0; i < 4; ++i) ASSERT_EQ(mark(kPages[i]), kMarks[commits][i]) << at;
    }
    // How many whole commits a reader must find in the first `size` bytes.
    static std::size_t whole_commits(const Sample& sample, std::size_t size) {
        return static_cast<std::size_t>(std::upper_bound(sample.ends.begin() + 1, sample.ends.end(), size) -
                                        sample.ends.begin()) -
               1;
    }
    static ByteSpan part(const Sample& sample, std::size_t from, std::size_t to) {
        return ByteSpan(sample.bytes).subspan(sample.ends[from], sample.ends[to] - sample.ends[from]);
    }

    FaultFileSystem disk_;
    JournalContent content_;
};

TEST_P(JournalReaderTest, last_state_of_each_page_is_found) {
    ASSERT_TRUE(read(sample().bytes));
    EXPECT_EQ(content_.binding.identity, 77u);
    EXPECT_EQ(content_.binding.base_counter, 5u);
    EXPECT_EQ(content_.binding.next_counter, 9u);
    expect_commits(3, 0);
}

TEST_P(JournalReaderTest, tail_torn_at_any_byte_ends_behind_the_last_whole_commit) {
    const Sample whole = sample();
    for (std::size_t size = 0; size < whole.bytes.size(); ++size) {
        const bool valid = read({whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(size)});
        ASSERT_EQ(valid, size >= journal::kHeaderBytes) << size;
        if (valid) expect_commits(whole_commits(whole, size), size);
        if (HasFatalFailure()) return;
    }
}

TEST_P(JournalReaderTest, changed_byte_ends_the_journal_before_its_commit) {
    const Sample whole = sample();
    for (std::size_t at = 0; at < whole.bytes.size(); ++at) {
        ByteVector changed = whole.bytes;
        changed[at] = static_cast<std::uint8_t>(changed[at] ^ 1u << (at % 8));
        const bool valid = read(changed);
        ASSERT_EQ(valid, at >= journal::kHeaderBytes) << at;
        if (valid) expect_commits(whole_commits(whole, at), at);
        if (HasFatalFailure()) return;
    }
}

// The commits of both generations begin at the same places.
TEST_P(JournalReaderTest, commits_of_an_older_generation_behind_the_newer_are_ignored) {
    const Sample older = sample(10);
    const Sample newer = sample(1);
    ASSERT_EQ(older.ends, newer.ends);
    for (std::size_t commits = 0; commits < 3; ++commits) {
        ByteVector mixed = newer.bytes;
        const auto end = static_cast<std::ptrdiff_t>(newer.ends[commits]);
        std::copy(older.bytes.begin() + end, older.bytes.end(), mixed.begin() + end);
        ASSERT_TRUE(read(mixed));
        expect_commits(commits, commits);
    }
}

TEST_P(JournalReaderTest, reordered_and_repeated_commits_break_the_chain) {
    const Sample whole = sample();
    const auto begin = whole.bytes.begin();
    ByteVector swapped(begin, begin + static_cast<std::ptrdiff_t>(whole.ends[0]));
    append_bytes(swapped, part(whole, 1, 2));
    append_bytes(swapped, part(whole, 0, 1));
    ASSERT_TRUE(read(swapped));
    expect_commits(0, 0);
    ByteVector repeated(begin, begin + static_cast<std::ptrdiff_t>(whole.ends[2]));
    append_bytes(repeated, part(whole, 1, 2));
    ASSERT_TRUE(read(repeated));
    expect_commits(2, 0);
}

TEST_P(JournalReaderTest, hostile_sizes_allocate_nothing) {
    const Sample whole = sample();
    for (const std::size_t at : {4u, 12u}) {
        ByteVector bytes = whole.bytes;
        store_u32(bytes, journal::kHeaderBytes + at, 0xFFFFFFFF);
        ASSERT_TRUE(read(bytes));
        expect_commits(0, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Kind, JournalReaderTest, ::testing::Values(Kind::kChanges, Kind::kPages),
                         [](const auto& kind) { return kind.param == Kind::kChanges ? "changes" : "former_pages"; });

// Bodies that nobody writes, under right checksums.
class ForgedJournalTest : public ::testing::Test {
protected:
    void read(std::uint32_t pages, const ByteVector& body) {
        ByteVector bytes(journal::kHeaderBytes);
        const std::uint64_t start = journal::store_header(bytes, {77, 5, 9}, 1);
        ByteVector head;
        append_u32(head, 0x54494D43);
        append_u32(head, pages);
        append_u32(head, 18);
        append_u32(head, static_cast<std::uint32_t>(body.size()));
        append_u64(head, 0);
        store_u64(head, 16, journal::commit_checksum(head, body, start));
        append_bytes(bytes, head);
        append_bytes(bytes, body);
        disk_.set_content("x", bytes);
        ASSERT_TRUE(read_journal(*disk_.open("x", os::OpenMode::kReadOnly), content_));
        EXPECT_EQ(content_.page_count, 18u);
    }

    FaultFileSystem disk_;
    JournalContent content_;
};

TEST_F(ForgedJournalTest, body_that_is_no_list_of_records_is_not_sound) {
    ByteVector whole(6 + jet4::kPageSize);
    read(1, whole);
    EXPECT_TRUE(content_.is_sound);
    read(2, whole);
    EXPECT_FALSE(content_.is_sound) << "fewer records than the head names";
    read(0, whole);
    EXPECT_FALSE(content_.is_sound) << "more of them";
    read(1, ByteVector(whole.begin(), whole.end() - 1));
    EXPECT_FALSE(content_.is_sound) << "a page that is cut off";
    read(1, {1, 2, 3});
    EXPECT_FALSE(content_.is_sound);
    read(0xFFFFFFFF, whole);
    EXPECT_FALSE(content_.is_sound);
}

TEST_F(ForgedJournalTest, ranges_without_a_whole_page_before_them_are_not_sound) {
    read(1, {7, 0, 0, 0, 5, 0, 0, 0, 1, 0, 9});
    EXPECT_FALSE(content_.is_sound);
}

TEST_F(ForgedJournalTest, ranges_beyond_the_page_are_damage) {
    ByteVector body(6 + jet4::kPageSize);
    append_bytes(body, ByteVector{0, 0, 0, 0, 5, 0, 0xFF, 0xFF, 1, 0, 9});
    read(2, body);
    ASSERT_EQ(content_.changes.size(), 2u);
    const auto file = disk_.open("x", os::OpenMode::kReadOnly);
    EXPECT_EQ(error_number([&] { read_journal_page(*file, content_.of_page(0)); }), errors::kDamaged);
}

}  // namespace
}  // namespace jet
