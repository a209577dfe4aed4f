#include "tests/support/fault_file_system.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using os::FileError;
using os::FileFault;
using os::OpenMode;
using testing_support::CrashMode;
using testing_support::Fault;
using testing_support::FaultFileSystem;
using testing_support::Operation;
using Bytes = std::vector<std::uint8_t>;

template <typename Work>
FileFault fault_of(Work work) {
    try {
        work();
    } catch (const FileError& error) {
        return error.fault();
    }
    ADD_FAILURE() << "nothing was thrown";
    return FileFault::kIo;
}

class FaultFileSystemTest : public testing::Test {
protected:
    std::unique_ptr<os::File> make_durable(const std::string& path, const Bytes& bytes) {
        auto file = system_.open(path, OpenMode::kCreateExclusive);
        file->write(0, bytes);
        file->sync();
        system_.sync_folder_of(path);
        return file;
    }

    FaultFileSystem system_;
};

TEST_F(FaultFileSystemTest, bytes_written_are_read_back) {
    const auto file = system_.open("f/x", OpenMode::kCreateExclusive);
    file->write(2, Bytes{1, 2, 3});
    Bytes into(10, 9);
    EXPECT_EQ(file->read(1, into), 4u);
    EXPECT_EQ(into, (Bytes{0, 1, 2, 3, 9, 9, 9, 9, 9, 9}));
    EXPECT_EQ(file->read(5, into), 0u);
    file->truncate(1);
    EXPECT_EQ(file->size(), 1u);
}

TEST_F(FaultFileSystemTest, openings_answer_as_the_real_ones) {
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kExclusive); }), FileFault::kNotFound);
    EXPECT_EQ(fault_of([&] { system_.open("", OpenMode::kExclusive); }), FileFault::kBadPath);
    auto holder = system_.open("x", OpenMode::kCreateExclusive);
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kCreateExclusive); }), FileFault::kExists);
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kExclusive); }), FileFault::kLocked);
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kReadOnly); }), FileFault::kLocked);
    EXPECT_NO_THROW(system_.open("x", OpenMode::kOpenSide));
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kCreateSide); }), FileFault::kExists);
    EXPECT_EQ(fault_of([&] { system_.open("y", OpenMode::kOpenSide); }), FileFault::kNotFound);
    holder.reset();
    holder = system_.open("x", OpenMode::kReadOnly);
    EXPECT_NO_THROW(system_.open("x", OpenMode::kReadOnly));
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kExclusive); }), FileFault::kLocked);
    holder.reset();
    EXPECT_NO_THROW(system_.open("x", OpenMode::kExclusive));
    EXPECT_EQ(fault_of([&] { system_.open("x", OpenMode::kReadOnly)->write(0, Bytes{1}); }), FileFault::kAccessDenied);
}

TEST_F(FaultFileSystemTest, names_are_renamed_but_not_over_others_and_removed) {
    system_.set_content("a", {1});
    system_.set_content("b", {2});
    EXPECT_EQ(fault_of([&] { system_.rename("a", "b"); }), FileFault::kExists);
    system_.remove("b");
    system_.rename("a", "b");
    EXPECT_EQ(system_.names(), std::vector<std::string>{"b"});
    EXPECT_EQ(system_.content("b"), Bytes{1});
    system_.remove("b");
    EXPECT_FALSE(system_.exists("b"));
    EXPECT_EQ(fault_of([&] { system_.remove("b"); }), FileFault::kNotFound);
    EXPECT_EQ(fault_of([&] { system_.rename("b", "c"); }), FileFault::kNotFound);
}

TEST_F(FaultFileSystemTest, operations_are_counted_by_kind) {
    const auto file = make_durable("x", {1});
    file->write(0, Bytes{2});
    file->truncate(0);
    Bytes into(1);
    file->read(0, into);
    EXPECT_EQ(system_.count(Operation::kCreate), 1u);
    EXPECT_EQ(system_.count(Operation::kWrite), 2u);
    EXPECT_EQ(system_.count(Operation::kTruncate), 1u);
    EXPECT_EQ(system_.count(Operation::kSync), 1u);
    EXPECT_EQ(system_.count(Operation::kFolderSync), 1u);
    EXPECT_EQ(system_.count(Operation::kRead), 1u);
    EXPECT_EQ(system_.change_count(), 6u);
    system_.reset_counts();
    EXPECT_EQ(system_.change_count(), 0u);
}

TEST_F(FaultFileSystemTest, planned_fault_hits_the_nth_of_its_kind_once) {
    const auto file = make_durable("x", {1});
    system_.plan({.operation = Operation::kWrite, .nth = 2, .fault = FileFault::kDiskFull});
    file->write(0, Bytes{2});
    file->sync();
    EXPECT_EQ(fault_of([&] { file->write(0, Bytes{3}); }), FileFault::kDiskFull);
    EXPECT_EQ(system_.content("x"), Bytes{2});
    EXPECT_NO_THROW(file->write(0, Bytes{4}));
    EXPECT_EQ(system_.faults_raised(), 1u);
}

TEST_F(FaultFileSystemTest, lasting_fault_of_any_kind_hits_all_later_changes_but_no_reads) {
    const auto file = make_durable("x", {1});
    system_.plan({.nth = 2, .lasting = true});
    file->write(0, Bytes{2});
    EXPECT_EQ(fault_of([&] { file->sync(); }), FileFault::kIo);
    EXPECT_EQ(fault_of([&] { file->truncate(0); }), FileFault::kIo);
    EXPECT_EQ(fault_of([&] { system_.open("y", OpenMode::kCreateSide); }), FileFault::kIo);
    EXPECT_EQ(fault_of([&] { system_.remove("x"); }), FileFault::kIo);
    Bytes into(1);
    EXPECT_EQ(file->read(0, into), 1u);
    EXPECT_EQ(system_.faults_raised(), 4u);
    system_.clear_faults();
    EXPECT_NO_THROW(file->sync());
}

TEST_F(FaultFileSystemTest, half_written_fault_leaves_the_first_half) {
    const auto file = make_durable("x", {1, 1, 1, 1});
    system_.plan({.operation = Operation::kWrite, .fault = FileFault::kDiskFull, .half_written = true});
    EXPECT_EQ(fault_of([&] { file->write(0, Bytes{2, 2, 2, 2}); }), FileFault::kDiskFull);
    EXPECT_EQ(system_.content("x"), (Bytes{2, 2, 1, 1}));
}

TEST_F(FaultFileSystemTest, capacity_reached_is_disk_full) {
    system_.set_capacity(10);
    const auto file = make_durable("x", Bytes(8));
    EXPECT_EQ(fault_of([&] { file->write(7, Bytes(4)); }), FileFault::kDiskFull);
    EXPECT_EQ(fault_of([&] { file->truncate(11); }), FileFault::kDiskFull);
    EXPECT_NO_THROW(file->write(4, Bytes(6)));
    EXPECT_NO_THROW(file->write(0, Bytes(4))) << "no room needed";
}

TEST_F(FaultFileSystemTest, observer_sees_each_change_after_it_happened) {
    std::vector<Operation> seen;
    system_.set_observer([&](Operation operation, const std::string& path) {
        EXPECT_EQ(path, "x");
        if (operation == Operation::kWrite) {
            EXPECT_EQ(system_.content("x"), Bytes{1});
        }
        seen.push_back(operation);
    });
    make_durable("x", {1});
    EXPECT_EQ(seen, (std::vector<Operation>{Operation::kCreate, Operation::kWrite, Operation::kSync,
                                            Operation::kFolderSync}));
}

TEST_F(FaultFileSystemTest, power_loss_with_everything_synced_changes_nothing) {
    make_durable("x", {1, 2, 3});
    for (const CrashMode mode : {CrashMode::kKeepUnsynced, CrashMode::kDropUnsynced, CrashMode::kTearUnsynced}) {
        const auto after = system_.crash(mode);
        EXPECT_EQ(after->names(), std::vector<std::string>{"x"});
        EXPECT_EQ(after->content("x"), (Bytes{1, 2, 3}));
        EXPECT_NO_THROW(after->open("x", OpenMode::kExclusive)) << "locks are gone";
    }
}

TEST_F(FaultFileSystemTest, power_loss_keeps_or_drops_unsynced_writes_and_resizings) {
    const auto file = make_durable("x", {1, 2, 3});
    EXPECT_TRUE(system_.is_durable("x"));
    file->write(0, Bytes{9});
    file->truncate(2);
    EXPECT_FALSE(system_.is_durable("x"));
    EXPECT_EQ(system_.crash(CrashMode::kKeepUnsynced)->content("x"), (Bytes{9, 2}));
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->content("x"), (Bytes{1, 2, 3}));
    file->sync();
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->content("x"), (Bytes{9, 2}));
}

TEST_F(FaultFileSystemTest, failed_sync_makes_nothing_durable) {
    const auto file = make_durable("x", {1});
    file->write(0, Bytes{2});
    system_.plan({.operation = Operation::kSync});
    EXPECT_THROW(file->sync(), FileError);
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->content("x"), Bytes{1});
}

TEST_F(FaultFileSystemTest, names_without_folder_sync_are_not_durable) {
    make_durable("a/old", {1});
    system_.open("a/new", OpenMode::kCreateExclusive)->sync();
    system_.rename("a/old", "a/moved");
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->names(), std::vector<std::string>{"a/old"});
    EXPECT_EQ(system_.crash(CrashMode::kKeepUnsynced)->names(), (std::vector<std::string>{"a/moved", "a/new"}));
    system_.sync_folder_of("b/any");
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->names(), std::vector<std::string>{"a/old"});
    system_.sync_folder_of("a/any");
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->names(), (std::vector<std::string>{"a/moved", "a/new"}));
    system_.remove("a/new");
    EXPECT_EQ(system_.crash(CrashMode::kDropUnsynced)->names(), (std::vector<std::string>{"a/moved", "a/new"}));
}

TEST_F(FaultFileSystemTest, torn_loss_takes_whole_sectors_and_differs_by_seed) {
    const auto file = make_durable("x", Bytes(2048, 1));
    file->write(100, Bytes(1500, 2));
    std::set<Bytes> outcomes;
    for (std::uint32_t seed = 0; seed < 256; ++seed) {
        const Bytes torn = system_.crash(CrashMode::kTearUnsynced, seed)->content("x");
        EXPECT_EQ(torn, system_.crash(CrashMode::kTearUnsynced, seed)->content("x"));
        ASSERT_EQ(torn.size(), 2048u);
        for (std::size_t at = 0; at < torn.size(); ++at) {
            const bool concerned = at >= 100 && at < 1600;
            const std::size_t first = std::max<std::size_t>(at / 512 * 512, 100);
            ASSERT_EQ(torn[at], concerned ? torn[first] : 1) << at;
        }
        outcomes.insert(torn);
    }
    EXPECT_EQ(outcomes.size(), 16u) << "four sectors, each with two outcomes";
}

TEST_F(FaultFileSystemTest, torn_loss_of_growth_may_leave_zeros) {
    const auto file = make_durable("x", Bytes{});
    file->write(0, Bytes(1024, 2));
    std::set<Bytes> outcomes;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        outcomes.insert(system_.crash(CrashMode::kTearUnsynced, seed)->content("x"));
    }
    Bytes second_only(1024, 0);
    std::fill(second_only.begin() + 512, second_only.end(), std::uint8_t{2});
    EXPECT_TRUE(outcomes.contains(Bytes{}));
    EXPECT_TRUE(outcomes.contains(Bytes(1024, 0)));
    EXPECT_TRUE(outcomes.contains(Bytes(512, 2)));
    EXPECT_TRUE(outcomes.contains(second_only));
    EXPECT_TRUE(outcomes.contains(Bytes(1024, 2)));
}

TEST_F(FaultFileSystemTest, torn_loss_keeps_some_names) {
    system_.open("a", OpenMode::kCreateExclusive);
    system_.open("b", OpenMode::kCreateExclusive);
    std::set<std::vector<std::string>> outcomes;
    for (std::uint32_t seed = 0; seed < 256; ++seed) {
        outcomes.insert(system_.crash(CrashMode::kTearUnsynced, seed)->names());
    }
    EXPECT_EQ(outcomes.size(), 4u);
}

TEST_F(FaultFileSystemTest, crash_leaves_the_running_system_undisturbed) {
    const auto file = make_durable("x", {1});
    const auto after = system_.crash(CrashMode::kDropUnsynced);
    file->write(0, Bytes{2});
    file->sync();
    EXPECT_EQ(after->content("x"), Bytes{1});
    after->open("x", OpenMode::kExclusive)->write(0, Bytes{3});
    EXPECT_EQ(system_.content("x"), Bytes{2});
}

TEST_F(FaultFileSystemTest, use_puts_the_system_in_place_and_back) {
    {
        const testing_support::UseFileSystem use(system_);
        EXPECT_EQ(&os::file_system(), &system_);
    }
    EXPECT_EQ(&os::file_system(), &os::native_file_system());
}

}  // namespace
