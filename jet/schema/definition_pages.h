// The pages that a table's definition stands on, as one chain.
#pragma once

#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/pager.h"

namespace jet {

// Far above what 255 columns and 32 indexes with the longest names take, on pages of either size.
inline constexpr std::size_t kMaxDefinitionPages = 32;

struct DefinitionPages {
    ByteVector bytes;               // the logical definition: the pages joined, cut to its length
    std::vector<PageNumber> pages;  // in order, no two the same
};

// Reads the chain that begins with `first`; a next page that the definition's length does not reach is not followed.
// 3049 when a page is no page of a definition, comes twice, or the chain is shorter or longer than it can be.
DefinitionPages read_definition(Pager& pager, PageNumber first);

}  // namespace jet
