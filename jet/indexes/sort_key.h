// The keys that texts have in an index.
#pragma once

#include <string_view>

#include "jet/base/bytes.h"
#include "jet/indexes/text_order.h"

namespace jet {

// Appends the sort key of the first 255 characters without trailing blanks, without the leading flag byte. Ascending
// form. Sources of the weights: jet/indexes/collation_table*.cpp (generated).
void append_sort_key(ByteVector& to, std::u16string_view text, TextOrder order = TextOrder::kGeneral,
                     KeyRule rule = KeyRule::kOwn);
// The descending form (inverted; in Jet 4 with its own terminator), without the leading flag byte.
void append_descending_sort_key(ByteVector& to, std::u16string_view text, TextOrder order = TextOrder::kGeneral,
                                KeyRule rule = KeyRule::kOwn);

// A key of the General order, version 0, over a whole text, without the 00 at its end.
void append_sections(ByteVector& to, std::u16string_view text);

}  // namespace jet
