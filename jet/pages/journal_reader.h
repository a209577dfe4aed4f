// What a journal found at opening holds.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/journal_format.h"
#include "os/file.h"

namespace jet {

// The valid part of a journal: for each page, where its last whole image and what came after it lie.
struct JournalContent {
    struct Change {
        PageNumber page_no = 0;
        std::uint32_t range_bytes = 0;  // 0: a whole page
        std::uint64_t at = 0;           // byte offset in the journal
    };
    JournalBinding binding;
    std::size_t page_size = 0;
    std::uint32_t page_count = 0;  // of the file after the last commit; 0: no commit at all
    std::vector<Change> changes;   // by page, then in order; each page's first is whole
    bool is_sound = true;          // false: the checksums are right, and yet the commits contradict themselves

    // The changes of the page that `changes[first]` is of.
    std::span<const Change> of_page(std::size_t first) const;
};

// False when the file has no valid header. A commit that is torn or of another generation ends the journal. Memory in
// proportion to the file. Throws os::FileError.
bool read_journal(os::File& file, JournalContent& content);

// The page as its changes leave it. 3049 when they are none of a page.
ByteVector read_journal_page(os::File& file, std::span<const JournalContent::Change> changes,
                             std::size_t page_size = jet4::kPageSize);

}  // namespace jet
