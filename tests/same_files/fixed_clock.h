// A stopped clock, for programs whose files are compared with those of the same program on another system.
#pragma once

#include <cstdint>

namespace testing_support {

// 2005-03-05 14:30:59.250 UTC.
inline constexpr std::int64_t kFixedSeconds = 1110033059;
inline constexpr std::int32_t kFixedMilliseconds = 250;

// Stops the clock for every component loaded from now on.
void stop_clock();

}  // namespace testing_support
