#include "jet/pages/journal_format.h"

#include <algorithm>

#include "jet/base/format.h"
#include "jet/pages/checksum.h"
#include "jet/pages/page_ranges.h"

namespace jet::journal {
namespace {

constexpr char kMagic[8] = {'k', 'v', 'd', 'b', 'j', 'r', 'n', '2'};
constexpr char kFormerMagic[8] = {'k', 'v', 'd', 'b', 'j', 'r', 'n', '1'};
constexpr std::size_t kPageSizeAt = 8;
constexpr std::size_t kIdentityAt = 16;
constexpr std::size_t kCounterAt = 24;
constexpr std::size_t kSaltAt = 32;
constexpr std::size_t kNextCounterAt = 40;
constexpr std::size_t kHeaderChecksumAt = 56;

constexpr std::uint32_t kCommitMark = 0x54494D43;  // "CMIT"
constexpr std::size_t kCommitPagesAt = 4;
constexpr std::size_t kCommitPageCountAt = 8;
constexpr std::size_t kCommitBodyBytesAt = 12;
constexpr std::size_t kCommitChecksumAt = 16;  // last field; covers the fields before it and the body

constexpr std::size_t kRecordPageAt = 0;
constexpr std::size_t kRecordRangeBytesAt = 4;  // 0: a whole page follows
constexpr std::size_t kRecordHeaderBytes = 6;
constexpr std::size_t kRangeHeaderBytes = 4;  // offset in the page, bytes

bool is_magic(ByteSpan bytes, const char (&magic)[8]) {
    return std::equal(std::begin(magic), std::end(magic), bytes.begin());
}

// Returns the bytes written, or 0 when the whole page is shorter.
std::size_t store_ranges(MutableByteSpan into, const JournalPage& page, std::size_t page_size) {
    const PageRanges ranges(page.bytes, page.before, page_size);
    if (ranges.bytes() + ranges.size() * kRangeHeaderBytes >= page_size) return 0;
    std::size_t at = 0;
    for (const PageRange& range : ranges) {
        store_u16(into, at, range.at);
        store_u16(into, at + 2, range.bytes);
        store_bytes(into, at + kRangeHeaderBytes, {page.bytes + range.at, range.bytes});
        at += kRangeHeaderBytes + range.bytes;
    }
    return at;
}

std::size_t store_record(MutableByteSpan into, const JournalPage& page, std::size_t page_size) {
    const MutableByteSpan content = into.subspan(kRecordHeaderBytes);
    const std::size_t range_bytes = page.before != nullptr ? store_ranges(content, page, page_size) : 0;
    store_u32(into, kRecordPageAt, page.page_no);
    store_u16(into, kRecordRangeBytesAt, static_cast<std::uint16_t>(range_bytes));
    if (range_bytes > 0) return kRecordHeaderBytes + range_bytes;
    store_bytes(content, 0, {page.bytes, page_size});
    return kRecordHeaderBytes + page_size;
}

}  // namespace

std::uint64_t store_header(MutableByteSpan into, const JournalBinding& binding, std::uint64_t salt,
                           std::size_t page_size) {
    std::fill(into.begin(), into.end(), std::uint8_t{0});
    std::copy(std::begin(kMagic), std::end(kMagic), into.begin());
    store_u32(into, kPageSizeAt, static_cast<std::uint32_t>(page_size));
    store_u64(into, kIdentityAt, binding.identity);
    store_u64(into, kCounterAt, binding.base_counter);
    store_u64(into, kSaltAt, salt);
    store_u64(into, kNextCounterAt, binding.next_counter);
    const std::uint64_t checksum = checksum64(into.first(kHeaderChecksumAt), 0);
    store_u64(into, kHeaderChecksumAt, checksum);
    return checksum;
}

bool load_header(ByteSpan bytes, Header& header) {
    if (bytes.size() < kHeaderBytes) return false;
    if (is_magic(bytes, kMagic)) {
        header.kind = Kind::kChanges;
    } else if (is_magic(bytes, kFormerMagic)) {
        header.kind = Kind::kPages;
    } else {
        return false;
    }
    header.checksum = checksum64(bytes.first(kHeaderChecksumAt), 0);
    header.binding = {load_u64(bytes, kIdentityAt), load_u64(bytes, kCounterAt), load_u64(bytes, kNextCounterAt)};
    header.page_size = load_u32(bytes, kPageSizeAt);
    const bool is_known = header.page_size == kJet3.page_size || header.page_size == kJet4.page_size;
    return is_known && load_u64(bytes, kHeaderChecksumAt) == header.checksum;
}

std::size_t most_commit_bytes(std::size_t pages, std::size_t page_size) {
    return kCommitHeaderBytes + pages * (kRecordHeaderBytes + page_size);
}

std::size_t store_commit(MutableByteSpan into, std::span<const JournalPage> pages, std::uint32_t page_count,
                         std::uint64_t& checksum, std::size_t page_size) {
    std::size_t end = kCommitHeaderBytes;
    for (const JournalPage& page : pages) end += store_record(into.subspan(end), page, page_size);
    store_u32(into, 0, kCommitMark);
    store_u32(into, kCommitPagesAt, static_cast<std::uint32_t>(pages.size()));
    store_u32(into, kCommitPageCountAt, page_count);
    store_u32(into, kCommitBodyBytesAt, static_cast<std::uint32_t>(end - kCommitHeaderBytes));
    const MutableByteSpan header = into.first(kCommitHeaderBytes);
    checksum = commit_checksum(header, into.subspan(kCommitHeaderBytes, end - kCommitHeaderBytes), checksum);
    store_u64(header, kCommitChecksumAt, checksum);
    return end;
}

bool load_commit_header(Kind kind, ByteSpan bytes, CommitHeader& commit, std::size_t page_size) {
    if (bytes.size() < kCommitHeaderBytes || load_u32(bytes, 0) != kCommitMark) return false;
    commit.pages = load_u32(bytes, kCommitPagesAt);
    commit.page_count = load_u32(bytes, kCommitPageCountAt);
    commit.body_bytes =
        kind == Kind::kChanges ? load_u32(bytes, kCommitBodyBytesAt) : std::uint64_t{commit.pages} * (4 + page_size);
    commit.checksum = load_u64(bytes, kCommitChecksumAt);
    return true;
}

std::uint64_t commit_checksum(ByteSpan header, ByteSpan body, std::uint64_t before) {
    return checksum64(body, checksum64(header.first(kCommitChecksumAt), before));
}

bool load_record(ByteSpan body, std::size_t& at, Record& record, std::size_t page_size) {
    if (body.size() - at < kRecordHeaderBytes) return false;
    record.page_no = load_u32(body, at + kRecordPageAt);
    record.bytes = load_u16(body, at + kRecordRangeBytesAt);
    record.at = at + kRecordHeaderBytes;
    const std::size_t bytes = record.bytes > 0 ? record.bytes : page_size;
    if (body.size() - record.at < bytes) return false;
    at = record.at + bytes;
    return true;
}

bool apply_ranges(ByteSpan ranges, MutableByteSpan page) {
    while (!ranges.empty()) {
        if (ranges.size() < kRangeHeaderBytes) return false;
        const std::size_t at = load_u16(ranges, 0);
        const std::size_t bytes = load_u16(ranges, 2);
        ranges = ranges.subspan(kRangeHeaderBytes);
        if (bytes == 0 || bytes > ranges.size() || at > page.size() || bytes > page.size() - at) return false;
        store_bytes(page, at, ranges.first(bytes));
        ranges = ranges.subspan(bytes);
    }
    return true;
}

}  // namespace jet::journal
