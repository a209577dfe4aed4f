// Modules of a Windows process: where a piece of code lives.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace os {

// The module that holds `address`, without a reference on it; null when none does.
HMODULE module_of(const void* address);

// The module that holds this code: the library, not the program that loaded it.
HMODULE own_module();

}  // namespace os
