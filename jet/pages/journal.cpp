#include "jet/pages/journal.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "jet/base/jet4.h"
#include "jet/pages/deferred_sync.h"

namespace jet {
namespace {

// Journal on disk; the engine's own format.
constexpr char kMagic[8] = {'k', 'v', 'd', 'b', 'j', 'r', 'n', '1'};
constexpr std::size_t kPageSizeAt = 8;
constexpr std::size_t kIdentityAt = 16;
constexpr std::size_t kCounterAt = 24;
constexpr std::size_t kSaltAt = 32;
constexpr std::size_t kNextCounterAt = 40;
constexpr std::size_t kHeaderChecksumAt = 56;

constexpr std::uint32_t kCommitMark = 0x54494D43;  // "CMIT"
constexpr std::size_t kCommitHeader = 24;
constexpr std::size_t kKeptBufferBytes = 4u << 20;
constexpr std::size_t kCommitPagesAt = 4;
constexpr std::size_t kCommitPageCountAt = 8;
constexpr std::size_t kCommitChecksumAt = 16;  // last field; covers what is before it and the pages

}  // namespace

std::uint64_t fresh_salt() {
    return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
           static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) << 20;
}

std::uint64_t checksum64(ByteSpan bytes, std::uint64_t seed) {
    constexpr std::uint64_t kMultiplier = 0x9FB21C651E98DF25;
    std::uint64_t lanes[4] = {seed ^ 0x243F6A8885A308D3, seed ^ 0x13198A2E03707344, seed + 0xA4093822299F31D0,
                              seed + bytes.size()};
    const auto mix = [](std::uint64_t lane, std::uint64_t word) {
        lane = (lane ^ word) * kMultiplier;
        return lane ^ lane >> 29;
    };
    std::size_t at = 0;
    for (; at + 32 <= bytes.size(); at += 32) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data() + at + 8 * i, 8);
            if constexpr (std::endian::native == std::endian::big) word = load_u64(bytes, at + 8 * i);
            lanes[i] = mix(lanes[i], word);
        }
    }
    for (; at < bytes.size(); ++at) lanes[at % 4] = mix(lanes[at % 4], bytes[at] + 1u);
    return mix(mix(mix(lanes[0], lanes[1]), lanes[2]), lanes[3]);
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

Journal::Journal(os::FileSystem& files, std::string database_path)
    : files_(files), database_path_(std::move(database_path)), path_(path_for(database_path_)) {}

Journal::~Journal() = default;

namespace {

// A new journal, or the empty one that the opening of the database could not remove. One that goes away between the two
// questions, because somebody lets go of it, is made anew.
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
    header_.assign(kHeaderBytes, 0);
    std::copy(std::begin(kMagic), std::end(kMagic), header_.begin());
    store_u32(header_, kPageSizeAt, jet4::kPageSize);
    store_u64(header_, kIdentityAt, binding.identity);
    store_u64(header_, kCounterAt, binding.base_counter);
    store_u64(header_, kSaltAt, fresh_salt());
    store_u64(header_, kNextCounterAt, binding.next_counter);
    checksum_ = checksum64(ByteSpan(header_).first(kHeaderChecksumAt), 0);
    store_u64(header_, kHeaderChecksumAt, checksum_);
    end_ = 0;
}

void Journal::append(const std::vector<JournalPage>& pages, std::uint32_t page_count) {
    const std::size_t head = end_ > 0 ? 0 : header_.size();
    const std::size_t total = head + kCommitHeader + pages.size() * (4 + jet4::kPageSize);
    if (total > buffer_bytes_) {
        buffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(total);
        buffer_bytes_ = total;
    }
    const MutableByteSpan all(buffer_.get(), total);
    if (head > 0) store_bytes(all, 0, header_);
    const MutableByteSpan commit = all.subspan(head);
    std::fill_n(commit.begin(), kCommitHeader, std::uint8_t{0});
    store_u32(commit, 0, kCommitMark);
    store_u32(commit, kCommitPagesAt, static_cast<std::uint32_t>(pages.size()));
    store_u32(commit, kCommitPageCountAt, page_count);
    std::size_t at = kCommitHeader;
    for (const JournalPage& page : pages) {
        store_u32(commit, at, page.page_no);
        at += 4;
    }
    for (const JournalPage& page : pages) {
        std::memcpy(commit.data() + at, page.bytes, jet4::kPageSize);
        at += jet4::kPageSize;
    }
    std::uint64_t sum = checksum64(commit.first(kCommitChecksumAt), checksum_);
    sum = checksum64(commit.subspan(kCommitHeader), sum);
    store_u64(commit, kCommitChecksumAt, sum);
    try {
        file_->write(end_, all);
    } catch (...) {
        // Part of it may be there: cut it off, so that a later commit stands where this one would have.
        withdraw(end_);
        throw;
    }
    end_ += total;
    checksum_ = sum;
    unsynced_ = true;
    if (buffer_bytes_ > kKeptBufferBytes) {
        buffer_.reset();
        buffer_bytes_ = 0;
    }
}

void Journal::withdraw(std::uint64_t end) noexcept {
    try {
        file_->truncate(end);
    } catch (const os::FileError&) {
        // A torn tail is ignored by the reader and overwritten by the next append; a whole commit may be found
        // at the next opening.
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
}

bool Journal::sync_later() { return !name_unsynced_ && deferred_ && deferred_->request(); }

bool Journal::failed() const { return sync_failed_ || (deferred_ && deferred_->failed()); }

void Journal::reset() {
    if (file_) file_->truncate(0);
    unsynced_ = file_ != nullptr;
    end_ = 0;
}

void Journal::release() {
    deferred_.reset();
    file_.reset();
    end_ = 0;
}

void Journal::remove() {
    if (!file_) return;
    release();
    remove_journal_file(files_, path_);
}

bool Journal::read(os::File& file, JournalContent& content) {
    ByteVector header(kHeaderBytes);
    if (file.read(0, header) != kHeaderBytes) return false;
    if (!std::equal(std::begin(kMagic), std::end(kMagic), header.begin())) return false;
    if (load_u32(header, kPageSizeAt) != jet4::kPageSize) return false;
    std::uint64_t sum = checksum64(ByteSpan(header).first(kHeaderChecksumAt), 0);
    if (load_u64(header, kHeaderChecksumAt) != sum) return false;
    content.binding = {load_u64(header, kIdentityAt), load_u64(header, kCounterAt), load_u64(header, kNextCounterAt)};

    const std::uint64_t size = file.size();
    std::uint64_t at = kHeaderBytes;
    std::map<PageNumber, std::uint64_t> images;
    ByteVector body;
    while (at + kCommitHeader <= size) {
        std::uint8_t commit[kCommitHeader];
        if (file.read(at, commit) != kCommitHeader || load_u32(commit, 0) != kCommitMark) break;
        const std::uint64_t pages = load_u32(commit, kCommitPagesAt);
        const std::uint64_t bytes = pages * (4 + jet4::kPageSize);
        if (bytes > size - at - kCommitHeader) break;
        body.resize(static_cast<std::size_t>(bytes));
        if (file.read(at + kCommitHeader, body) != bytes) break;
        const std::uint64_t commit_sum = checksum64(body, checksum64(ByteSpan(commit).first(kCommitChecksumAt), sum));
        if (commit_sum != load_u64(commit, kCommitChecksumAt)) break;
        sum = commit_sum;
        for (std::uint64_t i = 0; i < pages; ++i) {
            images[load_u32(body, static_cast<std::size_t>(4 * i))] =
                at + kCommitHeader + 4 * pages + i * jet4::kPageSize;
        }
        content.page_count = load_u32(commit, kCommitPageCountAt);
        at += kCommitHeader + bytes;
    }
    content.last_images.clear();
    for (const auto& [page_no, offset] : images) {
        if (page_no < content.page_count) content.last_images.push_back({page_no, offset});
    }
    return true;
}

}  // namespace jet
