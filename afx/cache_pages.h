// How much of a file the data-access framework keeps in memory.
#pragma once

#include <cstddef>

#include "jet/pages/pager.h"

namespace afx {

// Of each database that is opened from now on. A program that has its memory for other things may lower it.
inline std::size_t cache_pages = jet::kDefaultCachePages;

}  // namespace afx
