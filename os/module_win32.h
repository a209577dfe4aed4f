// Modules of a Windows process: which one holds a given address.
#pragma once

#include "os/windows_api_win32.h"

namespace os {

// The module that holds `address`, without adding a reference; null when there is none.
HMODULE module_of(const void* address);

// The module that holds this code: the library, not the program that loaded it.
HMODULE own_module();

}  // namespace os
