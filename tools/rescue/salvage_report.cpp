#include <algorithm>

#include "tools/rescue/salvage.h"

namespace tools {

bool SalvagedTable::is_untouched() const {
    return doubtful == 0 && cut_values == 0 && unreadable == 0 && left_out == 0 && lost_pages == 0 && lost_rows == 0 &&
           !is_rebuilt && !is_made_anew && !is_named_by_guess && notes.empty();
}

std::size_t SalvageReport::saved() const {
    std::size_t sum = 0;
    for (const SalvagedTable& table : tables) sum += table.saved;
    return sum;
}

std::size_t SalvageReport::doubtful() const {
    std::size_t sum = 0;
    for (const SalvagedTable& table : tables) sum += table.doubtful;
    return sum;
}

std::size_t SalvageReport::lost() const {
    std::size_t sum = 0;
    for (const SalvagedTable& table : tables) sum += std::max(table.lost_rows, table.unreadable) + table.left_out;
    return sum;
}

bool SalvageReport::is_complete() const {
    return notes.empty() &&
           std::all_of(tables.begin(), tables.end(), [](const SalvagedTable& t) { return t.is_untouched(); });
}

}  // namespace tools
