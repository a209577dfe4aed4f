// Files: the engine's only access to a disk. FileSystem is the seam: tests substitute a file system that counts, fails,
// drops and tears writes.
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

// What went wrong with a file, as finely as the engine's errors distinguish it.
enum class FileFault {
    kNotFound,      // the file does not exist
    kBadPath,       // its folder does not exist, or the path is malformed
    kLink,          // a link where none is followed, or a loop of links
    kExists,        // create found an existing file
    kAccessDenied,  // no permission, or a read-only medium
    kLocked,        // somebody else has locked the file
    kDiskFull,      // no space left, or over a quota or the file size limit
    kIo,            // anything else the system reported
};

// Thrown by every operation below. `what()` is one line: the operation, the path and the system's reason.
class FileError : public std::runtime_error {
public:
    FileError(FileFault fault, const std::string& text) : std::runtime_error(text), fault_(fault) {}
    FileFault fault() const { return fault_; }

private:
    FileFault fault_;
};

// The first three modes are for databases; they follow links and lock. The others are for side files (journals); they
// take no lock and never follow a link: a link under the name is kLink, or kExists for kCreateSide.
enum class OpenMode {
    kReadOnly,         // existing file; nobody can write it meanwhile, others may read
    kExclusive,        // existing file, read and write, locked against every other opening
    kCreateExclusive,  // new file (kExists when the name exists), otherwise as kExclusive
    kReadSide,         // existing file
    kOpenSide,         // existing file, read and write
    kCreateSide,       // new file (kExists when the name exists), read and write, accessible to its owner only
};

// An open file. Closing (destruction) releases the lock. Not thread-safe, but `sync` of one File may run concurrently
// with any operation on another File of the same file.
class File {
public:
    virtual ~File() = default;

    // Reads up to `into.size()` bytes at byte offset `at`; returns how many were read (short only at the end of the
    // file).
    virtual std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) = 0;
    // Writes all of `bytes` at byte offset `at`, extending the file where needed.
    virtual void write(std::uint64_t at, std::span<const std::uint8_t> bytes) = 0;
    // Size in bytes.
    virtual std::uint64_t size() = 0;
    // Truncates or extends (with zeros) to `bytes`.
    virtual void truncate(std::uint64_t bytes) = 0;
    // Returns when everything written to the file, through any File, is on the disk itself.
    virtual void sync() = 0;
    // Whether this process is a forked child of the one that opened the file. There, everything above fails with
    // kAccessDenied, and closing leaves the lock to the parent.
    virtual bool is_inherited() const { return false; }
};

// While it lives, a lock on one path outlasts the closing of the file: this process's next exclusive opening of the
// path takes it over, and nobody else can open the file in between.
class KeptLock {
public:
    virtual ~KeptLock() = default;
};

// Paths are bytes as the system has them; on Windows they are UTF-8 (os/path_text.h), so that every name can be
// expressed. No path is ever truncated: one that the system does not accept is kBadPath.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    virtual std::unique_ptr<File> open(const std::string& path, OpenMode mode) = 0;
    // Whether the name exists, dangling links included. "Cannot tell" is an error, not "no".
    virtual bool exists(const std::string& path) = 0;
    virtual void remove(const std::string& path) = 0;
    // Never replaces: kExists when `to` exists.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    // As rename, but atomically replaces an existing file: the name always leads to the old file or the new one.
    virtual void replace(const std::string& from, const std::string& to) = 0;
    // Makes created, renamed and removed names in the folder of `path` durable.
    virtual void sync_folder_of(const std::string& path) = 0;

    // The target of `path` after following links; `path` itself when it is no link or dangles.
    virtual std::string resolved(const std::string& path) { return path; }
    // Gives `to` the permissions of `from` and, where the system allows it, the owner. Does nothing on systems without
    // permissions. Drops the group's rights when the group could not be taken over.
    virtual void copy_access(const std::string& /*from*/, const std::string& /*to*/) {}
    // Full paths of the files in the folder of `path` whose names are longer and begin with its name.
    virtual std::vector<std::string> longer_names(const std::string& path) = 0;
    virtual std::unique_ptr<KeptLock> keep_lock(const std::string& /*path*/) { return nullptr; }
    // The clock for delayed work on these files.
    virtual Clock& clock() { return system_clock(); }
};

// The file system in use: the machine's unless a test has replaced it.
FileSystem& file_system();
// The machine's file system.
FileSystem& native_file_system();
// Installs `replacement` (null: the machine's file system) and returns the previous one.
FileSystem* set_file_system(FileSystem* replacement);

}  // namespace os
