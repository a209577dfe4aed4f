// Reads a journal found at opening.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/journal_format.h"
#include "os/file.h"

namespace jet {

// The valid part of a journal: for each page, the position of its last whole image and of the changes after it.
struct JournalContent {
    struct Change {
        PageNumber page_no = 0;
        std::uint32_t range_bytes = 0;  // 0: a whole page
        std::uint64_t at = 0;           // byte offset in the journal
    };
    JournalBinding binding;
    std::size_t page_size = 0;
    std::uint32_t page_count = 0;  // of the file after the last commit; 0: no commit
    std::vector<Change> changes;   // by page, then in order; the first of each page is whole
    bool is_sound = true;          // false: the checksums are right, but the commits contradict each other

    // The changes of the page of `changes[first]`.
    std::span<const Change> of_page(std::size_t first) const;
};

// False when the file has no valid header. The journal ends at a commit that is torn or of another generation. Needs
// memory in proportion to the file. Throws os::FileError.
bool read_journal(os::File& file, JournalContent& content);

// The page after its changes. 3049 when they do not form a page.
ByteVector read_journal_page(os::File& file, std::span<const JournalContent::Change> changes,
                             std::size_t page_size = jet4::kPageSize);

}  // namespace jet
