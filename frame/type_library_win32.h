// The component's own file and the type library in it.
#pragma once

#include <kvdb/com.h>

#include <string>

namespace frame {

// Full path of the file that holds this code.
std::wstring own_file();

// The type library of that file, with one reference for the caller.
HRESULT load_type_library(ITypeLib** library);

}  // namespace frame
