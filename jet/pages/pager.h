// Pages in memory, and transactions over them.
//
// Invariants
//  1. The .mdb is never written before the new content of the pages is safe in the journal.
//  2. A page changed by the open transaction, or committed but not yet in the .mdb, is not evicted.
//  3. A transaction that is not committed leaves every page, and the page count, as it found them.
//  4. The change counter of the file moves once per journal generation, inside the generation's first
//     commit, so that a journal is replayed onto the file it was written for and no other.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/types.h"
#include "os/file.h"

namespace jet {

class Journal;
class Pager;

namespace detail {

struct Frame;
struct FrameGroup;

// A frame and the page it holds, kPageSize bytes; of none when `frame` is null.
struct FrameRef {
    Frame* frame = nullptr;
    std::uint8_t* bytes = nullptr;
    explicit operator bool() const { return frame != nullptr; }
};

// Numbers of frames by page number, in chunks made at first use: a large file costs nothing until its pages are read.
class FrameTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    std::uint32_t find(PageNumber page_no) const {
        const std::size_t chunk = page_no / kChunk;
        return chunk < chunks_.size() && chunks_[chunk] ? (*chunks_[chunk])[page_no % kChunk] : kNone;
    }
    void set(PageNumber page_no, std::uint32_t frame_no) {
        const std::size_t chunk = page_no / kChunk;
        if (chunk >= chunks_.size()) chunks_.resize(chunk + 1);
        if (!chunks_[chunk]) {
            chunks_[chunk] = std::make_unique<Chunk>();
            chunks_[chunk]->fill(kNone);
        }
        (*chunks_[chunk])[page_no % kChunk] = frame_no;
    }
    // Needs no memory.
    void clear(PageNumber page_no) {
        if (find(page_no) != kNone) set(page_no, kNone);
    }

private:
    static constexpr std::size_t kChunk = 1024;
    using Chunk = std::array<std::uint32_t, kChunk>;
    std::vector<std::unique_ptr<Chunk>> chunks_;
};

}  // namespace detail

// A pinned page: its bytes stay in place while the object lives. `bytes()` is always kPageSize long.
class Page {
public:
    Page() = default;
    Page(Page&& other) noexcept : place_(std::exchange(other.place_, {})) {}
    Page& operator=(Page&& other) noexcept;
    ~Page();

    ByteSpan bytes() const;
    PageNumber number() const;

protected:
    friend class Pager;
    explicit Page(detail::FrameRef place);
    detail::FrameRef place_;
};

// A pinned page of the open transaction that may be written.
class MutablePage : public Page {
public:
    MutablePage() = default;
    MutableByteSpan bytes() const;

private:
    friend class Pager;
    using Page::Page;
};

// Taken as pages are read: 256 MiB, or 64 MiB where a process has little room for addresses.
inline constexpr std::size_t kDefaultCachePages = sizeof(void*) >= 8 ? 65536 : 16384;

struct PagerOptions {
    bool read_only = false;
    std::size_t cache_pages = kDefaultCachePages;
    std::uint64_t journal_limit_bytes = 8u << 20;  // past it, the journal is emptied
    std::chrono::milliseconds sync_interval{250};  // a commit so long after the last sync point is one
};

class Pager {
public:
    // Takes over `file` (open and locked) at `path`, which has no links in it. Replays or sets aside a journal beside
    // the file; a read-only pager takes the journal's pages into memory only. The size of the file must be
    // a multiple of the page size (a torn tail from a crash is cut off by the replay).
    Pager(std::unique_ptr<os::File> file, std::string path, PagerOptions options = {});
    // As close(); failures are swallowed, the journal then stays and the next open replays it.
    ~Pager();

    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    const std::string& path() const { return path_; }
    bool read_only() const { return options_.read_only; }
    bool is_closed() const { return closed_; }
    // Pages of the file as the open transaction sees it.
    std::uint32_t page_count() const { return page_count_; }

    Page read(PageNumber page_no);
    // Says that the page, should it be in memory, will soon be read. Any number will do.
    void prefetch(PageNumber page_no) const;
    // Only inside a transaction.
    MutablePage modify(PageNumber page_no);
    // Appends a zeroed page (only inside a transaction); 3183 at the 2 GiB limit.
    MutablePage extend();

    // Transactions nest; an inner one that is rolled back undoes its own changes only. The outermost
    // commit writes the journal. Use Transaction.
    void begin();
    void commit();
    void rollback();
    bool in_transaction() const { return !levels_.empty(); }

    // A sync point now: everything committed is on disk in the journal and written to the .mdb.
    void sync_point();
    // Writes and syncs everything and removes the journal. Throws jet::Error when the system refuses; the journal is
    // then left for the next open. In a forked child the files are let go of and nothing else. No further use
    // afterwards.
    void close();

    // Called after pages have been taken back, so that whoever derived something from them forgets it.
    void set_rollback_listener(std::function<void()> listener) { on_rollback_ = std::move(listener); }

    // How many pages have been read from and written to the .mdb, for tests and benchmarks.
    std::uint64_t pages_read() const { return pages_read_; }
    std::uint64_t pages_written() const { return pages_written_; }

private:
    struct Undo;
    struct Level;

    detail::FrameRef frame_at(std::uint32_t frame_no) const;
    // The frame that holds the page, if one does.
    detail::FrameRef cached(PageNumber page_no) const;
    detail::FrameRef load(PageNumber page_no);
    std::uint32_t evicted_frame();
    std::uint32_t added_frame();
    detail::FrameRef new_frame(PageNumber page_no);
    void free_frame(detail::Frame* frame);
    void save_for_undo(detail::FrameRef place);
    void keep_buffer(std::unique_ptr<std::uint8_t[]> buffer) noexcept;
    void restore_level(Level& level);
    void bump_change_counter();
    void sync_file();
    void write_back();
    void reset_journal();
    void require_writable() const;

    os::Clock& clock_;
    std::unique_ptr<os::File> file_;
    std::string path_;
    PagerOptions options_;
    std::unique_ptr<Journal> journal_;
    std::uint32_t page_count_ = 0;
    detail::FrameTable table_;
    std::vector<std::unique_ptr<detail::FrameGroup>> groups_;
    std::uint32_t frame_count_ = 0;  // frames in use, the first ones of the groups
    std::uint32_t clock_hand_ = 0;
    std::uint32_t search_from_ = 0;  // frames below which none can be free
    PageNumber last_loaded_ = jet4::kMaxPages;
    std::vector<Level> levels_;
    std::vector<PageNumber> dirty_;  // committed, not yet in the .mdb
    std::vector<std::unique_ptr<std::uint8_t[]>> spare_buffers_;
    std::function<void()> on_rollback_;
    os::TimePoint last_sync_;
    bool broken_ = false;  // the disk failed; no more commits
    bool closed_ = false;
    std::uint64_t pages_read_ = 0;
    std::uint64_t pages_written_ = 0;
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
    // Whether it succeeds or throws, the transaction is over.
    void commit() {
        done_ = true;
        pager_.commit();
    }

private:
    Pager& pager_;
    bool done_ = false;
};

}  // namespace jet
