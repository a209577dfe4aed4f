// Encoded files: every page but the first lies on the disk under a stream of bytes that follows from a key in the
// header and the page's number. The key stands in the file for everyone to read: this hides texts from a glance, no
// more.
#pragma once

#include <algorithm>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/rc4.h"
#include "jet/base/types.h"

namespace jet {

class PageCipher {
public:
    PageCipher() = default;
    explicit PageCipher(std::uint32_t key) : key_(key) {}

    bool is_on() const { return key_ != 0; }
    std::uint32_t key() const { return key_; }
    // To and fro: the same stream encodes and decodes.
    void apply(PageNumber page_no, MutableByteSpan page) const {
        if (key_ == 0 || page_no == jet4::kHeaderPage) return;
        std::uint8_t bytes[4];
        store_u32(bytes, 0, key_ ^ page_no);
        Rc4(bytes).apply(page);
    }
    // A page as read from the disk. One that has never been written is all zeros, and stays so.
    void decode(PageNumber page_no, MutableByteSpan page) const {
        if (key_ == 0 || std::all_of(page.begin(), page.end(), [](std::uint8_t byte) { return byte == 0; })) return;
        apply(page_no, page);
    }

private:
    std::uint32_t key_ = 0;  // 0: not encoded
};

}  // namespace jet
