// What the pager writes into the journal over its generations, and what a replay makes of it after a crash.
#include <gtest/gtest.h>

#include <algorithm>

#include "jet/pages/journal_reader.h"
#include "jet/pages/recovery.h"
#include "tests/jet/former_journal.h"
#include "tests/jet/pager_fixture.h"

namespace jet {
namespace {

using testing_support::CrashMode;
using testing_support::FaultFileSystem;
using testing_support::Operation;
using testing_support::UseFileSystem;

class JournalGenerationTest : public PagerFixture {
protected:
    using Pages = std::vector<ByteVector>;

    static Pages pages_of(Pager& pager) {
        Pages pages;
        for (PageNumber page_no = 0; page_no < pager.page_count(); ++page_no) {
            const Page page = pager.read(page_no);
            pages.emplace_back(page.bytes().begin(), page.bytes().end());
        }
        return pages;
    }
    static void change(Pager& pager, PageNumber page_no, std::size_t at, std::size_t bytes, std::uint8_t value) {
        const MutablePage page = pager.modify(page_no);
        std::fill_n(page.bytes().begin() + static_cast<std::ptrdiff_t>(at), bytes, value);
    }
    static void commit_change(Pager& pager, PageNumber page_no, std::size_t at, std::size_t bytes, std::uint8_t value) {
        Transaction transaction(pager);
        change(pager, page_no, at, bytes, value);
        transaction.commit();
    }
    std::uint64_t journal_bytes() { return disk().content(journal_path()).size(); }
    // The host is killed now: what the next opening finds.
    void expect_after_kill(const Pages& expected) {
        const auto after = disk().crash(CrashMode::kKeepUnsynced);
        const UseFileSystem use(*after);
        for (const bool read_only : {true, false}) {
            PagerOptions options = rarely_synced();
            options.read_only = read_only;
            ASSERT_EQ(pages_of(*open(options)), expected) << read_only;
        }
    }
    // The power fails while pages of the .mdb are written: whatever the journal's generation changes is torn.
    void expect_after_torn_pages(const Pages& expected, std::uint32_t seed) {
        const auto after = disk().crash(CrashMode::kKeepUnsynced);
        JournalContent content;
        ASSERT_TRUE(read_journal(*after->open(journal_path(), os::OpenMode::kReadSide), content));
        Random random(seed);
        ByteVector file = after->content(path_);
        for (const JournalContent::Change& change : content.changes) {
            const std::size_t at = std::size_t{change.page_no} * jet4::kPageSize;
            // The header's first sector and the counter's do not change while a generation lasts.
            for (std::size_t sector = 512; sector < jet4::kPageSize && at + sector < file.size(); sector += 512) {
                if (random() % 2 == 0) std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(at + sector), 512, 0xEE);
            }
        }
        after->set_content(path_, file);
        const UseFileSystem use(*after);
        ASSERT_EQ(pages_of(*open(rarely_synced())), expected);
    }
};

TEST_F(JournalGenerationTest, later_change_of_a_page_takes_bytes_and_not_pages) {
    auto pager = open(rarely_synced());
    commit_change(*pager, 7, 100, 1, 1);
    EXPECT_EQ(journal_bytes(), 64 + 24 + 2 * (6 + jet4::kPageSize)) << "the page and the counter's, whole";
    std::uint64_t before = journal_bytes();
    commit_change(*pager, 7, 100, 1, 2);
    EXPECT_EQ(journal_bytes() - before, 24u + 6 + 4 + 1);
    before = journal_bytes();
    commit_change(*pager, 7, 100, 10, 3);
    EXPECT_EQ(journal_bytes() - before, 24u + 6 + 4 + 10);
    before = journal_bytes();
    commit_change(*pager, 8, 100, 1, 1);
    EXPECT_EQ(journal_bytes() - before, 24u + 6 + jet4::kPageSize) << "another page";
    expect_after_kill(pages_of(*pager));
}

TEST_F(JournalGenerationTest, changes_of_every_extent_are_replayed) {
    struct Case {
        std::size_t at;
        std::size_t bytes;
    };
    auto pager = open(rarely_synced());
    commit_change(*pager, 7, 0, jet4::kPageSize, 0x10);
    std::uint8_t value = 0x20;
    for (const Case& c : {Case{0, 1}, Case{jet4::kPageSize - 1, 1}, Case{0, jet4::kPageSize}, Case{1000, 0},
                          Case{511, 2}, Case{0, jet4::kPageSize - 4}, Case{8, 8}, Case{7, 2}}) {
        commit_change(*pager, 7, c.at, c.bytes, ++value);
        expect_after_kill(pages_of(*pager));
        expect_after_torn_pages(pages_of(*pager), value);
    }
}

TEST_F(JournalGenerationTest, many_commits_to_one_page_are_replayed_in_order) {
    Random random(3);
    auto pager = open(rarely_synced());
    for (int i = 0; i < 600; ++i) {
        commit_change(*pager, 7, 1000 + random() % 40, 1 + random() % 20, random.byte());
        if (i % 200 == 100) pager->sync_point();
        if (i % 20 == 0) expect_after_kill(pages_of(*pager));
        if (HasFatalFailure()) return;
    }
    expect_after_torn_pages(pages_of(*pager), 1);
}

TEST_F(JournalGenerationTest, what_was_rolled_back_between_commits_is_not_replayed) {
    auto pager = open(rarely_synced());
    commit_change(*pager, 7, 100, 4, 1);
    {
        const Transaction undone(*pager);
        change(*pager, 7, 90, 50, 9);
        change(*pager, 8, 90, 50, 9);
        pager->extend();
    }
    commit_change(*pager, 7, 102, 4, 2);
    commit_change(*pager, 8, 102, 4, 2);
    {
        Transaction transaction(*pager);
        pager->extend().bytes()[5] = 6;
        transaction.commit();
    }
    expect_after_kill(pages_of(*pager));
    expect_after_torn_pages(pages_of(*pager), 1);
}

TEST_F(JournalGenerationTest, nested_changes_are_one_commit) {
    auto pager = open(rarely_synced());
    commit_change(*pager, 7, 100, 4, 1);
    const std::uint64_t before = journal_bytes();
    {
        Transaction outer(*pager);
        change(*pager, 7, 100, 2, 2);
        {
            Transaction inner(*pager);
            change(*pager, 7, 101, 2, 3);
            {
                const Transaction undone(*pager);
                change(*pager, 7, 0, 4000, 9);
            }
            inner.commit();
        }
        EXPECT_EQ(journal_bytes(), before);
        outer.commit();
    }
    EXPECT_EQ(journal_bytes() - before, 24u + 6 + 4 + 3) << "against the page as it was before the outer one";
    expect_after_kill(pages_of(*pager));
}

// Of a page that left the cache, nobody remembers that the journal holds it.
TEST_F(JournalGenerationTest, page_that_was_evicted_meanwhile_is_replayed) {
    PagerOptions options = always_synced();
    options.cache_pages = 2;
    auto pager = open(options);
    for (std::uint8_t i = 1; i < 10; ++i) {
        commit_change(*pager, 7, i, 20, i);
        commit_change(*pager, 7, 100u + i, 20, i);
        pages_of(*pager);
        expect_after_torn_pages(pages_of(*pager), i);
    }
}

// Everything at once, against a model: after each commit the file is what it was then, however torn.
TEST_F(JournalGenerationTest, random_changes_are_replayed_whatever_is_torn) {
    for (std::uint32_t seed = 1; seed <= 6; ++seed) {
        disk().set_content(path_, build_empty_database(create_options()));
        Random random(seed);
        PagerOptions options = seed % 2 == 0 ? always_synced() : rarely_synced();
        options.cache_pages = seed % 3 == 0 ? 2 : 1000;
        options.journal_limit_bytes = seed % 3 == 1 ? 30 * 1024 : 8u << 20;
        auto pager = open(options);
        for (int step = 0; step < 60; ++step) {
            {
                Transaction transaction(*pager);
                for (std::uint32_t i = random() % 6; i > 0; --i) {
                    Transaction inner(*pager);
                    const std::size_t at = random.below(jet4::kPageSize);
                    const std::size_t bytes = std::min<std::size_t>(1 + random() % 300, jet4::kPageSize - at);
                    change(*pager, 6 + random.below(pager->page_count() - 6), at, bytes, random.byte());
                    if (random() % 8 == 0 && pager->page_count() < 30) pager->extend();
                    if (random() % 4 != 0) inner.commit();
                }
                if (random() % 5 != 0) transaction.commit();
            }
            if (!disk().exists(journal_path())) continue;
            expect_after_torn_pages(pages_of(*pager), random());
            if (HasFatalFailure()) return;
        }
        pager->close();
    }
}

// Two pages that always change together, over generations of a few commits, and the power fails at any moment.
TEST_F(JournalGenerationTest, power_failure_between_generations_mixes_no_commits) {
    PagerOptions options = rarely_synced();
    options.journal_limit_bytes = 16 * 1024;
    std::vector<std::unique_ptr<FaultFileSystem>> states;
    std::uint8_t at_least = 0;
    std::uint8_t at_most = 0;
    std::size_t cuts = 0;
    auto pager = open(options);
    const auto check = [&](const FaultFileSystem& state) {
        const UseFileSystem use(const_cast<FaultFileSystem&>(state));
        auto found = open(rarely_synced());
        const std::uint8_t mark_found = mark(*found, 7);
        ASSERT_EQ(mark(*found, 8), mark_found);
        ASSERT_GE(mark_found, at_least);
        ASSERT_LE(mark_found, at_most);
        ++cuts;
    };
    disk().set_observer([&](Operation, const std::string&) {
        check(*disk().crash(CrashMode::kDropUnsynced));
        for (std::uint32_t seed = 0; seed < 12; ++seed) {
            check(*disk().crash(CrashMode::kTearUnsynced, static_cast<std::uint32_t>(cuts) * 100 + seed));
        }
    });
    for (std::uint8_t i = 1; i <= 60 && !HasFatalFailure(); ++i) {
        at_most = i;
        Transaction transaction(*pager);
        change(*pager, 7, kMarkAt, 700, i);
        change(*pager, 8, kMarkAt, 700, i);
        transaction.commit();
        if (stored_mark(7) == i) at_least = i;
    }
    disk().set_observer({});
    EXPECT_GT(cuts, 500u);
    EXPECT_GT(at_least, 40);
}

// The host is killed: what an older generation has left behind the newer one's commits is of the same length each.
TEST_F(JournalGenerationTest, rest_of_an_older_generation_is_never_replayed) {
    PagerOptions options = rarely_synced();
    options.journal_limit_bytes = 30 * 1024;
    auto pager = open(options);
    int shorter = 0;
    for (int i = 0; i < 800; ++i) {
        commit_change(*pager, 7 + static_cast<PageNumber>(i % 2), 200, 100, static_cast<std::uint8_t>(i));
        if (i < 600) continue;
        JournalContent content;
        ASSERT_TRUE(read_journal(*disk().open(journal_path(), os::OpenMode::kReadSide), content));
        if (content.changes.size() < 20) ++shorter;
        expect_after_kill(pages_of(*pager));
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(shorter, 5);
}

TEST_F(JournalGenerationTest, refused_header_of_a_new_generation_fails_one_commit_and_loses_nothing) {
    for (const bool half_written : {false, true}) {
        PagerOptions options = rarely_synced();
        options.journal_limit_bytes = 1;  // each commit ends its generation
        auto pager = open(options);
        put(*pager, 7, 1);
        put(*pager, 7, 2);
        disk().plan({.operation = Operation::kWrite, .fault = os::FileFault::kDiskFull, .half_written = half_written});
        EXPECT_EQ(error_number([&] { put(*pager, 7, 3); }), errors::kDiskFull);
        EXPECT_EQ(mark(*pager, 7), 2);
        for (const CrashMode mode : {CrashMode::kKeepUnsynced, CrashMode::kDropUnsynced}) {
            const auto after = disk().crash(mode);
            const UseFileSystem use(*after);
            EXPECT_EQ(mark(*open(rarely_synced()), 7), 2);
        }
        put(*pager, 7, 4);
        expect_after_kill(pages_of(*pager));
        pager->close();
        EXPECT_EQ(stored_mark(7), 4);
        EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
    }
}

TEST_F(JournalGenerationTest, refused_sync_of_a_new_header_ends_writing_and_loses_nothing) {
    PagerOptions options = rarely_synced();
    options.journal_limit_bytes = 1;
    auto pager = open(options);
    put(*pager, 7, 1);
    disk().plan({.operation = Operation::kSync});
    EXPECT_EQ(error_number([&] { put(*pager, 7, 2); }), errors::kDiskError);
    EXPECT_EQ(error_number([&] { put(*pager, 7, 3); }), errors::kDiskError);
    EXPECT_EQ(mark(*pager, 7), 1);
    expect_after_kill(pages_of(*pager));
    pager->close();
    EXPECT_EQ(mark(*open(rarely_synced()), 7), 1);
}

TEST_F(JournalGenerationTest, file_that_one_large_commit_has_made_long_is_cut_back) {
    auto pager = open(rarely_synced());
    {
        Transaction transaction(*pager);
        for (int i = 0; i < 9000; ++i) pager->extend().bytes()[1] = 1;
        transaction.commit();
    }
    EXPECT_GT(journal_bytes(), 9000u * jet4::kPageSize);
    put(*pager, 7, 1);
    EXPECT_EQ(journal_bytes(), 32u << 20);
    put(*pager, 7, 2);
    expect_after_kill(pages_of(*pager));
}

// A journal that an earlier build has left: page 7 changed and changed again, and a page added.
class FormerJournalTest : public JournalGenerationTest {
protected:
    FormerJournalTest() {
        ByteVector file = disk().content(path_);
        const auto page = [&](PageNumber page_no) {
            return ByteVector(file.begin() + page_no * jet4::kPageSize, file.begin() + (page_no + 1) * jet4::kPageSize);
        };
        const JournalBinding binding{file_identity(page(0), page(jet4::kObjectsPage)),
                                     load_u64(page(jet4::kObjectsPage), jet4::tdef::kFiller), 4711};
        FormerJournal journal(binding, 99);
        ByteVector objects = page(jet4::kObjectsPage);
        store_u64(objects, jet4::tdef::kFiller, binding.next_counter);
        ByteVector seven = page(7);
        seven[kMarkAt] = 1;
        journal.commit({{7, seven}, {jet4::kObjectsPage, objects}}, kPages);
        seven[kMarkAt] = 2;
        journal.commit({{7, seven}, {kPages, ByteVector(jet4::kPageSize, 3)}}, kPages + 1);
        disk().set_content(journal_path(), journal.bytes());
    }
    static void expect_replayed(Pager& pager) {
        EXPECT_EQ(pager.page_count(), kPages + 1);
        EXPECT_EQ(mark(pager, 7), 2);
        EXPECT_EQ(mark(pager, kPages), 3);
        EXPECT_EQ(load_u64(pager.read(jet4::kObjectsPage).bytes(), jet4::tdef::kFiller), 4711u);
    }
};

TEST_F(FormerJournalTest, is_replayed_and_removed) {
    expect_replayed(*open(rarely_synced()));
    EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
    EXPECT_EQ(stored_mark(kPages), 3);
}

TEST_F(FormerJournalTest, is_read_into_memory_by_a_reader) {
    PagerOptions options;
    options.read_only = true;
    expect_replayed(*open(options));
    EXPECT_EQ(disk().change_count(), 0u);
}

TEST_F(FormerJournalTest, is_replayed_at_any_point_of_an_earlier_replay) {
    std::vector<std::unique_ptr<FaultFileSystem>> states;
    disk().set_observer([&](Operation, const std::string&) {
        states.push_back(disk().crash(CrashMode::kDropUnsynced));
        for (std::uint32_t seed = 0; seed < 8; ++seed) states.push_back(disk().crash(CrashMode::kTearUnsynced, seed));
    });
    open(rarely_synced())->close();
    disk().set_observer({});
    EXPECT_GE(states.size(), 40u);
    for (const auto& state : states) {
        const UseFileSystem use(*state);
        expect_replayed(*open(rarely_synced()));
    }
}

TEST_F(FormerJournalTest, first_commit_afterwards_begins_a_journal_of_todays_kind) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 5);
    const ByteVector journal = disk().content(journal_path());
    EXPECT_EQ(journal[7], '2');
    expect_after_kill(pages_of(*pager));
}

}  // namespace
}  // namespace jet
