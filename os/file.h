// Files, the only way the engine touches a disk. FileSystem is the seam: tests put a file system
// behind it that counts, fails, drops and tears writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

namespace os {

// What went wrong with a file, told apart as far as the engine answers differently.
enum class FileFault {
    kNotFound,      // the file is not there
    kBadPath,       // its folder is not there, or the path is malformed
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

enum class OpenMode {
    kReadOnly,         // existing file, no lock
    kExclusive,        // existing file, read and write, locked against every other opening
    kCreateExclusive,  // new file (kExists when there is one), otherwise as kExclusive
    kOpenOrCreate,     // existing or new file, read and write, no lock (used for the journal)
};

// An open file. Closing (destruction) releases the lock. Not thread-safe.
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
    // Returns when everything written is on the disk itself.
    virtual void sync() = 0;
};

// Paths are in the narrow code page of the system (os/system.h).
class FileSystem {
public:
    virtual ~FileSystem() = default;

    virtual std::unique_ptr<File> open(const std::string& path, OpenMode mode) = 0;
    virtual bool exists(const std::string& path) = 0;
    virtual void remove(const std::string& path) = 0;
    // Replaces `to` where it exists.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    // Makes created, renamed and removed names in the folder of `path` durable.
    virtual void sync_folder_of(const std::string& path) = 0;
};

// The file system in use; the machine's own unless a test has put another one in its place.
FileSystem& file_system();
// The machine's own file system.
FileSystem& native_file_system();
// Puts `replacement` in place (null: the machine's own again) and returns the one that was there.
FileSystem* set_file_system(FileSystem* replacement);

}  // namespace os
