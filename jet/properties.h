// The property blob of a table (column LvProp of the catalogue).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jet/bytes.h"
#include "jet/types.h"

namespace jet {

struct Property {
    std::u16string name;
    std::uint8_t ddl = 0;  // 1 for properties of the engine's own
    ColumnType type = ColumnType::kBoolean;
    ByteVector data;  // as stored; a boolean is one byte, non-zero is true
};

struct PropertyBlock {
    std::uint16_t type = 0;  // on disk: 0 the object itself, 1 a column
    std::u16string owner;    // column name; empty for the object
    std::vector<Property> properties;
};

// All properties of one object, unknown ones included, in stored order.
struct PropertySet {
    std::vector<PropertyBlock> blocks;
    // The stored list of property names; it may hold unused ones. Names used but not listed are added to
    // it when the set is built.
    std::vector<std::u16string> names;

    // The column's boolean property, or `absent`.
    bool column_flag(std::u16string_view column, std::u16string_view property, bool absent) const;
    // Sets it (ddl 1), making block and property where needed.
    void set_column_flag(std::u16string_view column, std::u16string_view property, bool value);
    void remove_column(std::u16string_view column);
};

// 3049 for a malformed blob; an empty blob is an empty set.
PropertySet parse_properties(ByteSpan blob);
ByteVector build_properties(const PropertySet& set);

}  // namespace jet
