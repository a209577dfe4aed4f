// The column maps that statements have asked a table for, kept current as its rows change.
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

    // Null: it has not been asked for.
    const ColumnMap* find(std::size_t position) const {
        const auto found = maps_.find(position);
        return found == maps_.end() ? nullptr : &found->second;
    }
    const ColumnMap* keep(std::size_t position, ColumnMap map) { return &(maps_[position] = std::move(map)); }
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
    std::map<std::size_t, ColumnMap> maps_;
};

}  // namespace jet
