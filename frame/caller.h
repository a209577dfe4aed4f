// What becomes of an exception that a gate lets out, which depends on who called.
#pragma once

#include <kvdb/com.h>
#include <kvdb/dao_exception.h>

namespace frame {

// Whether the code that a method returns to, at `return_address`, belongs to a module that an exception can be thrown
// into. On Windows that is one which has its unwinder from where the component has it; in doubt it is not. Elsewhere
// there is one unwinder.
bool catches_exceptions(const void* return_address);

// Whether the platform carries descriptions of failures from an object to its caller.
bool has_error_info();

// The thread's description of the failure of a method of `interface_id`: source "KVDB", the engine's text.
void set_error_info(REFIID interface_id, const CDaoException& error);
// Takes away what an earlier failure has left.
void clear_error_info();

}  // namespace frame
