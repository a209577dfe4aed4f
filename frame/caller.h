// What becomes of an exception that a gate lets out, which depends on who called.
#pragma once

#include <kvdb/com.h>

namespace frame {

// Whether the code that a method returns to, at `return_address`, belongs to a module that an exception can be thrown
// into. On Windows that is one which has its unwinder from where the component has it; in doubt it is not. Elsewhere
// there is one unwinder.
bool catches_exceptions(const void* return_address);

}  // namespace frame
