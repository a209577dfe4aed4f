// Faults that need a separate process or file system: second processes, permissions, limits, full and read-only disks.
// Each runs in a forked child that answers by its exit code.
#ifndef _WIN32
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "os/file.h"
#include "os/system_error.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using os::FileError;
using os::FileFault;
using os::OpenMode;
using testing_support::TempFolder;
using Bytes = std::vector<std::uint8_t>;

constexpr int kNoFault = 100;
constexpr int kCannotBeShown = 101;
constexpr int kOtherFailure = 102;

// Exit code of a forked child that runs `work`: the fault that it throws, or what it returns.
template <typename Work>
int in_child(Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
        int code = kOtherFailure;
        try {
            code = work();
        } catch (const FileError& error) {
            code = static_cast<int>(error.fault());
        } catch (...) {
        }
        ::_exit(code);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

int code_of(FileFault fault) { return static_cast<int>(fault); }

os::FileSystem& system_in_use() { return os::native_file_system(); }

class PosixFiles : public testing::Test {
protected:
    TempFolder folder_;
    std::string path_ = folder_.file("x.mdb");
};

TEST_F(PosixFiles, locked_file_opened_by_a_second_process_is_locked_until_released) {
    auto holder = system_in_use().open(path_, OpenMode::kCreateExclusive);
    const auto open_in_child = [&] {
        return in_child([&] {
            system_in_use().open(path_, OpenMode::kExclusive);
            return kNoFault;
        });
    };
    EXPECT_EQ(open_in_child(), code_of(FileFault::kLocked));
    holder.reset();
    EXPECT_EQ(open_in_child(), kNoFault);
}

TEST_F(PosixFiles, lock_of_a_killed_process_is_gone) {
    system_in_use().open(path_, OpenMode::kCreateExclusive);
    EXPECT_EQ(in_child([&] {
                  const auto holder = system_in_use().open(path_, OpenMode::kExclusive);
                  ::raise(SIGKILL);
                  return kNoFault;
              }),
              1000 + SIGKILL);
    EXPECT_NO_THROW(system_in_use().open(path_, OpenMode::kExclusive));
}

TEST_F(PosixFiles, lock_is_not_inherited_by_a_started_program) {
    auto holder = system_in_use().open(path_, OpenMode::kCreateExclusive);
    int started[2];
    ASSERT_EQ(::pipe(started), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // The write end closes on exec: the parent's read ends when the new program runs.
        ::close(started[0]);
        ::fcntl(started[1], F_SETFD, FD_CLOEXEC);
        ::execl("/bin/sleep", "sleep", "60", nullptr);
        ::_exit(127);
    }
    ::close(started[1]);
    char byte = 0;
    EXPECT_EQ(::read(started[0], &byte, 1), 0);
    ::close(started[0]);
    holder.reset();
    EXPECT_NO_THROW(system_in_use().open(path_, OpenMode::kExclusive));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

TEST_F(PosixFiles, no_right_to_the_file_or_folder_is_access_denied) {
    std::ofstream(path_) << "x";
    const std::string closed = folder_.file("closed");
    fs::create_directory(closed);
    ::chmod(path_.c_str(), 0444);
    ::chmod(closed.c_str(), 0555);
    ::chmod(folder_.path().c_str(), 0755);
    const auto as_nobody = [&](auto work) {
        return in_child([&] {
            constexpr uid_t kNobody = 65534;
            if (::geteuid() == 0 && ::setuid(kNobody) != 0) return kCannotBeShown;
            work();
            return kNoFault;
        });
    };
    const int denied = code_of(FileFault::kAccessDenied);
    EXPECT_EQ(as_nobody([&] { system_in_use().open(path_, OpenMode::kReadOnly); }), kNoFault);
    EXPECT_EQ(as_nobody([&] { system_in_use().open(path_, OpenMode::kExclusive); }), denied);
    EXPECT_EQ(as_nobody([&] { system_in_use().open(path_, OpenMode::kOpenSide); }), denied);
    EXPECT_EQ(as_nobody([&] { system_in_use().open(closed + "/y", OpenMode::kCreateExclusive); }), denied);
}

TEST_F(PosixFiles, file_size_limit_is_disk_full_and_no_signal) {
    const int code = in_child([&] {
        const auto file = system_in_use().open(path_, OpenMode::kCreateExclusive);
        constexpr rlim_t kLimit = 8192;
        const struct rlimit limit { kLimit, kLimit };
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return kCannotBeShown;
        const Bytes page(4096);
        file->write(0, page);
        file->write(4096, page);
        try {
            file->truncate(kLimit + 1);
            return kNoFault;
        } catch (const FileError& error) {
            if (error.fault() != FileFault::kDiskFull) return kOtherFailure;
        }
        file->write(4096 + 1, page);
        return kNoFault;
    });
    EXPECT_EQ(code, code_of(FileFault::kDiskFull));
    EXPECT_EQ(fs::file_size(path_), 8192u);
}

// Runs `work` in a child whose `folder` is a small separate disk.
template <typename Work>
int on_small_disk(const std::string& folder, Work work) {
    return in_child([&] {
        const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS;
        if (::unshare(spaces) != 0) return kCannotBeShown;
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
        if (::mount("none", folder.c_str(), "tmpfs", 0, "size=64k") != 0) return kCannotBeShown;
        return work();
    });
}

TEST_F(PosixFiles, full_disk_is_disk_full) {
    const int code = on_small_disk(folder_.path(), [&] {
        const auto file = system_in_use().open(path_, OpenMode::kCreateExclusive);
        const Bytes page(4096, 7);
        for (std::uint64_t at = 0; at < (1u << 20); at += page.size()) file->write(at, page);
        return kNoFault;
    });
    if (code == kCannotBeShown) GTEST_SKIP() << "no right to mount a small disk";
    EXPECT_EQ(code, code_of(FileFault::kDiskFull));
}

TEST_F(PosixFiles, read_only_disk_is_access_denied) {
    const int code = on_small_disk(folder_.path(), [&] {
        system_in_use().open(path_, OpenMode::kCreateExclusive);
        if (::mount("none", folder_.path().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
            return kCannotBeShown;
        }
        if (system_in_use().open(path_, OpenMode::kReadOnly)->size() != 0) return kOtherFailure;
        for (const OpenMode mode : {OpenMode::kExclusive, OpenMode::kOpenSide}) {
            try {
                system_in_use().open(path_, mode);
                return kNoFault;
            } catch (const FileError& error) {
                if (error.fault() != FileFault::kAccessDenied) return kOtherFailure;
            }
        }
        system_in_use().open(folder_.file("y"), OpenMode::kCreateExclusive);
        return kNoFault;
    });
    if (code == kCannotBeShown) GTEST_SKIP() << "no right to mount a small disk";
    EXPECT_EQ(code, code_of(FileFault::kAccessDenied));
}

TEST_F(PosixFiles, pipe_of_that_name_is_refused_without_waiting) {
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    const int code = in_child([&] {
        ::alarm(20);
        system_in_use().open(path_, OpenMode::kReadOnly);
        return kNoFault;
    });
    EXPECT_EQ(code, code_of(FileFault::kAccessDenied));
}

TEST_F(PosixFiles, path_through_a_file_or_too_long_is_bad_path) {
    std::ofstream(path_) << "x";
    for (const std::string& path : {path_ + "/y", folder_.file(std::string(5000, 'n'))}) {
        try {
            system_in_use().open(path, OpenMode::kReadOnly);
            ADD_FAILURE() << path;
        } catch (const FileError& error) {
            EXPECT_EQ(error.fault(), FileFault::kBadPath) << error.what();
        }
    }
}

FileFault fault_of_opening(const std::string& path, OpenMode mode) {
    try {
        system_in_use().open(path, mode);
    } catch (const FileError& error) {
        return error.fault();
    }
    ADD_FAILURE() << path << " was opened";
    return FileFault::kIo;
}

TEST_F(PosixFiles, side_file_is_never_reached_through_a_link) {
    std::ofstream(path_) << "victim";
    const std::string link = folder_.file("link");
    fs::create_symlink(path_, link);
    EXPECT_EQ(fault_of_opening(link, OpenMode::kReadSide), FileFault::kLink);
    EXPECT_EQ(fault_of_opening(link, OpenMode::kOpenSide), FileFault::kLink);
    EXPECT_EQ(fault_of_opening(link, OpenMode::kCreateSide), FileFault::kExists);
    EXPECT_EQ(system_in_use().open(link, OpenMode::kReadOnly)->size(), 6u) << "a database is";
}

TEST_F(PosixFiles, link_to_nowhere_or_to_itself_is_a_name_that_is_there) {
    const std::string dangling = folder_.file("dangling");
    const std::string loop = folder_.file("loop");
    fs::create_symlink("nowhere", dangling);
    fs::create_symlink("loop", loop);
    std::ofstream(path_) << "x";
    for (const std::string& link : {dangling, loop}) {
        EXPECT_TRUE(system_in_use().exists(link));
        EXPECT_EQ(fault_of_opening(link, OpenMode::kCreateExclusive), FileFault::kExists);
        EXPECT_THROW(system_in_use().rename(path_, link), FileError);
        EXPECT_EQ(system_in_use().resolved(link), link);
    }
    EXPECT_EQ(fault_of_opening(dangling, OpenMode::kExclusive), FileFault::kNotFound);
    EXPECT_EQ(fault_of_opening(loop, OpenMode::kExclusive), FileFault::kLink);
}

TEST_F(PosixFiles, resolved_is_the_file_at_the_end_of_the_links) {
    std::ofstream(path_) << "x";
    fs::create_directory(folder_.file("a"));
    fs::create_symlink(path_, folder_.file("a/first"));
    fs::create_symlink("a/first", folder_.file("second"));
    EXPECT_EQ(system_in_use().resolved(folder_.file("second")), fs::canonical(path_).string());
}

TEST_F(PosixFiles, no_file_gets_the_descriptor_of_a_closed_standard_stream) {
    const int code = in_child([&] {
        for (const int fd : {0, 1, 2}) ::close(fd);
        const auto file = system_in_use().open(path_, OpenMode::kCreateExclusive);
        const auto side = system_in_use().open(path_ + "-journal", OpenMode::kCreateSide);
        system_in_use().sync_folder_of(path_);
        for (const int fd : {0, 1, 2}) {
            if (::fcntl(fd, F_GETFD) != -1) return kOtherFailure;
            if (::write(fd, "overwritten", 11) != -1) return kOtherFailure;
        }
        file->write(0, Bytes{1});
        return file->size() == 1 && side->size() == 0 ? kNoFault : kOtherFailure;
    });
    EXPECT_EQ(code, kNoFault);
}

TEST_F(PosixFiles, child_of_a_fork_cannot_touch_the_files_and_leaves_the_lock) {
    const auto file = system_in_use().open(path_, OpenMode::kCreateExclusive);
    file->write(0, Bytes{1});
    const int code = in_child([&] {
        Bytes byte(1);
        if (!file->is_inherited()) return kOtherFailure;
        const std::function<void()> works[] = {[&] { file->write(0, Bytes{2}); }, [&] { file->truncate(0); },
                                               [&] { file->sync(); }, [&] { file->read(0, byte); }};
        for (const auto& work : works) {
            try {
                work();
                return kOtherFailure;
            } catch (const FileError& error) {
                if (error.fault() != FileFault::kAccessDenied) return kOtherFailure;
            }
        }
        const_cast<std::unique_ptr<os::File>&>(file).reset();
        return kNoFault;
    });
    EXPECT_EQ(code, kNoFault);
    EXPECT_FALSE(file->is_inherited());
    EXPECT_EQ(fault_of_opening(path_, OpenMode::kExclusive), FileFault::kLocked)
        << "the child let go of its copy alone";
}

TEST_F(PosixFiles, lock_ends_with_the_file_though_a_child_holds_a_copy_of_the_descriptor) {
    auto file = system_in_use().open(path_, OpenMode::kCreateExclusive);
    int alive[2];
    ASSERT_EQ(::pipe(alive), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        char byte = 0;
        ::close(alive[1]);
        static_cast<void>(::read(alive[0], &byte, 1));
        ::_exit(0);
    }
    ::close(alive[0]);
    file.reset();
    EXPECT_NO_THROW(system_in_use().open(path_, OpenMode::kExclusive));
    ::close(alive[1]);
    ::waitpid(child, nullptr, 0);
}

TEST_F(PosixFiles, permissions_are_taken_over) {
    std::ofstream(path_) << "x";
    const std::string side = folder_.file("side");
    for (const mode_t mode : {0600, 0640, 0664}) {
        ::chmod(path_.c_str(), mode);
        system_in_use().open(side, OpenMode::kCreateSide);
        struct stat info {};
        ASSERT_EQ(::stat(side.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, 0600u) << "until it is said whose it is";
        system_in_use().copy_access(path_, side);
        ASSERT_EQ(::stat(side.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, mode);
        system_in_use().remove(side);
    }
}

TEST_F(PosixFiles, owner_is_taken_over_where_the_system_lets_it) {
    std::ofstream(path_) << "x";
    if (::chown(path_.c_str(), 65534, 65534) != 0) GTEST_SKIP() << "no right to give files away";
    const std::string side = folder_.file("side");
    system_in_use().open(side, OpenMode::kCreateSide);
    system_in_use().copy_access(path_, side);
    struct stat info {};
    ASSERT_EQ(::stat(side.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 65534u);
    EXPECT_EQ(info.st_gid, 65534u);
}

TEST_F(PosixFiles, relative_path_is_taken_from_the_working_folder) {
    const int code = in_child([&] {
        fs::current_path(folder_.path());
        system_in_use().open("y", OpenMode::kCreateExclusive)->write(0, Bytes{1});
        system_in_use().sync_folder_of("y");
        try {
            system_in_use().open("z", OpenMode::kExclusive);
        } catch (const FileError& error) {
            return error.fault() == FileFault::kNotFound ? kNoFault : kOtherFailure;
        }
        return kOtherFailure;
    });
    EXPECT_EQ(code, kNoFault);
    EXPECT_EQ(fs::file_size(folder_.file("y")), 1u);
}

TEST_F(PosixFiles, signals_arriving_during_work_do_not_show) {
    const int code = in_child([&] {
        struct sigaction action {};
        action.sa_handler = [](int) {};  // without SA_RESTART: calls are interrupted
        ::sigaction(SIGALRM, &action, nullptr);
        const itimerval often{{0, 200}, {0, 200}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
        const auto file = system_in_use().open(path_, OpenMode::kCreateExclusive);
        Bytes bytes(1 << 20);
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
        Bytes again(bytes.size());
        for (int round = 0; round < 20; ++round) {
            file->write(0, bytes);
            file->sync();
            if (file->read(0, again) != again.size() || again != bytes) return kOtherFailure;
        }
        return kNoFault;
    });
    EXPECT_EQ(code, kNoFault);
}

TEST(PosixFaults, system_errors_map_to_the_faults_told_apart) {
    const struct {
        int code;
        FileFault fault;
    } kCases[] = {
        {ENOENT, FileFault::kNotFound},
        {ENOTDIR, FileFault::kBadPath},
        {ENAMETOOLONG, FileFault::kBadPath},
        {EEXIST, FileFault::kExists},
        {EACCES, FileFault::kAccessDenied},
        {EPERM, FileFault::kAccessDenied},
        {EROFS, FileFault::kAccessDenied},
        {EWOULDBLOCK, FileFault::kLocked},
        {ENOSPC, FileFault::kDiskFull},
        {EDQUOT, FileFault::kDiskFull},
        {EFBIG, FileFault::kDiskFull},
        {EIO, FileFault::kIo},
        {EMFILE, FileFault::kIo},
        {0, FileFault::kIo},
    };
    for (const auto& one : kCases) EXPECT_EQ(os::detail::fault_of_system_error(one.code), one.fault) << one.code;
}

}  // namespace
#endif
