// The on-disk format of the journal: its header and its commits. docs/file-format.md describes it.
//
// Invariants
//  1. A commit's checksum covers all of it and the previous checksum, that of the header for the first commit: bytes of
//     another generation, or at another position, never pass.
//  2. The first record of a page in a generation is its whole image, so that replaying the generation needs nothing of
//     the page's old content, which a power failure may have torn.
#pragma once

#include <cstdint>
#include <span>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/types.h"

namespace jet {

// The file state that a journal is bound to.
struct JournalBinding {
    std::uint64_t identity = 0;      // of the file: the constant part of its header, and its commit words
    std::uint64_t base_counter = 0;  // change counter of the file at the start of the generation
    std::uint64_t next_counter = 0;  // change counter after the generation's first commit
};

// A page of a commit.
struct JournalPage {
    PageNumber page_no = 0;
    const std::uint8_t* bytes = nullptr;
    const std::uint8_t* before = nullptr;  // its image in the generation so far; null: none yet, it is written whole
};

namespace journal {

inline constexpr std::size_t kHeaderBytes = 64;
inline constexpr std::size_t kCommitHeaderBytes = 24;

enum class Kind {
    kChanges,  // the kind now written: whole pages and ranges of bytes
    kPages,    // the former kind, still replayed: whole pages only
};

struct Header {
    Kind kind = Kind::kChanges;
    std::size_t page_size = jet4::kPageSize;
    JournalBinding binding;
    std::uint64_t checksum = 0;  // the start of the chain
};

// A commit's header. The body follows: for kChanges its records; for kPages the page numbers, then the pages.
struct CommitHeader {
    std::uint32_t pages = 0;
    std::uint32_t page_count = 0;  // of the file after the commit
    std::uint64_t body_bytes = 0;
    std::uint64_t checksum = 0;
};

// A record of a commit's body.
struct Record {
    PageNumber page_no = 0;
    std::size_t at = 0;     // in the body: the page's bytes, or the ranges
    std::size_t bytes = 0;  // of the ranges; 0: a whole page
};

// Writes kHeaderBytes; returns the checksum that starts the chain.
std::uint64_t store_header(MutableByteSpan into, const JournalBinding& binding, std::uint64_t salt,
                           std::size_t page_size = jet4::kPageSize);
// False when the bytes are no journal header.
bool load_header(ByteSpan bytes, Header& header);

// Upper bound of the bytes of a commit of `pages` pages.
std::size_t most_commit_bytes(std::size_t pages, std::size_t page_size = jet4::kPageSize);
// Writes a commit, chained on `checksum`, and updates `checksum` to the commit's. Returns the bytes written.
std::size_t store_commit(MutableByteSpan into, std::span<const JournalPage> pages, std::uint32_t page_count,
                         std::uint64_t& checksum, std::size_t page_size = jet4::kPageSize);

// False when the bytes are no commit header.
bool load_commit_header(Kind kind, ByteSpan bytes, CommitHeader& commit, std::size_t page_size = jet4::kPageSize);
// The checksum that a commit must have, after one with checksum `before`.
std::uint64_t commit_checksum(ByteSpan header, ByteSpan body, std::uint64_t before);
// Parses the record at `at` and moves `at` past it. False when it is malformed.
bool load_record(ByteSpan body, std::size_t& at, Record& record, std::size_t page_size = jet4::kPageSize);
// Writes the ranges of a record to a page. False when they exceed it.
bool apply_ranges(ByteSpan ranges, MutableByteSpan page);

}  // namespace journal
}  // namespace jet
