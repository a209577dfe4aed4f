// Memos and pictures of a damaged file. A reference names page and row of the bytes and how many they are; where the
// references to a page do not agree with it, it is another page that stands in its place, and the right one is looked
// for by what all references together say of it. A page of a chain is told by its length, by where it leads, and by not
// being part of another one.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "tools/rescue/found_page.h"
#include "tools/rescue/page_source.h"

namespace tools {

struct FoundLongValue {
    jet::ByteVector bytes;  // what is left, from its beginning
    bool is_whole = true;
};

class LongValueFinder {
public:
    explicit LongValueFinder(const PageSource& pages) : pages_(pages) {}

    // First every page of long values, and every reference that some row holds, in any order.
    void note_page(jet::PageNumber page_no);
    void note_reference(jet::ByteSpan reference);
    // Then it is settled which pages are to be believed.
    void settle();

    // A reference as take_apart() lets it through.
    FoundLongValue read(jet::ByteSpan reference);

private:
    struct Wanted {
        std::uint8_t slot = 0;
        std::uint32_t length = 0;  // bytes
    };
    // A value in pieces, one on each page of a chain.
    struct Chain {
        jet::RowId first;
        std::size_t length = 0;  // bytes
        std::uint32_t stamp = 0;
    };
    // What a page holds that one piece stands on.
    struct Link {
        jet::PageNumber page = 0;
        std::size_t bytes = 0;
        jet::RowId next;
    };
    struct CachedPage {
        jet::PageNumber page_no = 0;
        jet::ByteVector bytes;
        FoundPage look;
    };

    const CachedPage& load(jet::PageNumber page_no);
    // The piece in the slot; empty when there is none.
    jet::ByteSpan piece(jet::RowId row);
    std::size_t agreeing(jet::PageNumber page_no, const std::vector<Wanted>& wanted);
    bool is_exactly(jet::PageNumber page_no, const std::vector<Wanted>& wanted);
    jet::PageNumber place_of(jet::PageNumber page_no) const;
    void settle_pages();
    void settle_chains();
    void find_spare_links();
    std::optional<Link> link_at(jet::RowId row, std::uint32_t stamp);
    bool follow(const Chain& chain, bool looks_elsewhere, std::vector<jet::PageNumber>& path);
    std::vector<Link> candidates(jet::RowId expected, std::size_t left, std::uint32_t stamp, bool looks_elsewhere);
    FoundLongValue read_single(jet::RowId row, std::size_t length);
    FoundLongValue read_chain(const Chain& chain);

    const PageSource& pages_;
    std::array<CachedPage, 64> cache_;
    std::map<jet::PageNumber, std::vector<Wanted>> references_;
    std::vector<jet::PageNumber> long_pages_;
    std::vector<Link> spare_links_;  // pages that may belong to a chain, and to none so far
    std::vector<Link> spare_heads_;  // the same, of first pages
    std::vector<Chain> chains_;
    std::unordered_map<std::uint64_t, std::vector<jet::PageNumber>> paths_;  // of chains that are whole, by first row
    std::set<jet::PageNumber> distrusted_;
    std::map<jet::PageNumber, jet::PageNumber> displaced_;  // where the page's content is
    std::set<jet::PageNumber> chained_;                     // pages of chains that are whole
};

}  // namespace tools
