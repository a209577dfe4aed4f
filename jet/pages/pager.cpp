#include "jet/pages/pager.h"

#include <algorithm>
#include <new>
#include <utility>

#include "jet/pages/file_errors.h"
#include "jet/pages/journal.h"
#include "jet/pages/recovery.h"
#include "os/page_memory.h"

namespace jet {
namespace detail {

// What is looked at of every page asked for lies close together, apart from the bytes.
struct Frame {
    PageNumber page_no = jet4::kMaxPages;  // kMaxPages: nobody's
    std::uint32_t pins = 0;
    std::int32_t saved_level = 0;  // innermost open transaction that holds a before-image; 0: none
    bool dirty = false;            // committed, not yet in the .mdb
    std::uint8_t uses = 0;         // of late, up to kMaxUses
};

// Frames made at once, as many as fill a large page of memory.
struct FrameGroup {
    static constexpr std::uint32_t kFrames = os::PageMemory::kLargePage / jet4::kPageSize;

    // The first is all that most databases need; what is not touched of it costs nothing.
    explicit FrameGroup(bool first)
        : bytes(os::PageMemory::kLargePage, first ? os::PageMemory::Source::kHeap : os::PageMemory::Source::kSystem) {}
    std::array<Frame, kFrames> frames;
    os::PageMemory bytes;
};

}  // namespace detail

using detail::Frame;
using detail::FrameGroup;
using detail::FrameRef;
using detail::FrameTable;

namespace {

MutableByteSpan page_of(FrameRef place) { return {place.bytes, jet4::kPageSize}; }

}  // namespace

Page::Page(FrameRef place) : place_(place) { ++place_.frame->pins; }
Page& Page::operator=(Page&& other) noexcept {
    std::swap(place_, other.place_);
    return *this;
}
Page::~Page() {
    if (place_) --place_.frame->pins;
}
ByteSpan Page::bytes() const { return page_of(place_); }
PageNumber Page::number() const { return place_.frame->page_no; }
MutableByteSpan MutablePage::bytes() const { return page_of(place_); }

struct Pager::Undo {
    FrameRef place;
    int saved_level_before;
    std::unique_ptr<std::uint8_t[]> image;  // null: the page did not exist before
};

struct Pager::Level {
    std::vector<Undo> undo;
    std::uint32_t page_count = 0;
};

namespace {

constexpr std::size_t kSpareBuffers = 64;
constexpr std::uint8_t kMaxUses = 3;

// Has the processor fetch what lies there; nothing else happens, wherever that is.
void fetch([[maybe_unused]] const void* address) {
#ifdef __GNUC__
    __builtin_prefetch(address);
#endif
}

// So that `count` more can be added without asking for memory.
template <class T>
void make_room(std::vector<T>& list, std::size_t count) {
    if (list.capacity() - list.size() < count) list.reserve(std::max(list.size() + count, 2 * list.size()));
}

}  // namespace

Pager::Pager(std::unique_ptr<os::File> file, std::string path, PagerOptions options)
    : clock_(os::file_system().clock()), file_(std::move(file)), path_(std::move(path)), options_(options) {
    with_engine_errors([&] {
        os::FileSystem& files = os::file_system();
        journal_ = std::make_unique<Journal>(files, path_);
        const Recovered recovered = recover(files, *file_, path_, options_.read_only);
        page_count_ = recovered.page_count;
        for (const Recovered::PageImage& image : recovered.images) {
            // Only in memory, and never evicted: the file stays as it is.
            const FrameRef place = new_frame(image.page_no);
            std::memcpy(place.bytes, image.bytes.data(), image.bytes.size());
            place.frame->dirty = true;
        }
        if (!options_.read_only && file_->size() % jet4::kPageSize != 0) {
            fail(errors::kDamaged, "The database is damaged: " + path_ + " ends inside a page.");
        }
    });
    spare_buffers_.reserve(kSpareBuffers);
    last_sync_ = clock_.now() - options_.sync_interval;
}

Pager::~Pager() {
    if (closed_) return;
    try {
        close();
    } catch (...) {
        // Whatever it was, want of memory included: the journal stays beside the file, the next opening replays it.
    }
}

void Pager::require_writable() const {
    if (options_.read_only) fail(errors::kReadOnly, path_ + " is open for reading only.");
    if (broken_ || journal_->failed()) {
        fail(errors::kDiskError,
             path_ + " can no longer be written: the disk failed earlier. Close it and open it again.");
    }
}

FrameRef Pager::frame_at(std::uint32_t frame_no) const {
    FrameGroup& group = *groups_[frame_no / FrameGroup::kFrames];
    const std::size_t at = frame_no % FrameGroup::kFrames;
    return {&group.frames[at], group.bytes.data() + at * jet4::kPageSize};
}

FrameRef Pager::cached(PageNumber page_no) const {
    const std::uint32_t frame_no = table_.find(page_no);
    return frame_no != FrameTable::kNone ? frame_at(frame_no) : FrameRef{};
}

void Pager::free_frame(Frame* frame) {
    if (frame->page_no < jet4::kMaxPages) table_.clear(frame->page_no);
    frame->page_no = jet4::kMaxPages;
    frame->saved_level = 0;
    frame->uses = 0;
}

std::uint32_t Pager::added_frame() {
    if (frame_count_ == groups_.size() * FrameGroup::kFrames) {
        groups_.push_back(std::make_unique<FrameGroup>(groups_.empty()));
    }
    return frame_count_++;
}

// A clean page nobody holds, and nobody has used of late, makes room: with every round of the hand a use is forgotten.
std::uint32_t Pager::evicted_frame() {
    for (std::uint64_t i = 0; i < (kMaxUses + 1) * std::uint64_t{frame_count_}; ++i) {
        const std::uint32_t frame_no = clock_hand_;
        clock_hand_ = clock_hand_ + 1 < frame_count_ ? clock_hand_ + 1 : 0;
        Frame* const frame = frame_at(frame_no).frame;
        if (frame->pins > 0 || frame->dirty || frame->saved_level > 0) continue;
        if (frame->uses > 0) {
            --frame->uses;
            continue;
        }
        free_frame(frame);
        return frame_no;
    }
    // All are held by one large transaction: searching again for each of its pages would take ever longer.
    search_from_ = frame_count_ + frame_count_ / 4;
    return FrameTable::kNone;
}

FrameRef Pager::new_frame(PageNumber page_no) {
    std::uint32_t frame_no = FrameTable::kNone;
    if (frame_count_ >= std::max<std::size_t>(options_.cache_pages, search_from_)) frame_no = evicted_frame();
    if (frame_no == FrameTable::kNone) frame_no = added_frame();
    table_.set(page_no, frame_no);
    const FrameRef place = frame_at(frame_no);
    place.frame->page_no = page_no;
    place.frame->dirty = false;
    place.frame->uses = 0;
    place.frame->saved_level = 0;
    return place;
}

FrameRef Pager::load(PageNumber page_no) {
    if (page_no >= page_count_) corrupt(page_no, "a reference leads behind the end of the file");
    if (const FrameRef place = cached(page_no)) {
        // Pages asked for in passing, many times in a row at that, shall not push out those that come up ever again.
        if (page_no != last_loaded_ && place.frame->uses < kMaxUses) ++place.frame->uses;
        last_loaded_ = page_no;
        return place;
    }
    const FrameRef place = new_frame(page_no);
    try {
        const std::uint64_t at = std::uint64_t{page_no} * jet4::kPageSize;
        const std::size_t got = with_engine_errors([&] { return file_->read(at, page_of(place)); });
        if (got != jet4::kPageSize) corrupt(page_no, "the file ends inside the page");
    } catch (...) {
        free_frame(place.frame);
        throw;
    }
    last_loaded_ = page_no;
    ++pages_read_;
    return place;
}

void Pager::prefetch(PageNumber page_no) const {
    if (const FrameRef place = cached(page_no)) {
        fetch(place.frame);
        fetch(place.bytes);
    }
}

Page Pager::read(PageNumber page_no) { return Page(load(page_no)); }

// Rolling back must not need memory.
void Pager::keep_buffer(std::unique_ptr<std::uint8_t[]> buffer) noexcept {
    if (buffer && spare_buffers_.size() < kSpareBuffers) spare_buffers_.push_back(std::move(buffer));
}

void Pager::save_for_undo(FrameRef place) {
    const int level = static_cast<int>(levels_.size());
    if (place.frame->saved_level == level) return;
    std::unique_ptr<std::uint8_t[]> image;
    if (spare_buffers_.empty()) {
        image = std::make_unique<std::uint8_t[]>(jet4::kPageSize);
    } else {
        image = std::move(spare_buffers_.back());
        spare_buffers_.pop_back();
    }
    std::memcpy(image.get(), place.bytes, jet4::kPageSize);
    levels_.back().undo.push_back({place, place.frame->saved_level, std::move(image)});
    place.frame->saved_level = level;
}

MutablePage Pager::modify(PageNumber page_no) {
    require_writable();
    if (levels_.empty()) fail(errors::kReserved, "A page was to be changed outside a transaction.");
    MutablePage page(load(page_no));
    save_for_undo(page.place_);
    return page;
}

MutablePage Pager::extend() {
    require_writable();
    if (levels_.empty()) fail(errors::kReserved, "A page was to be added outside a transaction.");
    if (page_count_ >= jet4::kMaxPages)
        fail(errors::kFileTooLarge, path_ + " has reached the largest size a database may have, 2 GiB.");
    make_room(levels_.back().undo, 1);
    const FrameRef place = new_frame(page_count_);
    std::memset(place.bytes, 0, jet4::kPageSize);
    MutablePage page(place);
    levels_.back().undo.push_back({place, 0, nullptr});
    place.frame->saved_level = static_cast<int>(levels_.size());
    ++page_count_;
    return page;
}

void Pager::begin() {
    levels_.emplace_back();
    levels_.back().page_count = page_count_;
}

void Pager::restore_level(Level& level) {
    for (auto undo = level.undo.rbegin(); undo != level.undo.rend(); ++undo) {
        const FrameRef place = undo->place;
        if (undo->image) {
            std::memcpy(place.bytes, undo->image.get(), jet4::kPageSize);
            place.frame->saved_level = undo->saved_level_before;
            keep_buffer(std::move(undo->image));
        } else {
            free_frame(place.frame);
        }
    }
    page_count_ = level.page_count;
}

void Pager::rollback() {
    restore_level(levels_.back());
    levels_.pop_back();
    search_from_ = 0;
    if (on_rollback_) on_rollback_();
}

void Pager::commit() {
    if (levels_.size() > 1) {
        // What the outer transaction has not saved yet, it takes over.
        make_room(levels_[levels_.size() - 2].undo, levels_.back().undo.size());
        Level inner = std::move(levels_.back());
        levels_.pop_back();
        const int outer = static_cast<int>(levels_.size());
        for (Undo& undo : inner.undo) {
            undo.place.frame->saved_level = outer;
            if (undo.saved_level_before == outer) {
                keep_buffer(std::move(undo.image));
            } else {
                levels_.back().undo.push_back(std::move(undo));
            }
        }
        return;
    }
    if (levels_.back().undo.empty()) {
        levels_.pop_back();
        return;
    }
    const auto now = clock_.now();
    bool is_sync_point = now - last_sync_ >= options_.sync_interval;
    try {
        require_writable();
        if (file_->is_inherited()) {
            fail(errors::kAccessDenied, path_ + " belongs to the process that this one was forked from.");
        }
        with_engine_errors([&] {
            if (!journal_->started()) bump_change_counter();
            std::vector<JournalPage> pages;
            pages.reserve(levels_.back().undo.size());
            for (const Undo& undo : levels_.back().undo) {
                pages.push_back({undo.place.frame->page_no, undo.place.bytes});
            }
            make_room(dirty_, pages.size());  // nothing may fail once the commit stands
            const std::uint64_t end_before = journal_->size_bytes();
            journal_->append(pages, page_count_);
            // Nobody but this commit will sync it: then it is a sync point.
            if (!is_sync_point) is_sync_point = !journal_->sync_later();
            if (is_sync_point) {
                try {
                    journal_->sync();
                } catch (...) {
                    journal_->withdraw(end_before);
                    throw;
                }
            }
        });
    } catch (...) {
        rollback();
        throw;
    }
    for (Undo& undo : levels_.back().undo) {
        Frame& frame = *undo.place.frame;
        frame.saved_level = 0;
        if (!frame.dirty) dirty_.push_back(frame.page_no);
        frame.dirty = true;
        keep_buffer(std::move(undo.image));
    }
    levels_.pop_back();
    if (!is_sync_point && journal_->size_bytes() < options_.journal_limit_bytes) return;
    last_sync_ = now;
    // The commit stands. Should the .mdb refuse its pages, they stay in the journal and in memory, and the
    // next sync point tries again.
    try {
        write_back();
        if (journal_->size_bytes() >= options_.journal_limit_bytes) reset_journal();
    } catch (const os::FileError&) {
    } catch (const std::bad_alloc&) {
    }
}

void Pager::bump_change_counter() {
    const ByteSpan header_page = page_of(load(jet4::kHeaderPage));
    const std::uint64_t identity = file_identity(header_page);
    MutablePage page = modify(jet4::kObjectsPage);
    const std::uint64_t counter = load_u64(page.bytes(), jet4::tdef::kFiller);
    const std::uint64_t next = counter + 1 + (checksum64({}, fresh_salt()) & 0xFFFFFFFF);
    journal_->start({identity, counter, next});
    store_u64(page.bytes(), jet4::tdef::kFiller, next);
}

// As after a failed sync of the journal, only the next opening can tell what the disk holds.
void Pager::sync_file() {
    try {
        file_->sync();
    } catch (...) {
        broken_ = true;
        throw;
    }
}

// Throws os::FileError. Needs no memory: without any for a run of pages, each is written for itself.
void Pager::write_back() {
    constexpr std::size_t kRunPages = 64;
    journal_->sync();
    search_from_ = 0;
    std::sort(dirty_.begin(), dirty_.end());
    ByteVector run;
    std::size_t longest = kRunPages;
    try {
        run.reserve(std::min(dirty_.size(), kRunPages) * jet4::kPageSize);
    } catch (const std::bad_alloc&) {
        longest = 1;
    }
    for (std::size_t i = 0; i < dirty_.size();) {
        std::size_t end = i + 1;
        while (end < dirty_.size() && dirty_[end] == dirty_[end - 1] + 1 && end - i < longest) ++end;
        const std::uint64_t at = std::uint64_t{dirty_[i]} * jet4::kPageSize;
        if (end - i == 1) {
            file_->write(at, page_of(cached(dirty_[i])));
        } else {
            run.clear();
            for (std::size_t k = i; k < end; ++k) append_bytes(run, page_of(cached(dirty_[k])));
            file_->write(at, run);
        }
        pages_written_ += end - i;
        i = end;
    }
    for (PageNumber page_no : dirty_) cached(page_no).frame->dirty = false;
    dirty_.clear();
}

void Pager::reset_journal() {
    sync_file();
    journal_->reset();
    // Otherwise a part of the old journal could be found under the new one's first commit and be replayed.
    journal_->sync();
}

void Pager::sync_point() {
    require_writable();
    if (in_transaction()) fail(errors::kReserved, "A sync point was asked for inside a transaction.");
    with_engine_errors([&] { write_back(); });
    last_sync_ = clock_.now();
}

void Pager::close() {
    if (std::exchange(closed_, true)) return;
    struct Release {
        Pager& pager;
        ~Release() {
            pager.journal_->release();
            pager.file_.reset();
        }
    } release{*this};
    if (file_->is_inherited()) return;
    while (in_transaction()) rollback();
    if (options_.read_only || !journal_->started()) {
        with_engine_errors([&] { journal_->remove(); });
        return;
    }
    require_writable();
    with_engine_errors([&] {
        write_back();
        sync_file();
        journal_->remove();
    });
}

}  // namespace jet
