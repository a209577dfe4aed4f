// The journal beside a database file: whole pages of committed transactions, not yet all in the .mdb.
//
// Layout (all little-endian): a header of kHeaderBytes, then commits one behind the other. A commit is a
// header (mark, number of pages, pages of the file afterwards, checksum), the page numbers, the pages.
// Its checksum covers everything of it and the checksum before it, so a torn or stale tail never passes.
//
// Invariants
//  1. A commit is appended with one write; what is in front of it is never changed.
//  2. The header binds the journal to one state of one file: identity, change counter before and after. The
//     counter moves by steps of chance, so that two copies of a file that went their own ways differ in it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "os/file.h"

namespace jet {

class DeferredSync;

// Removes a journal's file after all of it has come into the .mdb. What another program holds is cut to nothing
// instead, which is as good. Throws os::FileError when neither can be done.
void remove_journal_file(os::FileSystem& files, const std::string& path);

// What a journal is bound to.
struct JournalBinding {
    std::uint64_t identity = 0;      // of the file: what never changes in its header, and its commit words
    std::uint64_t base_counter = 0;  // change counter of the file when the generation began
    std::uint64_t next_counter = 0;  // what the generation's first commit makes of it
};

struct JournalPage {
    PageNumber page_no = 0;
    const std::uint8_t* bytes = nullptr;  // kPageSize of them
};

// The valid part of a journal found at opening: where the last image of each page lies.
struct JournalContent {
    struct Image {
        PageNumber page_no = 0;
        std::uint64_t at = 0;  // byte offset in the journal
    };
    JournalBinding binding;
    std::uint32_t page_count = 0;    // of the file after the last commit; 0: no commit at all
    std::vector<Image> last_images;  // by page number
};

class Journal {
public:
    static constexpr std::size_t kHeaderBytes = 64;

    // The journal of the database at `database_path`, a path without links.
    Journal(os::FileSystem& files, std::string database_path);
    ~Journal();

    static std::string path_for(const std::string& database_path) { return database_path + "-journal"; }
    const std::string& path() const { return path_; }

    // Whether anything has been appended since the last reset.
    bool started() const { return end_ > 0; }
    std::uint64_t size_bytes() const { return end_; }

    // Begins a generation: creates the file where needed, with the database's permissions, and prepares its header,
    // which is written with the first commit. A file that lies there already is taken only when it is empty.
    void start(const JournalBinding& binding);
    // One write. On failure the tail is cut off again where the system lets it, and the error passes on.
    void append(const std::vector<JournalPage>& pages, std::uint32_t page_count);
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
    // Everything is in the .mdb: an empty journal. Only after sync() is it sure not to come back.
    void reset();
    // Removes the file, if any. One that has gone already, or that cannot be removed yet but holds nothing any more, is
    // as good as removed.
    void remove();
    // Lets go of the file and leaves it where it is.
    void release();

    // For opening: the valid content of a journal file, or none when it has no valid header.
    static bool read(os::File& file, JournalContent& content);

private:
    void open_file();

    os::FileSystem& files_;
    const std::string database_path_;
    const std::string path_;
    std::unique_ptr<os::File> file_;
    std::unique_ptr<DeferredSync> deferred_;
    bool unsynced_ = false;
    bool name_unsynced_ = false;
    bool sync_failed_ = false;
    std::uint64_t end_ = 0;       // bytes used
    std::uint64_t checksum_ = 0;  // of the last commit (or the header)
    ByteVector header_;           // waits for the first commit
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::size_t buffer_bytes_ = 0;
};

// A number that is another one each time.
std::uint64_t fresh_salt();

// A 64-bit checksum of `bytes`, chained on `seed`. Not a defence against intent.
std::uint64_t checksum64(ByteSpan bytes, std::uint64_t seed);

}  // namespace jet
