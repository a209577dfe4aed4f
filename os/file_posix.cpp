// Files of a POSIX system. Invariants:
//  1. A lock belongs to the open file description, so a second opening runs into it from another process
//     and from this one alike, and it ends with the File object.
//  2. A locked File is the file that has the name, not one whose name was taken away between the opening
//     and the lock.
//  3. Interrupted calls are repeated and short writes continued; whoever calls sees all or an error.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <system_error>
#include <utility>

#include "os/file.h"
#include "os/system.h"
#include "os/system_error.h"

namespace os {
namespace {

// Repeats a system call for as long as a signal interrupts it.
template <typename Call>
auto uninterrupted(Call call) {
    for (;;) {
        auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

[[noreturn]] void fail(const char* operation, const std::string& path, FileFault fault, int code) {
    throw FileError(fault, detail::file_error_text(operation, path, std::generic_category().message(code)));
}

bool is_folder(const std::string& path) {
    struct stat info {};
    return ::stat(path.empty() ? "." : path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// ENOENT does not tell a missing file from a missing folder; the folder itself does.
[[noreturn]] void fail(const char* operation, const std::string& path, int code) {
    FileFault fault = detail::fault_of_system_error(code);
    if (fault == FileFault::kNotFound && (path.empty() || !is_folder(folder_of(path)))) fault = FileFault::kBadPath;
    fail(operation, path, fault, code);
}

// A NUL would silently cut the path short on its way through the system's interface.
void require_usable(const char* operation, const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) fail(operation, path, FileFault::kBadPath, EINVAL);
}

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        // Not repeated when interrupted: the descriptor is free all the same.
        if (fd_ >= 0) ::close(fd_);
    }
    int get() const { return fd_; }

private:
    int fd_;
};

class PosixFile : public File {
public:
    PosixFile(Descriptor descriptor, std::string path) : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

    std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) override {
        std::size_t done = 0;
        while (done < into.size()) {
            const off_t offset = to_offset("read", at + done);
            const ssize_t count = uninterrupted(
                [&] { return ::pread(descriptor_.get(), into.data() + done, into.size() - done, offset); });
            if (count < 0) fail("read", path_, errno);
            if (count == 0) break;
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    void write(std::uint64_t at, std::span<const std::uint8_t> bytes) override {
        if (bytes.empty()) return;
        require_below_size_limit("write", at + bytes.size());
        std::size_t done = 0;
        while (done < bytes.size()) {
            const off_t offset = to_offset("write", at + done);
            const ssize_t count = uninterrupted(
                [&] { return ::pwrite(descriptor_.get(), bytes.data() + done, bytes.size() - done, offset); });
            if (count < 0) fail("write", path_, errno);
            // A device that takes nothing and reports nothing would otherwise hold us here for ever.
            if (count == 0) fail("write", path_, ENOSPC);
            done += static_cast<std::size_t>(count);
        }
    }

    std::uint64_t size() override { return static_cast<std::uint64_t>(status("measure").st_size); }

    void truncate(std::uint64_t bytes) override {
        if (bytes > size()) require_below_size_limit("resize", bytes);
        const off_t offset = to_offset("resize", bytes);
        if (uninterrupted([&] { return ::ftruncate(descriptor_.get(), offset); }) != 0) fail("resize", path_, errno);
    }

    void sync() override {
#if defined(__APPLE__)
        // There, fsync stops at the drive's own cache.
        if (uninterrupted([&] { return ::fcntl(descriptor_.get(), F_FULLFSYNC); }) == 0) return;
        if (uninterrupted([&] { return ::fsync(descriptor_.get()); }) != 0) fail("sync", path_, errno);
#else
        if (uninterrupted([&] { return ::fdatasync(descriptor_.get()); }) != 0) fail("sync", path_, errno);
#endif
    }

    struct stat status(const char* operation) {
        struct stat info {};
        if (::fstat(descriptor_.get(), &info) != 0) fail(operation, path_, errno);
        return info;
    }

    void lock() {
        if (uninterrupted([&] { return ::flock(descriptor_.get(), LOCK_EX | LOCK_NB); }) != 0) {
            fail("lock", path_, errno);
        }
        if (status("lock").st_nlink == 0) fail("lock", path_, ENOENT);
    }

private:
    off_t to_offset(const char* operation, std::uint64_t at) const {
        if (at > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) fail(operation, path_, EFBIG);
        return static_cast<off_t>(at);
    }

    // Past the process's file size limit the system sends a signal that ends the host. Asking first, whenever a
    // file reaches further than before, makes it an error like any other.
    void require_below_size_limit(const char* operation, std::uint64_t end) {
        if (end <= allowed_end_) return;
        struct rlimit limit {};
        if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && end > limit.rlim_cur) {
            fail(operation, path_, EFBIG);
        }
        allowed_end_ = end;
    }

    Descriptor descriptor_;
    std::string path_;
    std::uint64_t allowed_end_ = 0;  // the limit has been asked for up to here
};

int open_flags(OpenMode mode) {
    switch (mode) {
        case OpenMode::kReadOnly: return O_RDONLY;
        case OpenMode::kExclusive: return O_RDWR;
        case OpenMode::kCreateExclusive: return O_RDWR | O_CREAT | O_EXCL;
        case OpenMode::kOpenOrCreate: return O_RDWR | O_CREAT;
    }
    return O_RDONLY;
}

class PosixFileSystem : public FileSystem {
public:
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override {
        const char* operation = mode == OpenMode::kCreateExclusive ? "create" : "open";
        require_usable(operation, path);
        // Without blocking: a pipe of that name must not hold the caller until somebody writes to it.
        const int flags = open_flags(mode) | O_CLOEXEC | O_NONBLOCK;
        const int fd = uninterrupted([&] { return ::open(path.c_str(), flags, 0666); });
        if (fd < 0) fail(operation, path, errno);
        auto file = std::make_unique<PosixFile>(Descriptor(fd), path);
        const struct stat info = file->status(operation);
        if (!S_ISREG(info.st_mode)) {
            fail(operation, path, FileFault::kAccessDenied, S_ISDIR(info.st_mode) ? EISDIR : ENODEV);
        }
        if (mode == OpenMode::kExclusive || mode == OpenMode::kCreateExclusive) file->lock();
        return file;
    }

    bool exists(const std::string& path) override {
        struct stat info {};
        return path.find('\0') == std::string::npos && ::stat(path.c_str(), &info) == 0;
    }

    void remove(const std::string& path) override {
        require_usable("remove", path);
        if (::unlink(path.c_str()) != 0) fail("remove", path, errno);
    }

    void rename(const std::string& from, const std::string& to) override {
        require_usable("rename", from);
        require_usable("rename", to);
        if (std::rename(from.c_str(), to.c_str()) == 0) return;
        const int code = errno;
        // The source is there, so what is missing is the folder of the target.
        if (code == ENOENT && exists(from)) fail("rename", to, FileFault::kBadPath, code);
        fail("rename", from, code);
    }

    void sync_folder_of(const std::string& path) override {
        require_usable("sync the folder of", path);
        const std::string folder = folder_of(path);
        const int fd = uninterrupted(
            [&] { return ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        if (fd < 0) fail("sync the folder of", path, errno);
        const Descriptor descriptor(fd);
        if (uninterrupted([&] { return ::fsync(descriptor.get()); }) == 0) return;
        // Some file systems keep names durable by themselves and refuse to sync a folder.
        if (errno != EINVAL && errno != ENOTSUP && errno != EROFS) fail("sync the folder of", path, errno);
    }
};

}  // namespace

FileFault detail::fault_of_system_error(std::int32_t code) {
    struct Entry {
        std::int32_t code;
        FileFault fault;
    };
    static constexpr Entry kFaults[] = {
        {ENOENT, FileFault::kNotFound},     {ENOTDIR, FileFault::kBadPath},    {ENAMETOOLONG, FileFault::kBadPath},
        {ELOOP, FileFault::kBadPath},       {EILSEQ, FileFault::kBadPath},     {EEXIST, FileFault::kExists},
        {EACCES, FileFault::kAccessDenied}, {EPERM, FileFault::kAccessDenied}, {EROFS, FileFault::kAccessDenied},
        {EISDIR, FileFault::kAccessDenied}, {EWOULDBLOCK, FileFault::kLocked}, {EBUSY, FileFault::kLocked},
        {ETXTBSY, FileFault::kLocked},      {ENOSPC, FileFault::kDiskFull},    {EDQUOT, FileFault::kDiskFull},
        {EFBIG, FileFault::kDiskFull},      {EBADF, FileFault::kAccessDenied},
    };
    const auto* found =
        std::find_if(std::begin(kFaults), std::end(kFaults), [code](const Entry& entry) { return entry.code == code; });
    return found != std::end(kFaults) ? found->fault : FileFault::kIo;
}

FileSystem& native_file_system() {
    static PosixFileSystem system;
    return system;
}

}  // namespace os
