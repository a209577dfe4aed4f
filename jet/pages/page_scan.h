// Pages looked at once and in order, as one goes through a whole table: read in large pieces and past the cache, from
// which they would only evict others.
#pragma once

#include "jet/pages/pager.h"

namespace jet {

class PageScan {
public:
    explicit PageScan(Pager& pager) : pager_(pager) {}

    // The page's bytes, until the next call. Nothing may change a page between the first call and the last.
    ByteSpan read(PageNumber page_no);

private:
    static constexpr std::size_t kFirstPiece = 4;  // pages: a small table is no more
    static constexpr std::size_t kMostPages = 64;

    bool is_in_piece(PageNumber page_no) const { return page_no >= first_ && page_no - first_ < count_; }

    Pager& pager_;
    Page cached_;
    ByteVector piece_;
    PageNumber first_ = 0;
    std::size_t count_ = 0;  // pages in piece_
};

}  // namespace jet
