// Runs work in its own process: the next work starts with a fresh component, even after a crash.
#pragma once

#include <functional>

#include "tests/soak/kind.h"

namespace soak {

// The outcome of `work`, or how the process ended, as a failure. Includes failed checks of the process.
Outcome isolated(const std::function<Outcome()>& work);

}  // namespace soak
