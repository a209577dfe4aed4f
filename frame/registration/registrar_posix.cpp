// Hosts without a class registry: an application loads the library itself.
#include "frame/registration/registrar.h"

namespace frame {

class Registration::Work {};

Registration::Registration(RegistrationScope, bool) {}

Registration::~Registration() = default;

HRESULT Registration::run_script(std::uint16_t) { return E_NOTIMPL; }

HRESULT Registration::run_type_library() { return E_NOTIMPL; }

void Registration::keep() {}

}  // namespace frame
