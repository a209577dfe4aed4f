// Journals of the former kind, whole pages only, as earlier builds have left them beside their files.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/pages/checksum.h"
#include "jet/pages/journal_format.h"

namespace jet {

class FormerJournal {
public:
    struct WholePage {
        PageNumber page_no = 0;
        ByteVector bytes;
    };

    FormerJournal(const JournalBinding& binding, std::uint64_t salt) {
        for (const char letter : std::string_view("kvdbjrn1")) append_u8(bytes_, static_cast<std::uint8_t>(letter));
        append_u64(bytes_, jet4::kPageSize);
        append_u64(bytes_, binding.identity);
        append_u64(bytes_, binding.base_counter);
        append_u64(bytes_, salt);
        append_u64(bytes_, binding.next_counter);
        append_u64(bytes_, 0);
        checksum_ = checksum64(bytes_, 0);
        append_u64(bytes_, checksum_);
    }

    void commit(const std::vector<WholePage>& pages, std::uint32_t page_count) {
        ByteVector head;
        append_u32(head, 0x54494D43);
        append_u32(head, static_cast<std::uint32_t>(pages.size()));
        append_u64(head, page_count);
        ByteVector body;
        for (const WholePage& page : pages) append_u32(body, page.page_no);
        for (const WholePage& page : pages) append_bytes(body, page.bytes);
        checksum_ = checksum64(body, checksum64(head, checksum_));
        append_u64(head, checksum_);
        append_bytes(bytes_, head);
        append_bytes(bytes_, body);
    }

    const ByteVector& bytes() const { return bytes_; }

private:
    ByteVector bytes_;
    std::uint64_t checksum_ = 0;
};

}  // namespace jet
