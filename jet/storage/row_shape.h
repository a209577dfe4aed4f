// How a table's rows are stored: its columns, and what the bytes of a row need to know of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jet/base/format.h"
#include "jet/base/types.h"

namespace jet {

// Where a column's value stands in a row.
struct ColumnPlace {
    ColumnType type = ColumnType::kLong;
    bool is_fixed = false;
    std::uint16_t number = 0;
    std::uint16_t variable_index = 0;
    std::uint16_t fixed_offset = 0;
    std::uint16_t length_bytes = 0;
};

struct ColumnDef {
    std::u16string name;
    ColumnType type = ColumnType::kLong;
    std::uint16_t number = 0;  // index into the null mask, unique for the table's life
    std::uint16_t variable_index = 0;
    std::uint16_t ordinal = 0;      // display position
    std::uint16_t code_page = 0;    // of texts; 0: UTF-16, as in Jet 4
    std::uint16_t sort_sub_id = 0;  // Jet 3, as the header has it
    std::uint16_t lcid = jet4::kGeneralOrder;
    std::uint8_t sort_version = 0;
    std::uint8_t precision = 0;  // numeric only
    std::uint8_t scale = 0;
    std::uint8_t flags = 0;
    std::uint8_t ext_flags = 0;
    std::uint16_t fixed_offset = 0;
    std::uint16_t length_bytes = 0;  // text: 2 x characters, in a code page 1 x; long values 0
    RowId owned_map;                 // long values: their pages
    RowId free_map;
    // From the table's properties, not from the definition itself.
    bool allow_zero_length = true;
    bool required = false;

    ColumnPlace place() const { return {type, is_fixed(), number, variable_index, fixed_offset, length_bytes}; }
    bool is_fixed() const { return (flags & jet4::tdef::kFlagFixed) != 0; }
    bool is_autonumber() const { return (flags & jet4::tdef::kFlagAutoNumber) != 0; }
    bool is_compressed() const { return (ext_flags & jet4::tdef::kExtCompressed) != 0; }
    bool is_long() const { return is_long_value(type); }
    // Of a text.
    std::size_t most_characters() const { return code_page != 0 ? length_bytes : length_bytes / 2u; }
};

struct RowShape {
    const Format* format = &kJet4;
    PageNumber page = 0;            // first page of the definition: the table's identity
    std::uint16_t max_columns = 0;  // how many the table ever had
    std::uint16_t variable_columns = 0;
    std::vector<ColumnDef> columns;  // in display order (ordinal, then number)

    // Position in `columns`, or none.
    std::optional<std::size_t> column_by_number(std::uint16_t number) const {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (columns[i].number == number) return i;
        }
        return std::nullopt;
    }
};

}  // namespace jet
