// Files of a POSIX system. Invariants:
//  1. A lock belongs to the open file description. It refuses a second opening by another process and by this one
//     alike, and ends with the File object.
//  2. A locked File is the file that now has the name, not one whose name was removed between the opening
//     and the lock.
//  3. Interrupted calls are repeated and short writes continued; the caller sees all or an error.
//  4. In a forked child nothing of the parent's files is read, written, synced or unlocked.
//  5. "Not found" is reported only when the system said so.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>

#include "os/descriptor_posix.h"
#include "os/file.h"
#include "os/system.h"
#include "os/system_error.h"

namespace os {
namespace {

[[noreturn]] void fail(const char* operation, const std::string& path, FileFault fault, int code) {
    throw FileError(fault, detail::file_error_text(operation, path, std::generic_category().message(code)));
}

bool is_folder(const std::string& path) {
    struct stat info {};
    return ::stat(path.empty() ? "." : path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// ENOENT does not distinguish a missing file from a missing folder; test the folder.
[[noreturn]] void fail(const char* operation, const std::string& path, int code) {
    FileFault fault = detail::fault_of_system_error(code);
    if (fault == FileFault::kNotFound && (path.empty() || !is_folder(folder_of(path)))) fault = FileFault::kBadPath;
    fail(operation, path, fault, code);
}

// A NUL would silently truncate the path in the system call.
void require_usable(const char* operation, const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) fail(operation, path, FileFault::kBadPath, EINVAL);
}

// Descriptors whose locks outlast their files, by path. A path without an entry keeps nothing.
class KeptDescriptors {
public:
    void keep(const std::string& path) {
        const std::lock_guard lock(mutex_);
        ++entries_[path].keepers;
    }
    void forget(const std::string& path) {
        const std::lock_guard lock(mutex_);
        const auto entry = entries_.find(path);
        if (--entry->second.keepers > 0) return;
        if (entry->second.descriptor) ::flock(entry->second.descriptor.get(), LOCK_UN);
        entries_.erase(entry);
    }
    // Hands the descriptor over if a lock on the path is being kept; otherwise leaves it.
    void give(const std::string& path, Descriptor& descriptor) {
        const std::lock_guard lock(mutex_);
        const auto entry = entries_.find(path);
        if (entry != entries_.end()) entry->second.descriptor = std::move(descriptor);
    }
    Descriptor take(const std::string& path) {
        const std::lock_guard lock(mutex_);
        const auto entry = entries_.find(path);
        return entry != entries_.end() ? std::move(entry->second.descriptor) : Descriptor();
    }

private:
    struct Entry {
        int keepers = 0;
        Descriptor descriptor;
    };
    std::mutex mutex_;
    std::map<std::string, Entry> entries_;
};

class PosixKeptLock : public KeptLock {
public:
    PosixKeptLock(KeptDescriptors& kept, std::string path) : kept_(kept), path_(std::move(path)) { kept_.keep(path_); }
    ~PosixKeptLock() override { kept_.forget(path_); }
    PosixKeptLock(const PosixKeptLock&) = delete;
    PosixKeptLock& operator=(const PosixKeptLock&) = delete;

private:
    KeptDescriptors& kept_;
    std::string path_;
};

enum class Lock { kNone, kShared, kExclusive };

class PosixFile : public File {
public:
    PosixFile(Descriptor descriptor, std::string path, KeptDescriptors& kept)
        : descriptor_(std::move(descriptor)), path_(std::move(path)), kept_(kept), process_(::getpid()) {}

    ~PosixFile() override {
        // A child's descriptor shares the parent's lock. Only close it: that does not affect the parent.
        if (lock_ == Lock::kNone || PosixFile::is_inherited()) return;
        if (lock_ == Lock::kExclusive) kept_.give(path_, descriptor_);
        // Unlock explicitly, because a child may still hold a copy of the descriptor.
        if (descriptor_) ::flock(descriptor_.get(), LOCK_UN);
    }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    bool is_inherited() const override { return ::getpid() != process_; }

    std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) override {
        require_own("read");
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
        require_own("write");
        if (bytes.empty()) return;
        require_below_size_limit("write", at + bytes.size());
        std::size_t done = 0;
        while (done < bytes.size()) {
            const off_t offset = to_offset("write", at + done);
            const ssize_t count = uninterrupted(
                [&] { return ::pwrite(descriptor_.get(), bytes.data() + done, bytes.size() - done, offset); });
            if (count < 0) fail("write", path_, errno);
            // A device that accepts nothing and reports no error would otherwise loop for ever.
            if (count == 0) fail("write", path_, ENOSPC);
            done += static_cast<std::size_t>(count);
        }
    }

    std::uint64_t size() override { return static_cast<std::uint64_t>(status("measure").st_size); }

    void truncate(std::uint64_t bytes) override {
        require_own("resize");
        if (bytes > size()) require_below_size_limit("resize", bytes);
        const off_t offset = to_offset("resize", bytes);
        if (uninterrupted([&] { return ::ftruncate(descriptor_.get(), offset); }) != 0) fail("resize", path_, errno);
    }

    void sync() override {
        require_own("sync");
#if defined(__APPLE__)
        // On this system, fsync stops at the drive's cache.
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

    void lock(Lock kind) {
        const int operation = (kind == Lock::kExclusive ? LOCK_EX : LOCK_SH) | LOCK_NB;
        if (uninterrupted([&] { return ::flock(descriptor_.get(), operation); }) != 0) {
            // A file system without locks can still be read.
            const bool has_none = errno == ENOTSUP || errno == EOPNOTSUPP || errno == ENOSYS || errno == ENOLCK;
            if (kind == Lock::kExclusive || !has_none) fail("lock", path_, errno);
        } else {
            lock_ = kind;
        }
        if (status("lock").st_nlink == 0) fail("lock", path_, ENOENT);
    }
    // Marks the descriptor as already locked.
    void adopt_lock() { lock_ = Lock::kExclusive; }

private:
    void require_own(const char* operation) const {
        if (is_inherited()) {
            throw FileError(
                FileFault::kAccessDenied,
                detail::file_error_text(operation, path_, "it belongs to the process this one was forked from"));
        }
    }

    off_t to_offset(const char* operation, std::uint64_t at) const {
        if (at > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) fail(operation, path_, EFBIG);
        return static_cast<off_t>(at);
    }

    // Past the process's file size limit the system sends a signal that ends the host. Check the limit before each
    // extension, so that it is an ordinary error.
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
    KeptDescriptors& kept_;
    const pid_t process_;
    Lock lock_ = Lock::kNone;
    std::uint64_t allowed_end_ = 0;  // the limit has been checked up to here
};

struct OpenArguments {
    int flags;
    mode_t permissions;
    Lock lock;
};

OpenArguments arguments_of(OpenMode mode) {
    switch (mode) {
        case OpenMode::kReadOnly: return {O_RDONLY, 0, Lock::kShared};
        case OpenMode::kExclusive: return {O_RDWR, 0, Lock::kExclusive};
        case OpenMode::kCreateExclusive: return {O_RDWR | O_CREAT | O_EXCL, 0666, Lock::kExclusive};
        case OpenMode::kReadSide: return {O_RDONLY | O_NOFOLLOW, 0, Lock::kNone};
        case OpenMode::kOpenSide: return {O_RDWR | O_NOFOLLOW, 0, Lock::kNone};
        case OpenMode::kCreateSide: return {O_RDWR | O_CREAT | O_EXCL, 0600, Lock::kNone};
    }
    return {O_RDONLY, 0, Lock::kNone};
}

bool is_same_file(int fd, const std::string& path) {
    struct stat open_file {};
    struct stat named {};
    return ::fstat(fd, &open_file) == 0 && ::stat(path.c_str(), &named) == 0 && open_file.st_dev == named.st_dev &&
           open_file.st_ino == named.st_ino;
}

// Renames unless `to` exists; returns 0 or the errno. On file systems without such a call it uses a second link, which
// fails if the name exists, or a placeholder that only this call can have created.
int rename_without_replacing(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) return errno;
#endif
    if (::link(from.c_str(), to.c_str()) == 0) return ::unlink(from.c_str()) == 0 ? 0 : errno;
    if (errno != EPERM && errno != ENOTSUP && errno != ENOSYS && errno != EMLINK) return errno;
    if (!open_descriptor(to, O_RDWR | O_CREAT | O_EXCL, 0600)) return errno;
    if (std::rename(from.c_str(), to.c_str()) == 0) return 0;
    const int code = errno;
    ::unlink(to.c_str());
    return code;
}

class PosixFileSystem : public FileSystem {
public:
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override {
        const bool creates = mode == OpenMode::kCreateExclusive || mode == OpenMode::kCreateSide;
        const char* operation = creates ? "create" : "open";
        require_usable(operation, path);
        if (mode == OpenMode::kExclusive) {
            if (auto file = reopened(path)) return file;
        }
        const OpenArguments arguments = arguments_of(mode);
        Descriptor descriptor = open_descriptor(path, arguments.flags, arguments.permissions);
        if (!descriptor) fail(operation, path, errno);
        auto file = std::make_unique<PosixFile>(std::move(descriptor), path, kept_);
        const struct stat info = file->status(operation);
        if (!S_ISREG(info.st_mode)) {
            fail(operation, path, FileFault::kAccessDenied, S_ISDIR(info.st_mode) ? EISDIR : ENODEV);
        }
        if (arguments.lock != Lock::kNone) file->lock(arguments.lock);
        return file;
    }

    bool exists(const std::string& path) override {
        if (path.find('\0') != std::string::npos) return false;
        struct stat info {};
        if (::lstat(path.c_str(), &info) == 0) return true;
        if (errno == ENOENT || errno == ENOTDIR) return false;
        fail("look for", path, errno);
    }

    void remove(const std::string& path) override {
        require_usable("remove", path);
        if (::unlink(path.c_str()) != 0) fail("remove", path, errno);
    }

    void replace(const std::string& from, const std::string& to) override {
        require_usable("replace", from);
        require_usable("replace", to);
        if (std::rename(from.c_str(), to.c_str()) != 0) fail("replace", to, errno);
    }

    void rename(const std::string& from, const std::string& to) override {
        require_usable("rename", from);
        require_usable("rename", to);
        const int code = rename_without_replacing(from, to);
        if (code == 0) return;
        if (code == EEXIST) fail("rename to", to, code);
        // The source exists, so the target's folder is missing.
        if (code == ENOENT && exists(from)) fail("rename to", to, FileFault::kBadPath, code);
        fail("rename", from, code);
    }

    std::string resolved(const std::string& path) override {
        if (path.find('\0') != std::string::npos) return path;
        struct Free {
            void operator()(char* text) const { std::free(text); }
        };
        const std::unique_ptr<char, Free> real(::realpath(path.c_str(), nullptr));
        return real ? real.get() : path;
    }

    void copy_access(const std::string& from, const std::string& to) override {
        struct stat model {};
        if (::stat(from.c_str(), &model) != 0) fail("read the permissions of", from, errno);
        const Descriptor descriptor = open_descriptor(to, O_RDONLY | O_NOFOLLOW);
        struct stat now {};
        if (!descriptor || ::fstat(descriptor.get(), &now) != 0) fail("set the permissions of", to, errno);
        mode_t permissions = model.st_mode & 0666;
        if (now.st_uid != model.st_uid) ::fchown(descriptor.get(), model.st_uid, static_cast<gid_t>(-1));
        if (now.st_gid != model.st_gid && ::fchown(descriptor.get(), static_cast<uid_t>(-1), model.st_gid) != 0) {
            permissions &= ~static_cast<mode_t>(0060);
        }
        // Refused on file systems without permissions, and when the new owner is another user.
        if (::fchmod(descriptor.get(), permissions) != 0 && errno != EPERM && errno != ENOTSUP) {
            fail("set the permissions of", to, errno);
        }
    }

    std::vector<std::string> longer_names(const std::string& path) override {
        const std::string folder = folder_of(path);
        struct Close {
            void operator()(DIR* entries) const { ::closedir(entries); }
        };
        const std::unique_ptr<DIR, Close> entries(::opendir(folder.empty() ? "." : folder.c_str()));
        if (!entries) fail("list the folder of", path, errno);
        std::vector<std::string> found;
        while (const dirent* entry = ::readdir(entries.get())) {
            std::string other = join_path(folder, entry->d_name);
            if (other.size() > path.size() && other.starts_with(path)) found.push_back(std::move(other));
        }
        return found;
    }

    std::unique_ptr<KeptLock> keep_lock(const std::string& path) override {
        return std::make_unique<PosixKeptLock>(kept_, resolved(path));
    }

    void sync_folder_of(const std::string& path) override {
        require_usable("sync the folder of", path);
        const std::string folder = folder_of(path);
        const Descriptor descriptor = open_descriptor(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
        if (!descriptor) fail("sync the folder of", path, errno);
        if (uninterrupted([&] { return ::fsync(descriptor.get()); }) == 0) return;
        // Some file systems keep names durable on their own and refuse to sync a folder.
        if (errno != EINVAL && errno != ENOTSUP && errno != EROFS) fail("sync the folder of", path, errno);
    }

private:
    // The file whose lock is kept for the path, unless the path now leads to another file.
    std::unique_ptr<File> reopened(const std::string& path) {
        Descriptor descriptor = kept_.take(path);
        if (!descriptor || !is_same_file(descriptor.get(), path)) return nullptr;
        auto file = std::make_unique<PosixFile>(std::move(descriptor), path, kept_);
        file->adopt_lock();
        return file;
    }

    KeptDescriptors kept_;
};

}  // namespace

FileFault detail::fault_of_system_error(std::int32_t code) {
    struct Entry {
        std::int32_t code;
        FileFault fault;
    };
    static constexpr Entry kFaults[] = {
        {ENOENT, FileFault::kNotFound},     {ENOTDIR, FileFault::kBadPath},    {ENAMETOOLONG, FileFault::kBadPath},
        {ELOOP, FileFault::kLink},          {EILSEQ, FileFault::kBadPath},     {EEXIST, FileFault::kExists},
        {EACCES, FileFault::kAccessDenied}, {EPERM, FileFault::kAccessDenied}, {EROFS, FileFault::kAccessDenied},
        {EISDIR, FileFault::kAccessDenied}, {EWOULDBLOCK, FileFault::kLocked}, {EBUSY, FileFault::kLocked},
        {ETXTBSY, FileFault::kLocked},      {ENOSPC, FileFault::kDiskFull},    {EDQUOT, FileFault::kDiskFull},
        {EFBIG, FileFault::kDiskFull},      {EBADF, FileFault::kAccessDenied},
    };
    const auto* found =
        std::find_if(std::begin(kFaults), std::end(kFaults), [code](const Entry& entry) { return entry.code == code; });
    return found != std::end(kFaults) ? found->fault : FileFault::kIo;
}

// Never destroyed: other static objects may close their files after it would be.
FileSystem& native_file_system() {
    alignas(PosixFileSystem) static std::byte place[sizeof(PosixFileSystem)];
    static PosixFileSystem* const system = ::new (place) PosixFileSystem;
    return *system;
}

}  // namespace os
