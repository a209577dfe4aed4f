// The rows that may meet a query's condition: those of a span of a column's map, else the whole table.
#pragma once

#include <optional>

#include "jet/tables/column_map.h"
#include "jet/tables/table.h"

namespace jet::sql {

// A span of a column's ordered map that holds every row of the result (and maybe more).
struct MapSpan {
    std::size_t position = 0;     // the column
    std::uint64_t first_key = 0;  // both ends included
    std::uint64_t last_key = 0;
    bool is_condition = false;                         // its rows are the result
    std::optional<std::uint32_t> node = std::nullopt;  // of the condition: its rows are those that meet it
};

// The entry behind `entry` in a map; none behind the last possible one.
inline std::optional<ColumnMap::Entry> entry_after(ColumnMap::Entry entry) {
    if (++entry.row == 0 && ++entry.key == 0) return std::nullopt;
    return entry;
}

// Calls visit(RowId) for each candidate: by key and then row for a span, else in scan order. `visit` must not
// change the table.
template <class Visitor>
void visit_candidates(Table& table, const std::optional<MapSpan>& span, Visitor&& visit) {
    const ColumnMap* map = span ? table.column_map(span->position) : nullptr;
    if (map == nullptr) {
        for (auto row = table.next_row({}); row; row = table.next_row(*row)) visit(*row);
        return;
    }
    std::optional<ColumnMap::Entry> from = ColumnMap::Entry{span->first_key, 0};
    while (from) {
        const auto entry = map->lower_bound(*from);
        if (!entry || entry->key > span->last_key) return;
        visit(RowId::unpack(entry->row));
        from = entry_after(*entry);
    }
}

}  // namespace jet::sql
