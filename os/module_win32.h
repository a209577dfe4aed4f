// Modules of a Windows process: where a piece of code lives.
#pragma once

#include "os/windows_api_win32.h"

namespace os {

// The module that holds `address`, without a reference on it; null when none does.
HMODULE module_of(const void* address);

// The module that holds this code: the library, not the program that loaded it.
HMODULE own_module();

}  // namespace os
