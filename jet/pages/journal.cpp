#include "jet/pages/journal.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "jet/pages/deferred_sync.h"

namespace jet {
namespace {

constexpr std::size_t kKeptBufferBytes = 4u << 20;
constexpr std::uint64_t kKeptFileBytes = 32u << 20;

// A burst of commits has the journal synced in the background every so many bytes, so that little is left when it ends.
constexpr std::uint64_t kEarlySyncBytes = 512u << 10;

}  // namespace

std::uint64_t fresh_salt() {
    return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
           static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) << 20;
}

void remove_journal_file(os::FileSystem& files, const std::string& path) {
    try {
        files.remove(path);
    } catch (const os::FileError& refused) {
        if (refused.fault() == os::FileFault::kNotFound) return;
        const std::unique_ptr<os::File> file = files.open(path, os::OpenMode::kOpenSide);
        file->truncate(0);
        file->sync();
    }
    files.sync_folder_of(path);
}

Journal::Journal(os::FileSystem& files, std::string database_path, std::size_t page_size)
    : files_(files), database_path_(std::move(database_path)), page_size_(page_size), path_(path_for(database_path_)) {}

Journal::~Journal() = default;

namespace {

// A new journal, or the empty one that the opening of the database could not remove. If another program releases that
// one between the two calls and it disappears, creates it anew.
std::unique_ptr<os::File> made_or_found(os::FileSystem& files, const std::string& path, bool& created) {
    constexpr int kAttempts = 10;
    for (int attempt = 1;; ++attempt) {
        try {
            created = true;
            return files.open(path, os::OpenMode::kCreateSide);
        } catch (const os::FileError& error) {
            if (error.fault() != os::FileFault::kExists) throw;
        }
        try {
            created = false;
            std::unique_ptr<os::File> file = files.open(path, os::OpenMode::kOpenSide);
            if (file->size() == 0) return file;
            throw os::FileError(os::FileFault::kExists, path + " has come from elsewhere while the database was open.");
        } catch (const os::FileError& error) {
            if (error.fault() != os::FileFault::kNotFound || attempt == kAttempts) throw;
        }
    }
}

}  // namespace

void Journal::open_file() {
    bool created = false;
    std::unique_ptr<os::File> file = made_or_found(files_, path_, created);
    try {
        files_.copy_access(database_path_, path_);
        deferred_ = std::make_unique<DeferredSync>(files_, path_);
    } catch (...) {
        file.reset();
        if (created) remove_journal_file(files_, path_);
        throw;
    }
    file_ = std::move(file);
    name_unsynced_ = true;
}

void Journal::start(const JournalBinding& binding) {
    if (!file_) open_file();
    checksum_ = journal::store_header(header_, binding, fresh_salt(), page_size_);
    end_ = 0;
    if (file_bytes_ > 0) write_header();
}

void Journal::write_header() {
    unsynced_ = true;
    file_->write(0, header_);
    sync();
    end_ = header_.size();
    cut_to_kept_size();
}

// Frees the space that one large transaction needed.
void Journal::cut_to_kept_size() noexcept {
    if (file_bytes_ <= kKeptFileBytes) return;
    try {
        file_->truncate(kKeptFileBytes);
        file_bytes_ = kKeptFileBytes;
    } catch (const os::FileError&) {
        // Then it keeps its size.
    }
}

MutableByteSpan Journal::buffer_of(std::size_t bytes) {
    if (bytes > buffer_bytes_) {
        buffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
        buffer_bytes_ = bytes;
    }
    return {buffer_.get(), bytes};
}

void Journal::append(std::span<const JournalPage> pages, std::uint32_t page_count) {
    const std::size_t head = end_ > 0 ? 0 : header_.size();
    const MutableByteSpan buffer = buffer_of(head + journal::most_commit_bytes(pages.size(), page_size_));
    if (head > 0) store_bytes(buffer, 0, header_);
    std::uint64_t checksum = checksum_;
    const std::size_t total =
        head + journal::store_commit(buffer.subspan(head), pages, page_count, checksum, page_size_);
    file_bytes_ = std::max(file_bytes_, end_ + total);
    try {
        file_->write(end_, buffer.first(total));
    } catch (...) {
        // Part of it may have been written: truncate it, so that a later commit is written in its place.
        withdraw(end_);
        throw;
    }
    end_ += total;
    checksum_ = checksum;
    started_ = true;
    unsynced_ = true;
    bytes_since_sync_ += total;
    if (buffer_bytes_ > kKeptBufferBytes) {
        buffer_.reset();
        buffer_bytes_ = 0;
    }
}

void Journal::withdraw(std::uint64_t end) noexcept {
    try {
        file_->truncate(end);
        file_bytes_ = end;
    } catch (const os::FileError&) {
        // The reader ignores a torn tail and the next append overwrites it; a complete commit may be found at the next
        // opening.
    }
}

void Journal::sync() {
    if (!unsynced_) return;
    try {
        file_->sync();
    } catch (...) {
        sync_failed_ = true;
        throw;
    }
    if (name_unsynced_) {
        try {
            files_.sync_folder_of(path_);
        } catch (const os::FileError&) {
            sync_failed_ = true;
            throw;
        }
    }
    name_unsynced_ = false;
    unsynced_ = false;
    bytes_since_sync_ = 0;
}

bool Journal::sync_later() {
    if (name_unsynced_ || !deferred_) return false;
    if (bytes_since_sync_ < kEarlySyncBytes) return deferred_->request(kSyncDelay);
    bytes_since_sync_ = 0;
    return deferred_->request(std::chrono::milliseconds(0));
}

void Journal::sync_no_later() {
    if (!deferred_) return;
    deferred_->stop();
    sync_failed_ |= deferred_->failed();
    deferred_.reset();
}

bool Journal::failed() const { return sync_failed_ || (deferred_ && deferred_->failed()); }

void Journal::reset() {
    started_ = false;
    end_ = 0;
}

void Journal::release() {
    deferred_.reset();
    file_.reset();
    reset();
    file_bytes_ = 0;
}

void Journal::remove() {
    if (!file_) return;
    release();
    remove_journal_file(files_, path_);
}

}  // namespace jet
