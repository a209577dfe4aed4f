// What the program asks for in memory: the largest single piece since the last reset, and how many pieces. One of
// them can be refused.
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

void reset_largest_allocation();
std::size_t largest_allocation();  // bytes
std::uint64_t allocation_count();  // since the start of the program
// The `nth` allocation from now on (1: the next) throws std::bad_alloc; 0: none.
void refuse_allocation(std::uint64_t nth);

}  // namespace jet
