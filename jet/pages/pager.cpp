#include "jet/pages/pager.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "jet/pages/checksum.h"
#include "jet/pages/file_errors.h"
#include "jet/pages/journal.h"
#include "jet/pages/recovery.h"

namespace jet {

namespace {

FileKind kind_of(os::File& file) {
    ByteVector head(jet4::header::kMasked + jet4::header::kMaskedBytes);
    head.resize(with_engine_errors([&] { return file.read(0, head); }));
    return kind_of_file(head);
}

}  // namespace

Pager::Pager(os::FileSystem& files, std::unique_ptr<os::File> file, std::string path, PagerOptions options)
    : clock_(files.clock()),
      file_(std::move(file)),
      path_(std::move(path)),
      options_(options),
      kind_(kind_of(*file_)),
      cipher_(kind_.encryption_key),
      cache_(options.cache_pages, kind_.format->page_size),
      last_read_(jet4::kMaxPages) {
    with_engine_errors([&] {
        journal_ = std::make_unique<Journal>(files, path_, kind_.format->page_size);
        const Recovered recovered = recover(files, *file_, path_, options_.read_only, kind_);
        page_count_ = recovered.page_count;
        for (const Recovered::PageImage& image : recovered.images) {
            // Only in memory, and never evicted: the file stays unchanged.
            const FrameRef place = cache_.add(image.page_no);
            std::memcpy(place.bytes, image.bytes.data(), image.bytes.size());
            place.frame->dirty = true;
        }
        if (!options_.read_only && file_->size() % kind_.format->page_size != 0) {
            fail(errors::kDamaged, "The database is damaged: " + path_ + " ends inside a page.");
        }
    });
    last_sync_ = clock_.now() - options_.sync_interval;
}

Pager::~Pager() {
    if (closed_) return;
    try {
        close();
    } catch (...) {
        // After any error, lack of memory included, the journal stays beside the file and the next opening replays it.
    }
}

void Pager::require_writable() const {
    if (options_.read_only) fail(errors::kReadOnly, path_ + " is open for reading only.");
    if (broken_ || journal_->failed()) {
        fail(errors::kDiskError,
             path_ + " can no longer be written: the disk failed earlier. Close it and open it again.");
    }
}

void Pager::require_transaction(const char* what) const {
    if (!in_transaction()) fail(errors::kReserved, std::string("A page was to be ") + what + " outside a transaction.");
}

FrameRef Pager::load(PageNumber page_no) {
    if (page_no >= page_count_) corrupt(page_no, "a reference leads behind the end of the file");
    if (const FrameRef place = cache_.use(page_no)) return place;
    const std::size_t pages = pages_to_read(page_no);
    last_read_ = page_no;
    if (pages > 1) {
        if (const FrameRef place = read_run(page_no, pages)) return place;
    }
    return read_into_cache(page_no);
}

// After some pages that each came soon after the one before, as an enumeration asks for them, a page brings more and
// more of the next ones with it.
std::size_t Pager::pages_to_read(PageNumber page_no) {
    constexpr PageNumber kNear = 8;
    constexpr std::size_t kSingly = 8;  // a small file is read page by page
    constexpr std::size_t kLongestRun = 32;
    const bool is_next = page_no > last_read_ && page_no - last_read_ <= kNear;
    const std::size_t more = run_pages_ < kSingly ? run_pages_ + 1 : 2 * run_pages_;
    run_pages_ = is_next ? std::min({more, kLongestRun, options_.cache_pages / 8 + 1}) : 1;
    return run_pages_ < kSingly ? 1 : std::min<std::size_t>(run_pages_, page_count_ - page_no);
}

// None where the run cannot be had: then the page must be read alone.
FrameRef Pager::read_run(PageNumber page_no, std::size_t pages) {
    try {
        const std::size_t page_size = format().page_size;
        run_.resize(pages * page_size);
        const std::size_t got = file_->read(std::uint64_t{page_no} * page_size, run_) / page_size;
        if (got == 0) return {};
        pages_read_ += got;
        last_read_ = page_no + static_cast<PageNumber>(got) - 1;
        // The page itself comes last, so that no other takes its frame.
        for (std::size_t i = got; i-- > 0;) {
            const PageNumber at = page_no + static_cast<PageNumber>(i);
            if (cache_.find(at)) continue;  // and may be newer
            const FrameRef place = cache_.add(at);
            std::memcpy(place.bytes, run_.data() + i * page_size, page_size);
            if (cipher_.is_on()) cipher_.decode(at, place.page());
            if (i == 0) return place;
        }
    } catch (const os::FileError&) {
    } catch (const std::bad_alloc&) {
    }
    return {};
}

FrameRef Pager::read_into_cache(PageNumber page_no) {
    const FrameRef place = cache_.add(page_no);
    try {
        const MutableByteSpan page = place.page();
        const std::uint64_t at = std::uint64_t{page_no} * page.size();
        const std::size_t got = with_engine_errors([&] { return file_->read(at, page); });
        if (got != page.size()) corrupt(page_no, "the file ends inside the page");
        if (cipher_.is_on()) cipher_.decode(page_no, page);
    } catch (...) {
        cache_.remove(*place.frame);
        throw;
    }
    ++pages_read_;
    return place;
}

bool Pager::find(PageNumber page_no, Page& into) const {
    const FrameRef place = cache_.find(page_no);
    if (place) into = Page(place);
    return static_cast<bool>(place);
}

std::size_t Pager::read_past_cache(PageNumber page_no, MutableByteSpan into) {
    if (page_no >= page_count_) corrupt(page_no, "a reference leads behind the end of the file");
    const std::size_t page_size = format().page_size;
    const std::uint64_t at = std::uint64_t{page_no} * page_size;
    const std::size_t got = with_engine_errors([&] { return file_->read(at, into); }) / page_size;
    if (got == 0) corrupt(page_no, "the file ends inside the page");
    pages_read_ += got;
    for (std::size_t i = 0; cipher_.is_on() && i < got; ++i) {
        cipher_.decode(page_no + static_cast<PageNumber>(i), into.subspan(i * page_size, page_size));
    }
    return got;
}

MutablePage Pager::modify(PageNumber page_no) {
    require_writable();
    require_transaction("changed");
    MutablePage page(load(page_no));
    undo_.save(page.place_);
    return page;
}

MutablePage Pager::extend() {
    require_writable();
    require_transaction("added");
    if (page_count_ >= jet4::kMaxPages) {
        fail(errors::kFileTooLarge, path_ + " has reached the largest size a " + format().name +
                                        " database may have, " + format().largest_file + ".");
    }
    undo_.make_room_for_new();
    MutablePage page(cache_.add(page_count_));
    std::memset(page.bytes().data(), 0, page.bytes().size());
    undo_.add_new(page.place_);
    ++page_count_;
    return page;
}

void Pager::rollback() {
    page_count_ = undo_.page_count_before();
    undo_.roll_back(cache_);
    cache_.search_again();
    if (on_rollback_) on_rollback_();
}

void Pager::commit() {
    if (undo_.depth() > 1) return undo_.merge();
    if (!undo_.find_changes()) return undo_.accept();
    const os::TimePoint now = clock_.now();
    bool is_sync_point = is_sync_point_due(now);
    try {
        require_writable();
        with_engine_errors([&] {
            if (!journal_->started()) begin_generation();
            collect_changes();
            is_sync_point = append_to_journal(is_sync_point);
        });
    } catch (...) {
        rollback();
        throw;
    }
    accept_changes();
    if (is_sync_point || is_journal_full()) reach_sync_point(now);
}

void Pager::require_own_process() const {
    if (file_->is_inherited()) {
        fail(errors::kAccessDenied, path_ + " belongs to the process that this one was forked from.");
    }
}

// Where the header does not tell two files apart, the engine names the file before its first generation: eight bytes
// that no other program uses, written straight into the file. Torn, they are another name.
void Pager::give_identity() {
    const std::size_t at = format().file_identity;
    if (at == 0) return;
    const FrameRef place = load(jet4::kObjectsPage);
    if (load_u64(place.page(), at) != 0) return;
    ByteVector named(place.page().begin(), place.page().end());
    store_u64(named, at, checksum64({}, fresh_salt()) | 1);
    const std::uint64_t identity = load_u64(named, at);
    cipher_.apply(jet4::kObjectsPage, named);
    file_->write(std::uint64_t{jet4::kObjectsPage} * named.size() + at, ByteSpan(named).subspan(at, 8));
    file_->sync();
    store_u64(place.page(), at, identity);
}

// Advances the change counter as part of the generation's first commit. A forked child creates no journal; os::File
// refuses its writes to one that the parent has created.
void Pager::begin_generation() {
    require_own_process();
    give_identity();
    MutablePage page = modify(jet4::kObjectsPage);
    const std::uint64_t identity = file_identity(load(jet4::kHeaderPage).page(), page.bytes());
    const std::uint64_t counter = load_u64(page.bytes(), format().change_counter);
    const std::uint64_t next = counter + 1 + (checksum64({}, fresh_salt()) & 0xFFFFFFFF);
    journal_->start({identity, counter, next});
    ++generation_;
    store_u64(page.bytes(), format().change_counter, next);
    undo_.find_changes();
}

// Allocates all memory that the commit needs: nothing may fail once it is in the journal.
void Pager::collect_changes() {
    changes_.clear();
    for (const UndoLog::Entry& entry : undo_.entries()) {
        if (!entry.changed) continue;
        changes_.push_back({entry.place.frame->page_no, entry.place.bytes, image_in_journal(entry)});
    }
    dirty_.make_room(changes_.size());
}

const std::uint8_t* Pager::image_in_journal(const UndoLog::Entry& entry) const {
    return entry.place.frame->generation == generation_ ? entry.image.get() : nullptr;
}

// Returns whether the commit is a sync point; it becomes one when the journal cannot be synced in the background.
bool Pager::append_to_journal(bool is_sync_point) {
    const std::uint64_t end_before = journal_->size_bytes();
    journal_->append(changes_, page_count_);
    if (!is_sync_point && journal_->sync_later()) return false;
    try {
        journal_->sync();
    } catch (...) {
        journal_->withdraw(end_before);
        throw;
    }
    return true;
}

void Pager::accept_changes() {
    for (const UndoLog::Entry& entry : undo_.entries()) {
        if (!entry.changed) continue;
        entry.place.frame->generation = generation_;
        dirty_.add(*entry.place.frame);
    }
    undo_.accept();
}

// The commit is final. If the .mdb refuses its pages, they stay in the journal and in memory, and the next sync point
// retries.
void Pager::reach_sync_point(os::TimePoint now) {
    last_sync_ = now;
    try {
        write_back();
        if (is_journal_full()) reset_journal();
    } catch (const os::FileError&) {
    } catch (const std::bad_alloc&) {
    }
}

bool Pager::is_journal_full() const { return journal_->size_bytes() >= options_.journal_limit_bytes; }

void Pager::write_back() {
    journal_->sync();
    cache_.search_again();
    dirty_.write_to(*file_, cache_, cipher_);
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

void Pager::reset_journal() {
    sync_file();
    journal_->reset();
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
    journal_->sync_no_later();
    require_writable();
    with_engine_errors([&] {
        write_back();
        sync_file();
        journal_->remove();
    });
}

}  // namespace jet
