// The fields of a page, found by its kind and owner and, where it holds rows, by what stands in them.
#pragma once

#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"

namespace kvdb_fuzz {

enum class Meaning { kNumber, kPage, kRow };

struct Field {
    const char* name = "";
    std::size_t at = 0;     // bytes from the start of the page
    std::size_t bytes = 1;  // 1, 2 or 4
    Meaning meaning = Meaning::kNumber;
    bool big_endian = false;
};

// Of page 0 unmasked. Every field lies inside the page, however damaged the page is.
std::vector<Field> fields_of(jet::ByteSpan page, jet::PageNumber page_no);

}  // namespace kvdb_fuzz
