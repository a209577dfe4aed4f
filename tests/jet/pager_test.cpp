#include "jet/pages/pager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "jet/pages/journal_reader.h"
#include "tests/jet/pager_fixture.h"

namespace jet {
namespace {

using testing_support::CrashMode;
using testing_support::Fault;
using testing_support::Operation;
using testing_support::UseFileSystem;

using PagerTest = PagerFixture;

std::vector<ByteVector> all_pages(Pager& pager) {
    std::vector<ByteVector> pages;
    for (PageNumber page_no = 0; page_no < pager.page_count(); ++page_no) {
        const Page page = pager.read(page_no);
        pages.emplace_back(page.bytes().begin(), page.bytes().end());
    }
    return pages;
}

// Page 2 holds the change counter, which is the pager's own.
void expect_same(const std::vector<ByteVector>& found, const std::vector<ByteVector>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (i == jet4::kObjectsPage) continue;
        ASSERT_EQ(found[i], expected[i]) << "page " << i;
    }
}

TEST_F(PagerTest, nested_transactions_keep_and_undo_exactly_their_own) {
    Random random(11);
    for (const std::size_t cache_pages : {1u, 4u, 1000u}) {
        disk().set_content(path_, build_empty_database(create_options()));
        PagerOptions options = rarely_synced();
        options.cache_pages = cache_pages;
        auto pager = open(options);
        std::vector<ByteVector> model = all_pages(*pager);
        std::vector<std::vector<ByteVector>> saved;
        for (int step = 0; step < 4000; ++step) {
            const std::uint32_t choice = random() % 16;
            if (saved.empty() || (choice == 0 && saved.size() < 5)) {
                pager->begin();
                saved.push_back(model);
            } else if (choice <= 2) {
                pager->commit();
                saved.pop_back();
            } else if (choice == 3) {
                pager->rollback();
                model = std::move(saved.back());
                saved.pop_back();
            } else if (choice == 4 && model.size() < 40) {
                const MutablePage page = pager->extend();
                ASSERT_EQ(page.number(), model.size());
                model.emplace_back(jet4::kPageSize);
            } else {
                PageNumber page_no = random.below(model.size());
                if (page_no == jet4::kObjectsPage) ++page_no;
                const std::size_t at = 2000 + random() % 2000;
                const auto value = random.byte();
                pager->modify(page_no).bytes()[at] = value;
                model[page_no][at] = value;
            }
            ASSERT_EQ(pager->page_count(), model.size());
            if (step % 50 == 0) expect_same(all_pages(*pager), model);
            if (step % 400 == 399 && saved.empty()) pager->sync_point();
            if (HasFatalFailure()) return;
        }
        while (!saved.empty()) {
            pager->rollback();
            model = std::move(saved.back());
            saved.pop_back();
        }
        pager->close();
        EXPECT_EQ(disk().content(path_).size(), model.size() * jet4::kPageSize);
        expect_same(all_pages(*open(options)), model);
    }
}

TEST_F(PagerTest, page_count_goes_back_with_the_transaction) {
    auto pager = open(rarely_synced());
    {
        const Transaction outer(*pager);
        pager->extend();
        {
            const Transaction inner(*pager);
            pager->extend();
            pager->extend();
            EXPECT_EQ(pager->page_count(), kPages + 3);
        }
        EXPECT_EQ(pager->page_count(), kPages + 1);
        EXPECT_EQ(pager->extend().number(), kPages + 1);
    }
    EXPECT_EQ(pager->page_count(), kPages);
    EXPECT_EQ(error_number([&] { pager->read(kPages); }), errors::kDamaged);
    {
        Transaction again(*pager);
        const MutablePage page = pager->extend();
        EXPECT_EQ(page.number(), kPages);
        EXPECT_EQ(ByteVector(page.bytes().begin(), page.bytes().end()), ByteVector(jet4::kPageSize));
        again.commit();
    }
    pager->close();
    EXPECT_EQ(disk().content(path_).size(), (kPages + 1) * jet4::kPageSize);
}

TEST_F(PagerTest, small_cache_reads_again_and_keeps_pinned_pages_in_place) {
    PagerOptions options = rarely_synced();
    options.cache_pages = 4;
    auto pager = open(options);
    const Page pinned = pager->read(7);
    const std::uint8_t* where = pinned.bytes().data();
    const ByteVector content(pinned.bytes().begin(), pinned.bytes().end());
    const std::uint64_t before = pager->pages_read();
    for (int round = 0; round < 3; ++round) all_pages(*pager);
    EXPECT_GE(pager->pages_read() - before, 2u * (kPages - 4));
    EXPECT_EQ(pinned.bytes().data(), where);
    EXPECT_EQ(ByteVector(pinned.bytes().begin(), pinned.bytes().end()), content);
    EXPECT_EQ(pager->read(7).bytes().data(), where);
}

TEST_F(PagerTest, pages_read_in_passing_do_not_push_out_those_in_use) {
    PagerOptions options = rarely_synced();
    options.cache_pages = 6;
    auto pager = open(options);
    const auto use = [&] {
        for (int round = 0; round < 4; ++round) {
            for (const PageNumber page_no : {1u, 2u, 3u}) mark(*pager, page_no);
        }
    };
    use();
    for (PageNumber page_no = 4; page_no < kPages; ++page_no) {
        for (int time = 0; time < 5; ++time) mark(*pager, page_no);
    }
    const std::uint64_t before = pager->pages_read();
    use();
    EXPECT_EQ(pager->pages_read(), before);
}

TEST_F(PagerTest, large_cache_reads_every_page_once) {
    auto pager = open(rarely_synced());
    for (int round = 0; round < 3; ++round) all_pages(*pager);
    EXPECT_EQ(pager->pages_read(), kPages);
}

TEST_F(PagerTest, first_commit_is_a_sync_point_and_the_next_waits) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    EXPECT_TRUE(disk().is_durable(journal_path()));
    EXPECT_EQ(stored_mark(7), 1);
    put(*pager, 7, 2);
    EXPECT_FALSE(disk().is_durable(journal_path()));
    EXPECT_EQ(stored_mark(7), 1);
    EXPECT_EQ(mark(*pager, 7), 2);
    pager->sync_point();
    EXPECT_TRUE(disk().is_durable(journal_path()));
    EXPECT_EQ(stored_mark(7), 2);
}

TEST_F(PagerTest, commit_after_the_interval_is_a_sync_point) {
    PagerOptions options;
    options.sync_interval = std::chrono::milliseconds(40);
    auto pager = open(options);
    put(*pager, 7, 1);
    disk().clock().advance(std::chrono::milliseconds(40));
    put(*pager, 7, 2);
    EXPECT_TRUE(disk().is_durable(journal_path()));
    EXPECT_EQ(stored_mark(7), 2);
}

TEST_F(PagerTest, without_interval_every_commit_is_a_sync_point) {
    auto pager = open(always_synced());
    for (std::uint8_t i = 1; i < 10; ++i) {
        put(*pager, 7, i);
        EXPECT_TRUE(disk().is_durable(journal_path()));
        EXPECT_EQ(stored_mark(7), i);
    }
}

TEST_F(PagerTest, nothing_reaches_the_file_before_the_journal_is_synced) {
    bool journal_synced = false;
    auto pager = open(always_synced());
    disk().set_observer([&](Operation operation, const std::string& path) {
        if (path == journal_path() && operation == Operation::kSync) journal_synced = true;
        if (path == journal_path() && operation == Operation::kWrite) journal_synced = false;
        if (path == path_ && operation == Operation::kWrite) {
            EXPECT_TRUE(journal_synced);
        }
    });
    for (std::uint8_t i = 1; i < 5; ++i) put(*pager, 7, i);
    disk().set_observer({});
    EXPECT_EQ(stored_mark(7), 4);
}

TEST_F(PagerTest, journal_past_its_limit_is_begun_anew_when_all_is_in_the_file) {
    PagerOptions options = rarely_synced();
    options.journal_limit_bytes = 20 * 1024;
    auto pager = open(options);
    const auto generation = [&] {
        JournalContent content;
        EXPECT_TRUE(read_journal(*disk().open(journal_path(), os::OpenMode::kReadSide), content));
        return content.binding.next_counter;
    };
    std::set<std::uint64_t> generations;
    std::size_t size = 0;
    for (int i = 1; i < 2000; ++i) {
        put(*pager, 7, static_cast<std::uint8_t>(i));
        if (generations.insert(generation()).second && generations.size() > 1) {
            EXPECT_EQ(stored_mark(7), static_cast<std::uint8_t>(i - 1)) << "what the older one held";
        }
        const std::size_t size_now = disk().content(journal_path()).size();
        EXPECT_GE(size_now, size) << "the file keeps its size";
        size = size_now;
    }
    EXPECT_GT(generations.size(), 3u);
    EXPECT_LT(size, options.journal_limit_bytes + 3 * jet4::kPageSize);
    EXPECT_EQ(disk().count(Operation::kTruncate), 0u);
    pager->close();
    EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
}

TEST_F(PagerTest, change_counter_moves_once_for_each_life_of_the_journal) {
    const auto counter = [](Pager& pager) {
        return load_u64(pager.read(jet4::kObjectsPage).bytes(), jet4::tdef::kFiller);
    };
    auto pager = open(rarely_synced());
    const std::uint64_t before = counter(*pager);
    put(*pager, 7, 1);
    const std::uint64_t first = counter(*pager);
    EXPECT_GT(first, before);
    put(*pager, 7, 2);
    put(*pager, 8, 2);
    EXPECT_EQ(counter(*pager), first);
    pager->close();
    pager = open(rarely_synced());
    EXPECT_EQ(counter(*pager), first) << "opening alone changes nothing";
    put(*pager, 7, 3);
    EXPECT_GT(counter(*pager), first);
}

TEST_F(PagerTest, transaction_without_changes_writes_nothing) {
    auto pager = open(always_synced());
    disk().reset_counts();
    {
        Transaction transaction(*pager);
        pager->read(7);
        transaction.commit();
    }
    { const Transaction rolled_back(*pager); }
    pager->close();
    EXPECT_EQ(disk().change_count(), 0u);
    EXPECT_FALSE(disk().exists(journal_path()));
}

TEST_F(PagerTest, transaction_that_changes_nothing_writes_nothing) {
    auto pager = open(always_synced());
    put(*pager, 7, 1);
    disk().reset_counts();
    put(*pager, 7, 1);
    {
        Transaction transaction(*pager);
        pager->modify(8).bytes()[kMarkAt] ^= 1;
        pager->modify(8).bytes()[kMarkAt] ^= 1;
        transaction.commit();
    }
    EXPECT_EQ(disk().change_count(), 0u);
    EXPECT_FALSE(pager->in_transaction());
    put(*pager, 7, 2);
    EXPECT_EQ(stored_mark(7), 2);
}

TEST_F(PagerTest, close_removes_the_journal_for_good) {
    auto pager = open(rarely_synced());
    for (std::uint8_t i = 1; i < 4; ++i) put(*pager, 7, i);
    pager->close();
    EXPECT_EQ(disk().crash(CrashMode::kDropUnsynced)->names(), std::vector<std::string>{path_});
    EXPECT_EQ(stored_mark(7), 3);
    EXPECT_TRUE(disk().is_durable(path_));
}

TEST_F(PagerTest, destruction_closes) {
    put(*open(rarely_synced()), 7, 9);
    EXPECT_FALSE(disk().exists(journal_path()));
    EXPECT_EQ(stored_mark(7), 9);
    EXPECT_TRUE(disk().is_durable(path_));
}

TEST_F(PagerTest, open_transaction_is_undone_by_close) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    pager->begin();
    pager->modify(7).bytes()[kMarkAt] = 2;
    pager->extend();
    pager->close();
    EXPECT_EQ(stored_mark(7), 1);
    EXPECT_EQ(disk().content(path_).size(), kPages * jet4::kPageSize);
}

TEST_F(PagerTest, read_only_sees_the_journal_and_writes_nothing) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    {
        Transaction transaction(*pager);
        pager->modify(7).bytes()[kMarkAt] = 2;
        pager->extend().bytes()[kMarkAt] = 3;
        transaction.commit();
    }
    const auto after = disk().crash(CrashMode::kKeepUnsynced);
    const UseFileSystem use(*after);
    const ByteVector file_before = after->content(path_);
    PagerOptions options;
    options.read_only = true;
    options.cache_pages = 2;
    auto reader = open(options);
    EXPECT_EQ(reader->page_count(), kPages + 1);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(mark(*reader, 7), 2);
        EXPECT_EQ(mark(*reader, kPages), 3);
        all_pages(*reader);
    }
    EXPECT_EQ(error_number([&] {
                  const Transaction transaction(*reader);
                  reader->modify(7);
              }),
              errors::kReadOnly);
    reader->close();
    EXPECT_EQ(after->change_count(), 0u);
    EXPECT_EQ(after->content(path_), file_before);
    EXPECT_TRUE(after->exists(journal_path()));
    EXPECT_EQ(mark(*open(rarely_synced()), 7), 2) << "the journal was still good";
}

TEST_F(PagerTest, misuse_is_refused) {
    auto pager = open(rarely_synced());
    EXPECT_EQ(error_number([&] { pager->modify(7); }), errors::kReserved);
    EXPECT_EQ(error_number([&] { pager->extend(); }), errors::kReserved);
    EXPECT_EQ(error_number([&] { pager->read(kPages); }), errors::kDamaged);
    const Transaction transaction(*pager);
    EXPECT_EQ(error_number([&] { pager->sync_point(); }), errors::kReserved);
    EXPECT_EQ(error_number([&] { pager->modify(kPages); }), errors::kDamaged);
}

TEST_F(PagerTest, rollback_tells_its_listener) {
    auto pager = open(rarely_synced());
    int told = 0;
    pager->set_rollback_listener([&] { ++told; });
    put(*pager, 7, 1);
    EXPECT_EQ(told, 0);
    {
        const Transaction outer(*pager);
        { const Transaction inner(*pager); }
        EXPECT_EQ(told, 1);
    }
    EXPECT_EQ(told, 2);
}

TEST_F(PagerTest, file_that_ends_inside_a_page_is_damaged_unless_the_journal_completes_it) {
    ByteVector bytes = disk().content(path_);
    bytes.resize(bytes.size() - 1);
    disk().set_content(path_, bytes);
    EXPECT_EQ(error_number([&] { open(rarely_synced()); }), errors::kDamaged);
    EXPECT_EQ(error_number([&] {
                  PagerOptions options;
                  options.read_only = true;
                  open(options);
              }),
              0);

    disk().set_content(path_, build_empty_database(create_options()));
    auto pager = open(rarely_synced());
    {
        Transaction transaction(*pager);
        pager->extend().bytes()[kMarkAt] = 5;
        transaction.commit();
    }
    auto after = disk().crash(CrashMode::kKeepUnsynced);
    ByteVector torn = after->content(path_);
    torn.resize(torn.size() - 1000);
    after->set_content(path_, torn);
    const UseFileSystem use(*after);
    EXPECT_EQ(mark(*open(rarely_synced()), kPages), 5);
    EXPECT_EQ(after->content(path_).size(), (kPages + 1) * jet4::kPageSize);
}

TEST_F(PagerTest, transaction_larger_than_the_cache_is_held_whole) {
    PagerOptions options = rarely_synced();
    options.cache_pages = 8;
    auto pager = open(options);
    constexpr std::uint32_t kMany = 3000;
    {
        Transaction transaction(*pager);
        for (std::uint32_t i = 0; i < kMany; ++i) pager->extend().bytes()[kMarkAt] = static_cast<std::uint8_t>(i);
        for (std::uint32_t i = 0; i < kMany; ++i) ASSERT_EQ(mark(*pager, kPages + i), static_cast<std::uint8_t>(i));
        transaction.commit();
    }
    pager->close();
    pager = open(options);
    for (std::uint32_t i = 0; i < kMany; ++i) ASSERT_EQ(mark(*pager, kPages + i), static_cast<std::uint8_t>(i));
}

class PagerSlow : public PagerFixture {};

TEST_F(PagerSlow, large_transaction_costs_in_proportion) {
    const auto seconds_for = [&](std::uint32_t pages) {
        disk().set_content(path_, build_empty_database(create_options()));
        PagerOptions options = rarely_synced();
        options.cache_pages = 64;
        auto pager = open(options);
        const auto begin = std::chrono::steady_clock::now();
        const Transaction transaction(*pager);
        for (std::uint32_t i = 0; i < pages; ++i) pager->extend();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    // What else the machine does can only slow it down.
    const auto best_of_three = [&](std::uint32_t pages) {
        return std::min({seconds_for(pages), seconds_for(pages), seconds_for(pages)});
    };
    EXPECT_LT(best_of_three(80000), 10 * best_of_three(20000)) << "four times the pages";
}

}  // namespace
}  // namespace jet
