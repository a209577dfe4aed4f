// The rows of a table that meet a condition, in the order of the file or in that of some columns' values.
//
// Memory does not grow with the table. An order is made by reading the table again and again: each time the first rows
// after those that have been given are kept, as many as there is room for. This takes no file beside the studio, and
// ends early where few rows are wanted.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "jet/sql/query.h"
#include "jet/tables/table.h"

namespace tools {

struct RowScan {
    const jet::Table& table;
    std::function<bool(const jet::RowView& row)> matches;
    std::vector<jet::sql::OrderKey> order;  // rows of equal values stay in the order of the file
    std::optional<std::size_t> limit;       // more are not given
    // For keys that wait for their turn. Where more wait, the table is read once more for as many.
    std::size_t room_bytes = 6u << 20;

    // Calls `visit` until it returns false.
    void for_each(const std::function<bool(const jet::RowView& row)>& visit) const;
};

}  // namespace tools
