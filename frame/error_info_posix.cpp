// Nothing here carries error info: a gate is asked for it.
#include "frame/error_info.h"

namespace frame {

void leave_error_info(REFIID) noexcept {}

void clear_error_info() noexcept {}

}  // namespace frame
