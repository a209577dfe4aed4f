// What the library's four exported functions do.
#pragma once

#include <kvdb/com.h>

#include "frame/registration/registrar.h"

namespace frame {

// S_FALSE while the framework, an object or a lock needs the component, else S_OK.
HRESULT can_unload_now();

// The class factory of `clsid`; CLASS_E_CLASSNOTAVAILABLE for a class that is not in the table.
HRESULT get_class_object(REFCLSID clsid, REFIID riid, void** object);

// Registers (or unregisters) every class of the table, then the type library. The first failure is handed back
// unchanged, and what was done before it is taken back.
HRESULT register_server(bool install, RegistrationScope scope = RegistrationScope::kMachine);

// As register_server, for whom `command` says: "user" is the current user, null or "" the machine, and any other text
// is E_INVALIDARG.
HRESULT install_server(bool install, LPCOLESTR command);

// At unload: ends the data-access engine, unless a thread is still inside the component, which then is left as it is:
// what was committed waits in the journals.
void shut_down();

}  // namespace frame
