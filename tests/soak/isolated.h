// A piece of work in a process of its own: whatever becomes of it, the next begins with a component that nothing has
// happened to.
#pragma once

#include <functional>

#include "tests/soak/kind.h"

namespace soak {

// The outcome, or as its failure how the process ended. Failed checks of the process are part of it.
Outcome isolated(const std::function<Outcome()>& work);

}  // namespace soak
