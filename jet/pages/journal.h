// The journal beside a database file: the changes of committed transactions that are not yet all in the .mdb.
//
// A generation is everything appended between two resets. The file keeps its size over a reset; the next generation
// overwrites the last one, under a header of its own.
//
// Invariants
//  1. A commit is appended with one write; earlier bytes of its generation are never changed.
//  2. The header binds the journal to one state of one file: identity, change counter before and after. The
//     counter moves by random steps, so that it differs in two copies of a file that diverged.
//  3. The new header is on the disk before anything of an older generation is overwritten. Otherwise a power failure
//     could leave the old header over the first part of its commits, and the replay would restore old pages.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/journal_format.h"
#include "os/file.h"

namespace jet {

class DeferredSync;

// Removes a journal's file when all of it is in the .mdb. If another program holds the file, truncates it to nothing
// instead, which is equivalent. Throws os::FileError when neither is possible.
void remove_journal_file(os::FileSystem& files, const std::string& path);

class Journal {
public:
    // The journal of the database at `database_path`, a path without links.
    Journal(os::FileSystem& files, std::string database_path, std::size_t page_size = jet4::kPageSize);
    ~Journal();

    static std::string path_for(const std::string& database_path) { return database_path + "-journal"; }
    const std::string& path() const { return path_; }

    // Whether anything has been appended since the last reset.
    bool started() const { return started_; }
    // Of the generation; the file may be longer.
    std::uint64_t size_bytes() const { return end_; }

    // Starts a generation, or restarts it when its first append failed. Creates the file if needed, with the database's
    // permissions; writes its header with the first commit. Over an older generation it writes and syncs the header at
    // once: that generation must be entirely in the .mdb and synced. Uses an existing file only when it is empty.
    void start(const JournalBinding& binding);
    // Appends with one write. On failure truncates the tail again if the system allows it, and rethrows the error.
    void append(std::span<const JournalPage> pages, std::uint32_t page_count);
    // Truncates the journal to `end` bytes if the system allows it.
    void withdraw(std::uint64_t end) noexcept;
    // Syncs everything appended so far, the journal's name included. Without memory, throws std::bad_alloc and may
    // leave the folder to the next sync.
    void sync();
    // Schedules a sync without waiting for it. False when it will not happen: sync() must be called.
    bool sync_later();
    // Cancels a scheduled sync and waits for one in progress. Call it before sync(): two syncs at once would wait for
    // each other.
    void sync_no_later();
    // A sync failed, here or in the background: the content of the disk is unknown, and a later sync may succeed
    // without having written the data. Only the next opening can tell, by reading it back.
    bool failed() const;
    // Ends the generation: everything is in the .mdb and synced.
    void reset();
    // Removes the file, if any. Succeeds too if the file is already gone, or if it cannot be removed yet but is empty.
    void remove();
    // Closes the file and leaves it in place.
    void release();

private:
    void open_file();
    void write_header();
    void cut_to_kept_size() noexcept;
    MutableByteSpan buffer_of(std::size_t bytes);

    os::FileSystem& files_;
    const std::string database_path_;
    const std::size_t page_size_;
    const std::string path_;
    std::unique_ptr<os::File> file_;
    std::unique_ptr<DeferredSync> deferred_;
    bool started_ = false;
    bool unsynced_ = false;
    std::uint64_t bytes_since_sync_ = 0;  // appended since a sync was asked for without delay
    bool name_unsynced_ = false;
    bool sync_failed_ = false;
    std::uint64_t end_ = 0;         // bytes used by the generation; 0: its header is written with the first commit
    std::uint64_t file_bytes_ = 0;  // size of the file
    std::uint64_t checksum_ = 0;    // of the last commit (or the header)
    std::array<std::uint8_t, journal::kHeaderBytes> header_{};
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::size_t buffer_bytes_ = 0;
};

// A number that differs each time.
std::uint64_t fresh_salt();

}  // namespace jet
