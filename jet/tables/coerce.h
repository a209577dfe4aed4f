// Assignment of a value to a column: the conversions and the size limits.
#pragma once

#include "jet/base/types.h"
#include "jet/schema/table_def.h"

namespace jet {

// The value in the column's own type. 3421 when there is no conversion or it does not fit, 3163 for text
// longer than the column. Null stays Null.
Value coerce_value(const ColumnDef& column, Value value);
// As above, in place.
void coerce_in_place(const ColumnDef& column, Value& value);

}  // namespace jet
