// A process has one unwinder here, and nothing that carries descriptions.
#include "frame/caller.h"

namespace frame {

bool catches_exceptions(const void*) { return true; }

bool has_error_info() { return false; }

void set_error_info(REFIID, const CDaoException&) {}

void clear_error_info() {}

}  // namespace frame
