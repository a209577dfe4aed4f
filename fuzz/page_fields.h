// Finds the fields of a page by the page's kind and owner and, if it holds rows, by their content.
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

// A whole page, whose size tells the format; page 0 is unmasked, and an encoded page decoded. Every field lies inside
// the page, even if the page is damaged.
std::vector<Field> fields_of(jet::ByteSpan page, jet::PageNumber page_no);

}  // namespace kvdb_fuzz
