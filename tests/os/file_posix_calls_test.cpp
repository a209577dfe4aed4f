// Rare behaviour of the system: interrupted calls, short transfers, a name removed at the worst moment, a sync that
// fails. This program replaces the calls and produces it on demand.
#ifndef _WIN32
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "os/file.h"
#include "tests/os/fault_of.h"
#include "tests/support/temp_folder.h"

namespace {

struct Calls {
    int interruptions = 0;                                  // this many calls fail with EINTR first
    std::size_t most_bytes = static_cast<std::size_t>(-1);  // per transfer
    int sync_error = 0;                                     // errno of every sync; 0: none
    bool writes_take_nothing = false;
    std::function<void()> before_lock;
    int status_error = 0;  // errno of every lstat; 0: none
    int rename_error = 0;  // errno of every renameat2
    int link_error = 0;    // errno of every link
    int made = 0;
};
Calls calls;

bool is_interrupted() {
    ++calls.made;
    if (calls.interruptions == 0) return false;
    --calls.interruptions;
    errno = EINTR;
    return true;
}

}  // namespace

extern "C" {

int flock(int fd, int operation) noexcept {
    if (is_interrupted()) return -1;
    if (calls.before_lock && (operation & LOCK_UN) == 0) calls.before_lock();
    return static_cast<int>(::syscall(SYS_flock, fd, operation));
}

ssize_t pread(int fd, void* into, size_t count, off_t at) {
    if (is_interrupted()) return -1;
    return ::syscall(SYS_pread64, fd, into, std::min(count, calls.most_bytes), at);
}

ssize_t pwrite(int fd, const void* bytes, size_t count, off_t at) {
    if (is_interrupted()) return -1;
    if (calls.writes_take_nothing) return 0;
    return ::syscall(SYS_pwrite64, fd, bytes, std::min(count, calls.most_bytes), at);
}

int lstat(const char* path, struct stat* info) noexcept {
    if (calls.status_error != 0) {
        errno = calls.status_error;
        return -1;
    }
    return ::fstatat(AT_FDCWD, path, info, AT_SYMLINK_NOFOLLOW);
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned flags) noexcept {
    if (calls.rename_error != 0) {
        errno = calls.rename_error;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_renameat2, from_folder, from, to_folder, to, flags));
}

int link(const char* from, const char* to) noexcept {
    if (calls.link_error != 0) {
        errno = calls.link_error;
        return -1;
    }
    return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int fdatasync(int fd) {
    if (is_interrupted()) return -1;
    if (calls.sync_error != 0) {
        errno = calls.sync_error;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fdatasync, fd));
}
}

namespace {

using os::FileError;
using os::FileFault;
using os::OpenMode;
using testing_support::fault_of;
using Bytes = std::vector<std::uint8_t>;

class PosixCalls : public testing::Test {
protected:
    ~PosixCalls() override { calls = {}; }

    Bytes bytes_ = [] {
        Bytes bytes(1000);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
        return bytes;
    }();
    testing_support::TempFolder folder_;
    std::string path_ = folder_.file("x.mdb");
    os::FileSystem& system_ = os::native_file_system();
};

TEST_F(PosixCalls, short_transfers_are_continued) {
    calls.most_bytes = 7;
    const auto file = system_.open(path_, OpenMode::kCreateExclusive);
    calls.made = 0;
    file->write(5, bytes_);
    EXPECT_EQ(calls.made, 143) << "a thousand bytes, seven at a time";
    Bytes again(1000);
    EXPECT_EQ(file->read(5, again), 1000u);
    EXPECT_EQ(again, bytes_);
    EXPECT_EQ(file->read(995, again), 10u);
}

TEST_F(PosixCalls, interrupted_calls_are_repeated) {
    calls.interruptions = 3;
    const auto file = system_.open(path_, OpenMode::kCreateExclusive);
    EXPECT_EQ(calls.interruptions, 0) << "the lock was taken";
    EXPECT_EQ(fault_of([&] { system_.open(path_, OpenMode::kExclusive); }), FileFault::kLocked);
    calls.interruptions = 3;
    file->write(0, bytes_);
    EXPECT_EQ(calls.interruptions, 0);
    calls.interruptions = 3;
    Bytes again(1000);
    EXPECT_EQ(file->read(0, again), 1000u);
    EXPECT_EQ(again, bytes_);
    EXPECT_EQ(calls.interruptions, 0);
    calls.interruptions = 3;
    EXPECT_NO_THROW(file->sync());
    EXPECT_EQ(calls.interruptions, 0);
}

TEST_F(PosixCalls, write_that_takes_nothing_is_disk_full) {
    const auto file = system_.open(path_, OpenMode::kCreateExclusive);
    calls.writes_take_nothing = true;
    EXPECT_EQ(fault_of([&] { file->write(0, bytes_); }), FileFault::kDiskFull);
}

TEST_F(PosixCalls, sync_that_fails_is_reported) {
    const auto file = system_.open(path_, OpenMode::kCreateExclusive);
    calls.sync_error = EIO;
    EXPECT_EQ(fault_of([&] { file->sync(); }), FileFault::kIo);
    calls.sync_error = ENOSPC;
    EXPECT_EQ(fault_of([&] { file->sync(); }), FileFault::kDiskFull);
}

TEST_F(PosixCalls, name_taken_away_before_the_lock_is_not_found) {
    system_.open(path_, OpenMode::kCreateExclusive);
    calls.before_lock = [&] { system_.remove(path_); };
    EXPECT_EQ(fault_of([&] { system_.open(path_, OpenMode::kExclusive); }), FileFault::kNotFound);
}

TEST_F(PosixCalls, name_given_to_another_file_before_the_lock_is_not_found) {
    const std::string other = folder_.file("other");
    system_.open(path_, OpenMode::kCreateExclusive);
    system_.open(other, OpenMode::kCreateExclusive);
    calls.before_lock = [&] { std::rename(other.c_str(), path_.c_str()); };
    EXPECT_EQ(fault_of([&] { system_.open(path_, OpenMode::kExclusive); }), FileFault::kNotFound);
    EXPECT_NO_THROW(system_.open(path_, OpenMode::kExclusive)) << "the file that has the name now";
}

TEST_F(PosixCalls, state_that_cannot_be_told_is_an_error_and_not_absence) {
    system_.open(path_, OpenMode::kCreateExclusive);
    for (const int code : {EIO, EACCES, ELOOP, ENAMETOOLONG, ESTALE}) {
        calls.status_error = code;
        EXPECT_THROW(system_.exists(path_), FileError) << code;
    }
    for (const int code : {ENOENT, ENOTDIR}) {
        calls.status_error = code;
        EXPECT_FALSE(system_.exists(path_));
    }
}

// On systems that cannot rename without replacing: by a second link, or by a placeholder.
TEST_F(PosixCalls, rename_never_replaces_on_lesser_file_systems_either) {
    const std::string target = folder_.file("y.mdb");
    for (const int link_error : {0, EPERM}) {
        calls = {};
        calls.rename_error = EINVAL;
        calls.link_error = link_error;
        system_.open(path_, OpenMode::kCreateExclusive)->write(0, Bytes{1, 2, 3});
        system_.open(target, OpenMode::kCreateExclusive)->write(0, Bytes{4});
        EXPECT_EQ(fault_of([&] { system_.rename(path_, target); }), FileFault::kExists);
        EXPECT_EQ(system_.open(target, OpenMode::kReadOnly)->size(), 1u);
        system_.remove(target);
        system_.rename(path_, target);
        EXPECT_FALSE(system_.exists(path_));
        EXPECT_EQ(system_.open(target, OpenMode::kReadOnly)->size(), 3u);
        system_.remove(target);
    }
}

}  // namespace
#endif
