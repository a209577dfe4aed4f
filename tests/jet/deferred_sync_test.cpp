// What a burst of commits leaves unsynced is brought to the disk without another call.
#include "jet/pages/deferred_sync.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/jet/pager_fixture.h"
#include "tests/support/temp_folder.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace jet {
namespace {

using namespace std::chrono_literals;
using testing_support::CrashMode;
using testing_support::Operation;

class DeferredSyncTest : public PagerFixture {
protected:
    // What page 7 would hold if the power failed now.
    std::uint8_t mark_after_power_loss() {
        const auto after = disk().crash(CrashMode::kDropUnsynced);
        const testing_support::UseFileSystem use(*after);
        return mark(*open(rarely_synced()), 7);
    }
};

TEST_F(DeferredSyncTest, tail_of_a_burst_is_on_the_disk_in_time) {
    auto pager = open(PagerOptions{});
    for (std::uint8_t i = 1; i <= 3; ++i) {
        put(*pager, 7, i);
        disk().clock().advance(2ms);
    }
    EXPECT_EQ(mark_after_power_loss(), 1) << "the first is a sync point, the others wait";
    disk().clock().advance(244ms);
    EXPECT_EQ(mark_after_power_loss(), 3);
}

TEST_F(DeferredSyncTest, long_burst_is_synced_on_its_way) {
    auto pager = open(rarely_synced());
    put(*pager, 7, 1);
    std::uint8_t last = 1;
    for (int commits = 0; commits < 200; ++commits) {
        Transaction transaction(*pager);
        MutablePage page = pager->modify(7);
        std::fill(page.bytes().begin() + 64, page.bytes().end(), ++last);
        transaction.commit();
    }
    EXPECT_EQ(mark_after_power_loss(), 1);
    disk().clock().advance(0ms);
    EXPECT_GT(mark_after_power_loss(), 100) << "asked for without delay, after so many bytes";
}

TEST_F(DeferredSyncTest, nothing_is_pending_when_nothing_is_unsynced) {
    auto pager = open(PagerOptions{});
    EXPECT_EQ(disk().clock().pending(), 0u);
    put(*pager, 7, 1);
    EXPECT_EQ(disk().clock().pending(), 0u) << "a commit that is a sync point needs nobody";
    put(*pager, 7, 2);
    EXPECT_EQ(disk().clock().pending(), 1u);
    disk().clock().advance(1s);
    EXPECT_EQ(disk().clock().pending(), 0u);
    const std::uint64_t syncs = disk().count(Operation::kSync);
    disk().clock().advance(1h);
    EXPECT_EQ(disk().count(Operation::kSync), syncs);
    put(*pager, 7, 3);
    put(*pager, 7, 4);
    pager->close();
    EXPECT_EQ(disk().clock().pending(), 0u) << "closing takes it along";
}

TEST_F(DeferredSyncTest, edits_keep_their_own_sync_points) {
    auto pager = open(PagerOptions{});
    put(*pager, 7, 1);
    disk().clock().advance(249ms);
    put(*pager, 7, 2);
    EXPECT_EQ(stored_mark(7), 1);
    disk().clock().advance(1ms);
    put(*pager, 7, 3);
    EXPECT_EQ(stored_mark(7), 3);
}

TEST_F(DeferredSyncTest, touches_no_page_of_the_file) {
    auto pager = open(PagerOptions{});
    put(*pager, 7, 1);
    put(*pager, 7, 2);
    disk().clock().advance(1s);
    EXPECT_EQ(stored_mark(7), 1);
    EXPECT_EQ(mark_after_power_loss(), 2);
}

TEST_F(DeferredSyncTest, failed_sync_marks_the_file_as_broken_until_it_is_opened_again) {
    auto pager = open(PagerOptions{});
    put(*pager, 7, 1);
    put(*pager, 7, 2);
    disk().plan({.operation = Operation::kSync});
    disk().clock().advance(1s);
    EXPECT_EQ(disk().faults_raised(), 1u);
    EXPECT_EQ(error_number([&] { put(*pager, 7, 3); }), errors::kDiskError);
    EXPECT_EQ(mark(*pager, 7), 2) << "reading goes on";
    EXPECT_EQ(error_number([&] { pager->close(); }), errors::kDiskError);
    disk().clear_faults();
    pager = open(PagerOptions{});
    EXPECT_EQ(mark(*pager, 7), 2);
    put(*pager, 7, 4);
    EXPECT_EQ(mark(*pager, 7), 4);
}

TEST_F(DeferredSyncTest, without_a_thread_to_do_it_each_commit_syncs_itself) {
    disk().clock().refuse_alarms(true);
    auto pager = open(PagerOptions{});
    for (std::uint8_t i = 1; i <= 5; ++i) {
        put(*pager, 7, i);
        EXPECT_EQ(mark_after_power_loss(), i);
    }
}

TEST_F(DeferredSyncTest, journal_that_was_emptied_meanwhile_is_left_alone) {
    PagerOptions options;
    options.journal_limit_bytes = 1;
    auto pager = open(options);
    put(*pager, 7, 1);
    put(*pager, 7, 2);
    disk().clock().advance(1s);
    put(*pager, 7, 3);
    pager->close();
    EXPECT_EQ(stored_mark(7), 3);
    EXPECT_EQ(disk().names(), std::vector<std::string>{path_});
}

// On the machine's own files and clock.
class DeferredSyncOnDisk : public ::testing::Test {
protected:
    DeferredSyncOnDisk() {
        CreateOptions options;
        options.creation_date = 42329.5;
        Database::create(path_, options)->close();
    }
    std::unique_ptr<Pager> open() const {
        return std::make_unique<Pager>(os::file_system(), os::file_system().open(path_, os::OpenMode::kExclusive),
                                       path_);
    }
    static void put(Pager& pager, std::uint8_t mark) {
        Transaction transaction(pager);
        pager.modify(7).bytes()[3000] = mark;
        transaction.commit();
    }

    testing_support::TempFolder folder_;
    std::string path_ = folder_.file("a.mdb");
};

TEST_F(DeferredSyncOnDisk, work_goes_on_beside_it_and_closing_ends_it) {
    auto pager = open();
    const auto end = std::chrono::steady_clock::now() + 600ms;
    std::uint8_t mark = 0;
    while (std::chrono::steady_clock::now() < end) {
        put(*pager, ++mark);
        if (mark % 16 == 0) std::this_thread::sleep_for(5ms);
    }
    pager->close();
    pager = open();
    EXPECT_EQ(pager->read(7).bytes()[3000], mark);
}

#ifndef _WIN32
std::size_t threads_of_this_process() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator()));
}

TEST_F(DeferredSyncOnDisk, thread_is_made_when_something_waits_and_gone_after_closing) {
    const std::size_t before = threads_of_this_process();
    auto pager = open();
    put(*pager, 1);
    EXPECT_EQ(threads_of_this_process(), before);
    put(*pager, 2);
    EXPECT_EQ(threads_of_this_process(), before + 1);
    pager->close();
    EXPECT_EQ(threads_of_this_process(), before);
}

// A child that ends by exit() runs the ends of all objects: what is the parent's stays.
TEST_F(DeferredSyncOnDisk, child_of_a_fork_that_closes_or_commits_changes_nothing_of_the_parents) {
    auto pager = open();
    put(*pager, 1);
    put(*pager, 2);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        bool refused = false;
        try {
            put(*pager, 9);
        } catch (const Error& error) {
            refused = error.number() == errors::kAccessDenied;
        }
        pager.reset();
        ::_exit(refused ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(std::filesystem::exists(path_ + "-journal"));
    put(*pager, 3);
    // As after a crash: a copy of both files.
    const std::string copy = folder_.file("copy.mdb");
    std::filesystem::copy_file(path_, copy);
    std::filesystem::copy_file(path_ + "-journal", copy + "-journal");
    Pager found(os::file_system(), os::file_system().open(copy, os::OpenMode::kExclusive), copy);
    EXPECT_EQ(found.read(7).bytes()[3000], 3);
    pager->close();
    EXPECT_FALSE(std::filesystem::exists(path_ + "-journal"));
}

TEST_F(DeferredSyncOnDisk, child_of_a_fork_makes_no_journal) {
    auto pager = open();
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            put(*pager, 9);
        } catch (const Error&) {
            ::_exit(0);
        }
        ::_exit(1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(std::filesystem::exists(path_ + "-journal"));
}

TEST_F(DeferredSyncOnDisk, link_in_the_journals_place_is_set_aside_and_its_target_kept) {
    const std::string victim = folder_.file("victim");
    std::ofstream(victim) << "precious";
    std::filesystem::create_symlink(victim, path_ + "-journal");
    auto pager = open();
    put(*pager, 1);
    pager->close();
    EXPECT_EQ(std::filesystem::file_size(victim), 8u);
    EXPECT_TRUE(std::filesystem::is_symlink(path_ + "-journal-set-aside"));
    EXPECT_EQ(open()->read(7).bytes()[3000], 1);
}

TEST_F(DeferredSyncOnDisk, journal_takes_the_permissions_of_the_file) {
    const auto owner_only = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    std::filesystem::permissions(path_, owner_only);
    auto pager = open();
    put(*pager, 1);
    EXPECT_EQ(std::filesystem::status(path_ + "-journal").permissions(), owner_only);
}
#endif

}  // namespace
}  // namespace jet
