// A table's definition as the format keeps it, and its two codecs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"
#include "jet/base/types.h"
#include "jet/indexes/index_def.h"
#include "jet/storage/row_shape.h"

namespace jet {

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

struct TableDef : RowShape {
    std::u16string name;  // from the catalogue
    std::uint8_t kind = jet4::tdef::kUserTable;
    std::uint32_t row_count = 0;
    std::int32_t last_autonumber = 0;
    std::uint16_t code_page = 0;       // of the names; 0: UTF-16
    std::uint64_t change_counter = 0;  // Jet 4: bytes 28..35, meaningful on MSysObjects only
    RowId owned_map;
    RowId free_map;
    std::vector<RealIndex> real_indexes;
    std::vector<LogicalIndex> logical_indexes;

    // Position in `columns`, or none.
    std::optional<std::size_t> find_column(std::u16string_view column_name) const;
};

// "column 'Name' of table 'Songs'", for error texts.
std::string described_column(const TableDef& def, const ColumnDef& column);

// `bytes` is the logical definition (continuation pages joined); `code_page` that of its names (0: UTF-16). 3049 for
// anything inconsistent.
TableDef parse_table_def(ByteSpan bytes, PageNumber page, const Format& format = kJet4, std::uint16_t code_page = 0);
// The logical definition, its first eight bytes without free count and next pointer. `record_order`
// gives the order of the column records (positions in def.columns); empty: as in def.columns.
ByteVector build_table_def(const TableDef& def, const std::vector<std::size_t>& record_order = {});

}  // namespace jet
