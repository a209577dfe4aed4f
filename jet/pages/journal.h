// The journal beside a database file: what committed transactions have changed, not yet all in the .mdb.
//
// A generation is what is appended between two resets. The file keeps its size over a reset; the next generation is
// written over the last one, under a header of its own.
//
// Invariants
//  1. A commit is appended with one write; what is in front of it in its generation is never changed.
//  2. The header binds the journal to one state of one file: identity, change counter before and after. The
//     counter moves by random steps, so that two copies of a file that went their own ways differ in it.
//  3. Before anything of an older generation is overwritten, the new header is on the disk. Otherwise a power failure
//     could leave the old header over the first part of its commits, and the replay would take pages back.
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

// Removes a journal's file after all of it has come into the .mdb. What another program holds is cut to nothing
// instead, which is as good. Throws os::FileError when neither can be done.
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

    // Begins a generation, again when its first append has failed. Creates the file where needed, with the database's
    // permissions; its header is written with the first commit. Where an older generation lies, the header is written
    // and synced at once: everything of it must be in the .mdb and synced. A file that lies there already is taken only
    // when it is empty.
    void start(const JournalBinding& binding);
    // One write. On failure the tail is cut off again where the system lets it, and the error passes on.
    void append(std::span<const JournalPage> pages, std::uint32_t page_count);
    // Cuts the journal back to `end` bytes where the system lets it.
    void withdraw(std::uint64_t end) noexcept;
    // What has been appended is on the disk when it returns, the journal's name included. Without memory the folder may
    // be left for the next sync, by std::bad_alloc.
    void sync();
    // Has it synced soon, without waiting for it. False when it will not be: sync() must be called.
    bool sync_later();
    // A sync failed, this way or that: nobody knows what the disk holds, and a later sync may succeed without having
    // written it. Only the next opening, which reads back what there is, can tell.
    bool failed() const;
    // Everything is in the .mdb and synced: the generation is over.
    void reset();
    // Removes the file, if any. One that has gone already, or that cannot be removed yet but holds nothing any more, is
    // as good as removed.
    void remove();
    // Lets go of the file and leaves it where it is.
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
    bool name_unsynced_ = false;
    bool sync_failed_ = false;
    std::uint64_t end_ = 0;         // bytes used by the generation; 0: its header waits for the first commit
    std::uint64_t file_bytes_ = 0;  // what the file may hold
    std::uint64_t checksum_ = 0;    // of the last commit (or the header)
    std::array<std::uint8_t, journal::kHeaderBytes> header_{};
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::size_t buffer_bytes_ = 0;
};

// A number that is another one each time.
std::uint64_t fresh_salt();

}  // namespace jet
