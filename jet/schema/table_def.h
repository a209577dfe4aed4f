// A table's definition as the format keeps it, and its two codecs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/types.h"

namespace jet {

struct ColumnDef {
    std::u16string name;
    ColumnType type = ColumnType::kLong;
    std::uint16_t number = 0;  // index into the null mask, unique for the table's life
    std::uint16_t variable_index = 0;
    std::uint16_t ordinal = 0;  // display position
    std::uint16_t lcid = jet4::kGeneralOrder;
    std::uint8_t sort_version = 0;
    std::uint8_t precision = 0;  // numeric only
    std::uint8_t scale = 0;
    std::uint8_t flags = 0;
    std::uint8_t ext_flags = 0;
    std::uint16_t fixed_offset = 0;
    std::uint16_t length_bytes = 0;  // text: 2 x characters; long values 0
    RowId owned_map;                 // long values: their pages
    RowId free_map;
    // From the table's properties, not from the definition itself.
    bool allow_zero_length = true;
    bool required = false;

    bool is_fixed() const { return (flags & jet4::tdef::kFlagFixed) != 0; }
    bool is_autonumber() const { return (flags & jet4::tdef::kFlagAutoNumber) != 0; }
    bool is_long() const { return is_long_value(type); }
    bool general_order() const { return lcid == jet4::kGeneralOrder && sort_version == 0; }
};

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

struct LogicalIndex {
    std::u16string name;
    std::uint32_t number = 0;
    std::uint32_t real_index = 0;
    std::uint8_t relation_side = 0;
    std::int32_t other_index = -1;
    PageNumber other_table = 0;
    std::uint8_t cascade_update = 4;
    std::uint8_t cascade_delete = 4;
    std::uint8_t type = 0;  // 0 normal, 1 primary key, 2 relationship
};

struct TableDef {
    std::u16string name;  // from the catalogue
    PageNumber page = 0;  // first page: the table's identity
    std::uint8_t kind = jet4::tdef::kUserTable;
    std::uint32_t row_count = 0;
    std::int32_t last_autonumber = 0;
    std::uint64_t change_counter = 0;  // bytes 28..35, meaningful on MSysObjects only
    std::uint16_t max_columns = 0;
    std::uint16_t variable_columns = 0;
    RowId owned_map;
    RowId free_map;
    std::vector<ColumnDef> columns;  // in display order (ordinal, then number)
    std::vector<RealIndex> real_indexes;
    std::vector<LogicalIndex> logical_indexes;

    // Position in `columns`, or none.
    std::optional<std::size_t> find_column(std::u16string_view column_name) const;
    std::optional<std::size_t> column_by_number(std::uint16_t number) const;
};

// `bytes` is the logical definition (continuation pages joined); 3049 for anything inconsistent.
TableDef parse_table_def(ByteSpan bytes, PageNumber page);
// The logical definition, its first eight bytes without free count and next pointer. `record_order`
// gives the order of the column records (positions in def.columns); empty: as in def.columns.
ByteVector build_table_def(const TableDef& def, const std::vector<std::size_t>& record_order = {});

}  // namespace jet
