// A pager whose disk refuses one thing.
#include <gtest/gtest.h>

#include "tests/jet/pager_fixture.h"

namespace jet {
namespace {

using testing_support::Fault;
using testing_support::Operation;

using PagerFault = PagerFixture;

TEST_F(PagerFault, refused_append_undoes_the_commit_and_the_next_one_stands) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    for (const bool half_written : {false, true}) {
        disk().plan({.operation = Operation::kWrite, .fault = os::FileFault::kDiskFull, .half_written = half_written});
        EXPECT_EQ(error_number([&] { put(*pager, 7, 2); }), errors::kDiskFull);
        EXPECT_EQ(mark(*pager, 7), 1);
        EXPECT_FALSE(pager->in_transaction());
    }
    put(*pager, 8, 3);
    const auto after = disk().crash(testing_support::CrashMode::kKeepUnsynced);
    pager->close();
    EXPECT_EQ(stored_mark(7), 1);
    EXPECT_EQ(stored_mark(8), 3);
    const testing_support::UseFileSystem use(*after);
    const auto replayed = open(rarely_synced());
    EXPECT_EQ(mark(*replayed, 7), 1);
    EXPECT_EQ(mark(*replayed, 8), 3);
}

TEST_F(PagerFault, refused_first_append_leaves_the_counter_alone) {
    auto pager = open(rarely_synced());
    disk().plan({.operation = Operation::kWrite});
    EXPECT_EQ(error_number([&] { put(*pager, 7, 2); }), errors::kDiskError);
    put(*pager, 7, 3);
    pager->close();
    EXPECT_EQ(stored_mark(7), 3);
}

TEST_F(PagerFault, refused_sync_of_the_journal_ends_writing_until_the_next_opening) {
    auto pager = open(always_synced());
    put(*pager, 7, 1);
    disk().plan({.operation = Operation::kSync});
    EXPECT_EQ(error_number([&] { put(*pager, 7, 2); }), errors::kDiskError);
    EXPECT_EQ(mark(*pager, 7), 1);
    EXPECT_EQ(error_number([&] { put(*pager, 7, 3); }), errors::kDiskError);
    EXPECT_EQ(error_number([&] { pager->sync_point(); }), errors::kDiskError);
    EXPECT_EQ(mark(*pager, 7), 1) << "reading goes on";
    EXPECT_EQ(error_number([&] { pager->close(); }), errors::kDiskError);
    EXPECT_TRUE(disk().exists(journal_path()));
    pager = open(always_synced());
    EXPECT_EQ(mark(*pager, 7), 1);
    put(*pager, 7, 4);
    pager->close();
    EXPECT_EQ(stored_mark(7), 4);
}

TEST_F(PagerFault, refused_write_back_does_not_undo_the_commit) {
    auto pager = open(always_synced());
    put(*pager, 7, 1);
    // The second write of a commit goes to the .mdb.
    disk().plan({.operation = Operation::kWrite, .nth = 2, .fault = os::FileFault::kDiskFull});
    EXPECT_EQ(error_number([&] { put(*pager, 7, 2); }), 0);
    EXPECT_EQ(disk().faults_raised(), 1u);
    EXPECT_EQ(stored_mark(7), 1);
    EXPECT_EQ(mark(*pager, 7), 2);
    put(*pager, 8, 3);
    EXPECT_EQ(stored_mark(7), 2) << "the next sync point takes it along";
}

TEST_F(PagerFault, explicit_sync_point_reports_the_disk) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    put(*pager, 7, 2);
    disk().plan({.operation = Operation::kWrite, .fault = os::FileFault::kDiskFull});
    EXPECT_EQ(error_number([&] { pager->sync_point(); }), errors::kDiskFull);
    EXPECT_EQ(error_number([&] { pager->sync_point(); }), 0);
    EXPECT_EQ(stored_mark(7), 2);
}

TEST_F(PagerFault, refused_close_leaves_the_journal_to_the_next_opening) {
    for (const Operation operation : {Operation::kWrite, Operation::kSync, Operation::kFolderSync}) {
        SCOPED_TRACE(static_cast<int>(operation));
        auto pager = open(rarely_synced());
        put(*pager, 7, 1);
        put(*pager, 7, static_cast<std::uint8_t>(operation));
        disk().plan({.operation = operation, .lasting = true});
        EXPECT_EQ(error_number([&] { pager->close(); }), errors::kDiskError);
        disk().clear_faults();
        pager = open(rarely_synced());
        EXPECT_EQ(mark(*pager, 7), static_cast<std::uint8_t>(operation));
        pager->close();
        EXPECT_FALSE(disk().exists(journal_path()));
    }
}

TEST_F(PagerFault, full_disk_is_reported_and_room_made_later_is_used) {
    auto pager = open(always_synced());
    put(*pager, 7, 1);
    disk().set_capacity(disk().content(path_).size() + disk().content(journal_path()).size() + 1000);
    const auto extend = [&] {
        Transaction transaction(*pager);
        pager->extend().bytes()[kMarkAt] = 5;
        transaction.commit();
    };
    EXPECT_EQ(error_number(extend), errors::kDiskFull);
    EXPECT_EQ(pager->page_count(), kPages);
    disk().set_capacity(1u << 20);
    EXPECT_EQ(error_number(extend), 0);
    pager->close();
    EXPECT_EQ(stored_mark(kPages), 5);
}

TEST_F(PagerFault, refused_read_is_an_engine_error_and_no_more) {
    auto pager = open(rarely_synced());
    disk().plan({.operation = Operation::kRead});
    EXPECT_EQ(error_number([&] { pager->read(7); }), errors::kDiskError);
    EXPECT_EQ(error_number([&] { pager->read(7); }), 0);
    disk().plan({.operation = Operation::kRead});
    EXPECT_EQ(error_number([&] { put(*pager, 3, 1); }), errors::kDiskError);
    EXPECT_EQ(error_number([&] { put(*pager, 3, 1); }), 0);
}

// What the disk refuses may be a neighbour that nobody has asked for.
TEST_F(PagerFault, page_refused_with_its_neighbours_is_read_alone) {
    auto pager = open(rarely_synced());
    for (PageNumber page_no = 1; page_no < 8; ++page_no) pager->read(page_no);
    disk().plan({.operation = Operation::kRead});
    const std::uint64_t before = disk().count(Operation::kRead);
    EXPECT_EQ(error_number([&] { pager->read(8); }), 0);
    EXPECT_EQ(disk().count(Operation::kRead), before + 2);
    EXPECT_EQ(error_number([&] { pager->read(9); }), 0);
}

TEST_F(PagerFault, refused_replay_is_repeated_by_the_next_opening) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    put(*pager, 7, 2);
    put(*pager, 9, 2);
    for (const Operation operation : {Operation::kRead, Operation::kOpen, Operation::kWrite, Operation::kTruncate,
                                      Operation::kSync, Operation::kRemove, Operation::kFolderSync}) {
        const auto after = disk().crash(testing_support::CrashMode::kKeepUnsynced);
        const testing_support::UseFileSystem use(*after);
        for (std::uint64_t nth = 1;; ++nth) {
            SCOPED_TRACE(std::to_string(static_cast<int>(operation)) + " " + std::to_string(nth));
            auto file = after->open(path_, os::OpenMode::kExclusive);
            after->plan({.operation = operation, .nth = nth});
            const int error =
                error_number([&] { const Pager refused(*after, std::move(file), path_, rarely_synced()); });
            after->clear_faults();
            if (after->faults_raised() == 0) break;
            // A journal that cannot be removed is emptied instead.
            EXPECT_EQ(error, operation == Operation::kRemove ? 0 : errors::kDiskError);
            if (operation == Operation::kFolderSync) break;  // the journal's content is in place by then
        }
        const auto again = open(rarely_synced());
        EXPECT_EQ(mark(*again, 7), 2);
        EXPECT_EQ(mark(*again, 9), 2);
    }
}

}  // namespace
}  // namespace jet
