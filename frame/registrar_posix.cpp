// Hosts without a class registry: an application loads the library itself.
#include "frame/registrar.h"

namespace frame {

HRESULT run_registration_script(std::uint16_t, bool) { return E_NOTIMPL; }

HRESULT register_type_library(bool) { return E_NOTIMPL; }

}  // namespace frame
