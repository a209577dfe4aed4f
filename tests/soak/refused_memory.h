// The program's operator new, which can refuse: counts the component's allocations between two marks, and refuses them
// as planned. Nothing outside the marks is counted or refused.
#pragma once

#include <cstdint>

namespace soak {

inline constexpr std::uint64_t kFromThenOn = ~std::uint64_t{0};

// Refuses allocations [first, first + count) of this thread, counted from 1 and from now on.
void refuse_memory(std::uint64_t first, std::uint64_t count);
void refuse_no_memory();
// Allocations counted since the last call of either.
std::uint64_t memory_requests();
std::uint64_t memory_refusals();

// Allocations of this thread in between are the component's.
void component_begins();
void component_ends();

}  // namespace soak
