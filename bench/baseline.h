// Ratios kept from an earlier run, to tell when one falls.
//
// The file: what machine it was in lines that begin with "#", then "operation<TAB>size<TAB>ratio".
#pragma once

#include <string>

#include "bench/ratios.h"

namespace bench {

// False when the file cannot be written.
bool store_baseline(const std::string& path, const ProjectFigures& figures);
// Names the operations whose ratio has fallen by more than a tenth; false when there is one, or no such file.
bool compare_with_baseline(const std::string& path, const ProjectFigures& figures);

}  // namespace bench
