// Registration of the component with the system.
#pragma once

#include <kvdb/com.h>

#include <cstdint>

namespace frame {

// Runs the registration script in resource `script` of the library, writing what it names (`install`)
// or taking it away again. E_NOTIMPL on a host without a class registry.
HRESULT run_registration_script(std::uint16_t script, bool install);

// Registers or unregisters the library's type library. E_NOTIMPL on a host without a class registry.
HRESULT register_type_library(bool install);

}  // namespace frame
