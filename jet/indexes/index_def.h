// What a table's definition says of one of its index trees.
#pragma once

#include <cstdint>
#include <vector>

#include "jet/base/jet4.h"
#include "jet/base/types.h"

namespace jet {

struct KeyColumn {
    std::uint16_t column_number = 0;
    bool ascending = true;
};

// A B-tree of the table.
struct RealIndex {
    std::vector<KeyColumn> columns;
    RowId map;
    PageNumber root = 0;
    std::uint8_t flags = 0;
    std::uint32_t distinct_keys = 0;

    bool unique() const { return (flags & jet4::tdef::kIndexUnique) != 0; }
    bool ignore_nulls() const { return (flags & jet4::tdef::kIndexIgnoreNulls) != 0; }
    bool required() const { return (flags & jet4::tdef::kIndexRequired) != 0; }
};

}  // namespace jet
