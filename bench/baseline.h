// Ratios kept from an earlier run, to tell when one falls.
//
// The file: what machine it was in lines that begin with "#", then "operation<TAB>size<TAB>ratio". The size
// is a number of projects, or 0 for a whole studio.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/ratios.h"

namespace bench {

// False when the file cannot be written.
bool store_baseline(const std::string& path, const PassFigures& figures, const std::vector<std::int32_t>& sizes);
// Names the operations whose ratio has fallen by more than a tenth; false when there is one, or no such file.
bool compare_with_baseline(const std::string& path, const PassFigures& figures);

}  // namespace bench
