// The property blob of a table (column LvProp of the catalogue).
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"

namespace jet {

// A value and where its name and its bytes stand in the set: a blob may hold a value in few bytes, and so does this.
struct Property {
    std::uint16_t name = 0;  // into PropertySet::names
    std::uint8_t ddl = 0;    // 1 for properties of the engine's own
    ColumnType type = ColumnType::kBoolean;
    std::uint16_t data_bytes = 0;
    std::uint32_t data_at = 0;  // into PropertySet::data
};

struct PropertyBlock {
    std::uint16_t type = 0;  // on disk: 0 the object itself, 1 a column
    std::u16string owner;    // column name; empty for the object
    std::vector<Property> properties;
};

// All properties of one object, unknown ones included, in stored order.
struct PropertySet {
    std::uint16_t code_page = 0;  // of names; 0: UTF-16, as in Jet 4
    std::vector<PropertyBlock> blocks;
    std::vector<std::u16string> names;  // as listed in the blob; some may be unused
    ByteVector data;

    std::u16string_view name_of(const Property& property) const { return names[property.name]; }
    // As stored; a boolean is one byte, non-zero is true.
    ByteSpan data_of(const Property& property) const { return slice(data, property.data_at, property.data_bytes); }
    void set_data(Property& property, ByteSpan bytes);

    // Calls visit(column, value) for each boolean property of that name that a column has, once for each column.
    void visit_column_flags(std::u16string_view property,
                            const std::function<void(std::u16string_view column, bool value)>& visit) const;
    // The column's boolean property, or `absent`.
    bool column_flag(std::u16string_view column, std::u16string_view property, bool absent) const;
    // Sets it (ddl 1), making block, name and property where needed.
    void set_column_flag(std::u16string_view column, std::u16string_view property, bool value);
    void remove_column(std::u16string_view column);
};

// 3049 for a malformed blob; an empty blob is an empty set. `code_page` is that of the file's texts, 0 where they are
// UTF-16.
PropertySet parse_properties(ByteSpan blob, std::uint16_t code_page = 0);
ByteVector build_properties(const PropertySet& set);
// The same properties for a file whose texts are in another form: those among the values are converted.
PropertySet convert_properties(const PropertySet& set, std::uint16_t code_page);

}  // namespace jet
