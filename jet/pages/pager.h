// Transactions over the pages of a file, and the sync points at which committed pages reach the .mdb.
//
// Invariants
//  1. The .mdb is never written before the new content of the pages is safe in the journal.
//  2. A page changed by the open transaction, or committed but not yet in the .mdb, is not evicted.
//  3. A transaction that is not committed leaves every page, and the page count, unchanged.
//  4. A page is written to the .mdb only when the journal's generation holds it whole: if a power failure tears it
//     there, the replay restores it from the journal alone.
//  5. The change counter of the file moves once per journal generation, inside the generation's first
//     commit, so that a journal is replayed only onto the file it was written for.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/types.h"
#include "jet/pages/dirty_pages.h"
#include "jet/pages/header.h"
#include "jet/pages/page_cache.h"
#include "jet/pages/undo_log.h"
#include "os/file.h"

namespace jet {

class Journal;
struct JournalPage;

// Allocated as pages are read: 256 MiB, or 64 MiB in a process with a small address space.
inline constexpr std::size_t kDefaultCachePages = sizeof(void*) >= 8 ? 65536 : 16384;

struct PagerOptions {
    bool read_only = false;
    std::size_t cache_pages = kDefaultCachePages;
    std::uint64_t journal_limit_bytes = 8u << 20;  // beyond it, a new generation of the journal starts
    std::chrono::milliseconds sync_interval{250};  // a commit this long after the last sync point becomes one
};

class Pager {
public:
    // Takes over `file` (open and locked) at `path`, which has no links in it; journal and clock are those of `files`.
    // Replays or sets aside a journal beside the file; a read-only pager takes the journal's pages into memory only.
    // The size of the file must be a multiple of the page size (the replay truncates a torn tail from a crash).
    Pager(os::FileSystem& files, std::unique_ptr<os::File> file, std::string path, PagerOptions options = {});
    // As close(), but ignores failures: the journal then stays and the next opening replays it.
    ~Pager();

    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    const std::string& path() const { return path_; }
    bool read_only() const { return options_.read_only; }
    bool is_closed() const { return closed_; }
    // Pages of the file as the open transaction sees it.
    std::uint32_t page_count() const { return page_count_; }
    const Format& format() const { return *kind_.format; }
    const FileKind& kind() const { return kind_; }

    Page read(PageNumber page_no) { return Page(load(page_no)); }
    // The page where it is in memory; false, and `into` is untouched, where it is not.
    bool find(PageNumber page_no, Page& into) const;
    // The content of the .mdb from this page on, as many whole pages as `into` holds and the file has: at least one.
    // Pages in memory may be newer. Errors as read().
    std::size_t read_past_cache(PageNumber page_no, MutableByteSpan into);
    // Only inside a transaction.
    MutablePage modify(PageNumber page_no);
    // Appends a zeroed page (only inside a transaction); 3183 at the format's limit.
    MutablePage extend();

    // Transactions nest; an inner one that is rolled back undoes its own changes only. The outermost
    // commit writes the journal. Use Transaction.
    void begin() { undo_.begin(page_count_); }
    void commit();
    void rollback();
    bool in_transaction() const { return undo_.depth() > 0; }

    // Makes a sync point now: everything committed is on disk in the journal and written to the .mdb.
    void sync_point();
    // Writes and syncs everything and removes the journal. Throws jet::Error when the system refuses; the journal then
    // stays for the next opening. In a forked child only closes the files. The pager is unusable afterwards.
    void close();

    // Called after pages have been rolled back, so that data derived from them is discarded.
    void set_rollback_listener(std::function<void()> listener) { on_rollback_ = std::move(listener); }

    // Numbers of pages read from and written to the .mdb, for tests and benchmarks.
    std::uint64_t pages_read() const { return pages_read_; }
    std::uint64_t pages_written() const { return dirty_.written(); }

private:
    FrameRef load(PageNumber page_no);
    FrameRef read_into_cache(PageNumber page_no);
    std::size_t pages_to_read(PageNumber page_no);
    FrameRef read_run(PageNumber page_no, std::size_t pages);
    void require_writable() const;
    void require_transaction(const char* what) const;

    // The steps of commit().
    bool is_sync_point_due(os::TimePoint now) const { return now - last_sync_ >= options_.sync_interval; }
    void require_own_process() const;
    void begin_generation();
    void give_identity();
    void collect_changes();
    const std::uint8_t* image_in_journal(const UndoLog::Entry& entry) const;
    bool append_to_journal(bool is_sync_point);
    void accept_changes();
    void reach_sync_point(os::TimePoint now);

    bool is_journal_full() const;
    void write_back();
    void sync_file();
    void reset_journal();

    os::Clock& clock_;
    std::unique_ptr<os::File> file_;
    std::string path_;
    PagerOptions options_;
    FileKind kind_;
    PageCipher cipher_;
    std::unique_ptr<Journal> journal_;
    std::uint32_t page_count_ = 0;
    PageCache cache_;
    UndoLog undo_;
    DirtyPages dirty_;
    std::vector<JournalPage> changes_;  // of the current commit
    std::uint32_t generation_ = 0;      // of the journal
    std::function<void()> on_rollback_;
    os::TimePoint last_sync_;
    bool broken_ = false;  // the disk failed; no more commits
    bool closed_ = false;
    std::uint64_t pages_read_ = 0;
    PageNumber last_read_ = 0;  // from the file, the last one of its run
    std::size_t run_pages_ = 1;
    ByteVector run_;
};

// Begins a transaction; rolls it back when it goes out of scope uncommitted.
class Transaction {
public:
    explicit Transaction(Pager& pager) : pager_(pager) { pager_.begin(); }
    ~Transaction() {
        if (!done_) pager_.rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    // Ends the transaction, also when it throws.
    void commit() {
        done_ = true;
        pager_.commit();
    }

private:
    Pager& pager_;
    bool done_ = false;
};

}  // namespace jet
