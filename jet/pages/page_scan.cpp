#include "jet/pages/page_scan.h"

#include <algorithm>

namespace jet {

ByteSpan PageScan::read(PageNumber page_no) {
    // What is in memory may be newer than the file.
    if (pager_.find(page_no, cached_)) return cached_.bytes();
    const std::size_t page_size = pager_.format().page_size;
    if (!is_in_piece(page_no)) {
        const std::size_t pages = count_ == 0 ? kFirstPiece : std::min(2 * count_, kMostPages);
        piece_.resize(pages * page_size);
        count_ = 0;
        first_ = page_no;
        try {
            count_ = pager_.read_past_cache(page_no, piece_);
        } catch (const Error&) {
            // What the disk refuses may be another page of the piece.
            count_ = pager_.read_past_cache(page_no, MutableByteSpan(piece_).first(page_size));
        }
    }
    return ByteSpan(piece_).subspan((page_no - first_) * page_size, page_size);
}

}  // namespace jet
