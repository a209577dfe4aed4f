// The column maps that statements have asked a table for, kept current as its rows change. One that has not come to a
// row's page yet will find the row there as it is then.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "jet/tables/column_map.h"

namespace jet {

class ColumnMaps {
public:
    // A row's key in each map, in their order.
    using Keys = std::vector<std::optional<std::uint64_t>>;

    // A map and how much of the table it holds: the rows on pages before `end`, in whose order it grows.
    struct Growing {
        static constexpr PageNumber kWholeTable = 0xFFFFFFFF;
        ColumnMap map;
        PageNumber end = 0;
        bool is_whole() const { return end == kWholeTable; }
    };

    // The column's map, which holds nothing when it has not been asked for before.
    Growing& of(std::size_t position) { return maps_[position]; }
    void clear() { maps_.clear(); }

    // The keys of no row.
    Keys no_keys() const { return Keys(maps_.size()); }
    // `value_at(position)` gives the row's values.
    template <class ValueAt>
    Keys keys(const ValueAt& value_at) const {
        Keys keys;
        keys.reserve(maps_.size());
        for (const auto& [position, map] : maps_) keys.push_back(ColumnMap::key_of(value_at(position)));
        return keys;
    }
    // The row has changed for good: should there be no memory to say so, the maps are made anew at their next use.
    void change(RowId row, const Keys& from, const Keys& to) noexcept;

private:
    std::map<std::size_t, Growing> maps_;
};

}  // namespace jet
