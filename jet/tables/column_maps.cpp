#include "jet/tables/column_maps.h"

#include <new>

namespace jet {

void ColumnMaps::change(RowId row, const Keys& from, const Keys& to) noexcept {
    try {
        std::size_t i = 0;
        for (auto& [position, map] : maps_) {
            if (from[i] != to[i] && to[i]) map.insert({*to[i], row.pack()});
            if (from[i] != to[i] && from[i]) map.erase({*from[i], row.pack()});
            ++i;
        }
    } catch (const std::bad_alloc&) {
        maps_.clear();
    }
}

}  // namespace jet
