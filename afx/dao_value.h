// Values between the engine and variants.
#pragma once

#include "afx/ole_variant.h"
#include "jet/base/bytes.h"
#include "jet/base/types.h"

namespace afx {

// Replaces `out` by the value of a column: Null is VT_NULL with a zero payload, text a narrow VT_BSTR. 3421
// for binary columns, which have no variant here.
void to_variant(const jet::Value& value, COleVariant& out);

// The same from a value's stored bytes, for the types that are most of what is read; false, and `out` is
// untouched, for any other.
bool to_variant(jet::ByteSpan stored, jet::ColumnType type, COleVariant& out);

// VT_EMPTY and VT_NULL are Null, text is taken as narrow. 3421 for types that no column takes.
jet::Value to_value(const VARIANT& variant);

}  // namespace afx
