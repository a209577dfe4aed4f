// Files, the only way the engine touches a disk. FileSystem is the seam: tests put a file system
// behind it that counts, fails, drops and tears writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "os/clock.h"

namespace os {

// What went wrong with a file, told apart as far as the engine answers differently.
enum class FileFault {
    kNotFound,      // the file is not there
    kBadPath,       // its folder is not there, or the path is malformed
    kLink,          // a link where none is followed, or links without an end
    kExists,        // create found a file of that name
    kAccessDenied,  // no permission, or a read-only medium
    kLocked,        // somebody else holds the file
    kDiskFull,      // no space left, or over a quota or the file size limit
    kIo,            // anything else the system reported
};

// Thrown by every operation below. `what()` is one line naming the operation, the path and the
// system's own reason.
class FileError : public std::runtime_error {
public:
    FileError(FileFault fault, const std::string& text) : std::runtime_error(text), fault_(fault) {}
    FileFault fault() const { return fault_; }

private:
    FileFault fault_;
};

// Databases are opened by the first three modes, which follow links and lock. Side files (journals) are opened by the
// others, which take no lock and never follow a link: a link under the name is kLink, or kExists for kCreateSide.
enum class OpenMode {
    kReadOnly,         // existing file; nobody writes it meanwhile, others may read
    kExclusive,        // existing file, read and write, locked against every other opening
    kCreateExclusive,  // new file (kExists when the name is there), otherwise as kExclusive
    kReadSide,         // existing file
    kOpenSide,         // existing file, read and write
    kCreateSide,       // new file (kExists when the name is there), read and write, open to its owner alone
};

// An open file. Closing (destruction) releases the lock. Not thread-safe, but `sync` of one File may run beside
// anything done through another on the same file.
class File {
public:
    virtual ~File() = default;

    // Reads up to `into.size()` bytes at byte offset `at`; returns how many were there (short only
    // at the end of the file).
    virtual std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) = 0;
    // Writes all of `bytes` at byte offset `at`, extending the file where needed.
    virtual void write(std::uint64_t at, std::span<const std::uint8_t> bytes) = 0;
    // Size in bytes.
    virtual std::uint64_t size() = 0;
    // Cuts or extends (with zeros) to `bytes`.
    virtual void truncate(std::uint64_t bytes) = 0;
    // Returns when everything written to the file, through whichever File, is on the disk itself.
    virtual void sync() = 0;
    // Whether this process is a forked child of the one that opened the file. There, everything above fails with
    // kAccessDenied, and closing leaves the lock to the parent.
    virtual bool is_inherited() const { return false; }
};

// While it lives, a lock on one path outlasts the closing of the file: the next exclusive opening of the path by this
// process takes it over, and nobody else comes between.
class KeptLock {
public:
    virtual ~KeptLock() = default;
};

// Paths are bytes as the system has them; on Windows they are UTF-8 (os/path_text.h), so that every name can be told.
// No path is ever cut: one that the system does not take is kBadPath.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    virtual std::unique_ptr<File> open(const std::string& path, OpenMode mode) = 0;
    // Whether the name is there, be it a link that leads nowhere. "Cannot tell" is an error, not "no".
    virtual bool exists(const std::string& path) = 0;
    virtual void remove(const std::string& path) = 0;
    // Never replaces: kExists when `to` is there.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    // As rename, but takes the place of a file that is there, in one step: the name always leads to one or the other.
    virtual void replace(const std::string& from, const std::string& to) = 0;
    // Makes created, renamed and removed names in the folder of `path` durable.
    virtual void sync_folder_of(const std::string& path) = 0;

    // The file that `path` leads to through links; `path` itself where it is no link or leads nowhere.
    virtual std::string resolved(const std::string& path) { return path; }
    // Gives the file `to` the permissions of `from` and, where the system lets it, the owner. Nothing where files
    // have none. Rights of a group that could not be taken over are left out.
    virtual void copy_access(const std::string& /*from*/, const std::string& /*to*/) {}
    // Full paths of the files beside `path` whose names begin with its name and go on.
    virtual std::vector<std::string> longer_names(const std::string& path) = 0;
    virtual std::unique_ptr<KeptLock> keep_lock(const std::string& /*path*/) { return nullptr; }
    // The time by which delayed work on these files is done.
    virtual Clock& clock() { return system_clock(); }
};

// The file system in use; the machine's own unless a test has put another one in its place.
FileSystem& file_system();
// The machine's own file system.
FileSystem& native_file_system();
// Puts `replacement` in place (null: the machine's own again) and returns the one that was there.
FileSystem* set_file_system(FileSystem* replacement);

}  // namespace os
