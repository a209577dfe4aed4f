// Keys of index entries.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/indexes/index_def.h"
#include "jet/indexes/sort_key.h"
#include "jet/storage/row_shape.h"

namespace jet {

// Why this engine cannot keep `index` current (an unknown type or another sort order), in words
// for an error text; none when it can.
std::optional<std::string> why_not_maintainable(const RealIndex& index, const RowShape& shape);

// Whether texts are among the key's columns.
bool has_text(const RealIndex& index, const RowShape& shape);

// Whether the row's key is known: in some orders not every letter's place is.
bool is_key_known(const RealIndex& index, const RowShape& shape, std::span<const Value> values);

// The key of a row whose values stand in `values` (by position in shape.columns), flag bytes included. 3616 where it is
// not known.
ByteVector make_index_key(const RealIndex& index, const RowShape& shape, std::span<const Value> values,
                          KeyRule rule = KeyRule::kOwn);

// Keys that the row's entry may have instead, because it was made by a rule of former times: none where all rules give
// the same.
std::vector<ByteVector> former_index_keys(const RealIndex& index, const RowShape& shape, std::span<const Value> values);

// Whether every key column of the row is null.
bool all_null_key(const RealIndex& index, const RowShape& shape, std::span<const Value> values);

}  // namespace jet
