#pragma once

#include <cstdint>

namespace testing_support {

// Bytes of memory that this process holds at the moment, without what the system caches of its files.
std::uint64_t memory_in_use();

}  // namespace testing_support
