// The largest single piece of memory that the program has asked for since the last reset.
#pragma once

#include <cstddef>

namespace jet {

void reset_largest_allocation();
std::size_t largest_allocation();  // bytes

}  // namespace jet
