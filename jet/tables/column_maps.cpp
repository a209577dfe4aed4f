#include "jet/tables/column_maps.h"

#include <new>

namespace jet {

void ColumnMaps::change(RowId row, const Keys& from, const Keys& to) noexcept {
    try {
        std::size_t i = 0;
        for (auto& [position, growing] : maps_) {
            const bool changes = from[i] != to[i] && row.page < growing.end;
            if (changes && to[i]) growing.map.insert({*to[i], row.pack()});
            if (changes && from[i]) growing.map.erase({*from[i], row.pack()});
            ++i;
        }
    } catch (const std::bad_alloc&) {
        maps_.clear();
    }
}

}  // namespace jet
