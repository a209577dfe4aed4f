// Values for every kind of column, derived from a number: the same number gives the same value, other numbers give
// other values if the column has room for them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "jet/schema/table_def.h"

namespace interop {

// Around the limits of where a long value is stored: the row (32 characters), a shared page (2038), its own pages
// (more); then chains of several pages.
inline const std::vector<std::size_t> kMemoLengths = {0, 1, 32, 33, 64, 65, 2038, 2039, 4076, 5000, 100000};

// Text of that many characters with umlauts, ASCII and, for odd numbers, characters beyond U+00FF.
std::u16string text_of(std::uint32_t number, std::size_t characters);

// A value that the column stores unchanged. Long values have the lengths of kMemoLengths in turn.
jet::Value value_for(const jet::ColumnDef& column, std::uint32_t number);

// The longest value of a column of variable length, Null for all others.
jet::Value longest_value_for(const jet::ColumnDef& column, std::uint32_t number);

}  // namespace interop
