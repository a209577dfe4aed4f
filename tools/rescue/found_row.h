// The bytes of one row, taken apart without trust.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/schema/table_def.h"

namespace tools {

// How well bytes are a row of a table.
enum class Fit {
    kNone,   // they are none
    kLoose,  // they can be one; some programs leave rows like this, and so does damage
    kExact,  // every length and every offset is what the table's own engine would write
};

struct FoundRow {
    Fit fit = Fit::kNone;
    // By position in the definition's columns: the stored bytes; none for Null and for what cannot be read.
    std::vector<std::optional<jet::ByteSpan>> stored;
    // Names of the columns whose values cannot be what they are stored as.
    std::vector<std::u16string> bad_columns;
};

// How many columns its table had when the row was written.
std::size_t columns_of_row(jet::ByteSpan row, const jet::TableDef& def);

// The row points into `bytes`.
FoundRow take_apart(jet::ByteSpan bytes, const jet::TableDef& def);

// Where the upper of two rows begins that share [begin, end), when there is exactly one such place. With `one_row`, the
// lower part may be anything.
std::optional<std::size_t> find_row_border(jet::ByteSpan page, std::size_t begin, std::size_t end,
                                           const jet::TableDef& def, bool one_row);

}  // namespace tools
