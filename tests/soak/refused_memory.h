// The program's operator new, which can refuse: what the component asks for between two marks is counted, and refused
// as planned. Nothing outside the marks is.
#pragma once

#include <cstdint>

namespace soak {

inline constexpr std::uint64_t kFromThenOn = ~std::uint64_t{0};

// Refuses requests [first, first + count) of this thread, counted from 1 and from now on.
void refuse_memory(std::uint64_t first, std::uint64_t count);
void refuse_no_memory();
// Requests counted since the last of the two.
std::uint64_t memory_requests();
std::uint64_t memory_refusals();

// What this thread asks for in between is the component's.
void component_begins();
void component_ends();

}  // namespace soak
