// Which value the pages of chains have been found to belong to.
//
// A page of a chain belongs to one value alone. Values of a damaged file that share their pages would cost as much as
// all of them together, for a reference of twelve bytes each; and what is written for one would change the others.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "jet/base/types.h"

namespace jet {

// A value of the file: one column of one row of one table.
struct ValueId {
    PageNumber table = 0;
    RowId row;
    std::uint16_t column = 0;  // its number

    std::uint64_t pack() const {
        return std::uint64_t{row.pack()} << 32 | std::uint64_t{table & 0xFFFFFF} << 8 | (column & 0xFFu);
    }
};

// Memory grows with the pages of chains that have been read, some 40 bytes for each.
class ChainOwners {
public:
    // False when the page belongs to another value.
    bool claim(PageNumber page_no, const ValueId& value) {
        return owners_.emplace(page_no, value.pack()).first->second == value.pack();
    }
    // The page has been given back.
    void release(PageNumber page_no) { owners_.erase(page_no); }
    void forget() { owners_.clear(); }

private:
    std::unordered_map<PageNumber, std::uint64_t> owners_;
};

}  // namespace jet
