// Values as bytes that compare as the values do, so that a sort compares and keeps nothing but bytes.
#pragma once

#include "jet/base/bytes.h"
#include "jet/base/types.h"

namespace tools {

// Appends the key of a value. Keys of values of one column, compared byte by byte, have the order of
// jet::sql::compare_for_order, or the reverse where `descending`. No key is the beginning of another one, so that keys
// of several columns can stand one after the other.
void append_order_key(jet::ByteVector& to, const jet::Value& value, bool descending);

}  // namespace tools
