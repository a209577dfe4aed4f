// The rows that a record set has added itself. They join it at its end, in the order in which they were begun.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "jet/tables/table.h"

namespace jet::sql {

class Additions {
public:
    // Begins one and gives its number, from 1 on. It may never be stored.
    std::uint32_t begin() {
        rows_.emplace_back();
        return count();
    }
    // The one begun last stands at `row`. Needs no memory.
    void store(RowId row) {
        rows_.back() = row;
        last_ = std::max(last_, row);
    }
    std::uint32_t count() const { return static_cast<std::uint32_t>(rows_.size()); }
    // Null while it is not stored, and when another row has taken its place.
    RowId row(std::uint32_t number) const { return rows_.at(number - 1); }
    bool contains(RowId row) const { return find(row).has_value(); }
    // Another row stands where an addition may have stood before it was deleted.
    void forget(RowId row) {
        if (last_ < row) return;
        if (const auto index = find(row)) rows_[*index] = RowId{};
    }

    void restart() { next_ = 0; }
    // The next one that is still there.
    std::optional<RowId> next(const Table& table) {
        while (next_ < rows_.size()) {
            const RowId row = rows_[next_++];
            if (!row.is_null() && table.exists(row)) return row;
        }
        return std::nullopt;
    }
    // next() goes on behind `row`; false when it is none of them.
    bool move_to(RowId row) {
        const auto index = find(row);
        if (index) next_ = *index + 1;
        return index.has_value();
    }

private:
    std::optional<std::size_t> find(RowId row) const {
        const auto found = std::find(rows_.rbegin(), rows_.rend(), row);
        if (row.is_null() || found == rows_.rend()) return std::nullopt;
        return static_cast<std::size_t>(rows_.rend() - found) - 1;
    }

    std::vector<RowId> rows_;  // by number
    RowId last_;               // the highest in the file
    std::size_t next_ = 0;     // into rows_
};

}  // namespace jet::sql
