// The clock that the component's pager asks, as far as the component is linked into this program: it stands still while
// a day goes on, so that sync points come at the same operations in every run, and moves when the day says so.
#pragma once

#include <chrono>

namespace soak {

// From now on the steady clock of this process stands still.
void stop_clock();
void let_time_pass(std::chrono::milliseconds span);

}  // namespace soak
