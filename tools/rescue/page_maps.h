// Usage maps of a damaged file: evidence, never the truth.
#pragma once

#include <optional>
#include <vector>

#include "jet/base/types.h"
#include "tools/rescue/page_source.h"

namespace tools {

// The pages of a map by page number; none where the map cannot be one.
std::optional<std::vector<bool>> read_page_map(const PageSource& pages, jet::RowId row);

}  // namespace tools
