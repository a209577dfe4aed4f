// Each entry point runs in the frame of a method: under the lock, with the component's own module state.
#include "frame/entry_points.h"

#include <algorithm>
#include <new>
#include <string_view>

#include "afx/component_lock.h"
#include "afx/dao_database.h"
#include "db/session.h"
#include "frame/class_table.h"
#include "frame/method_frame.h"
#include "frame/module.h"

namespace frame {

HRESULT can_unload_now() {
    const MethodFrame method;
    return AfxDllCanUnloadNow() == S_OK && module_use_count() == 0 ? S_OK : S_FALSE;
}

HRESULT get_class_object(REFCLSID clsid, REFIID riid, void** object) {
    const MethodFrame method;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const ClassEntry* const entry = find_class(clsid);
    return entry != nullptr ? entry->create_factory(*entry, riid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT register_server(bool install, RegistrationScope scope) {
    const MethodFrame method;
    try {
        Registration registration(scope, install);
        for (const ClassEntry& entry : class_table()) {
            const HRESULT result = entry.update_registry(entry, registration);
            if (FAILED(result)) return result;
        }
        const HRESULT result = registration.run_type_library();
        if (SUCCEEDED(result)) registration.keep();
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT install_server(bool install, LPCOLESTR command) {
    constexpr std::string_view kUser = "user";
    std::size_t length = 0;
    while (command != nullptr && command[length] != 0) ++length;
    if (length == 0) return register_server(install);
    const auto lower = [](OLECHAR c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    const auto is_same = [&](char a, OLECHAR b) { return a == lower(b); };
    if (!std::equal(kUser.begin(), kUser.end(), command, command + length, is_same)) return E_INVALIDARG;
    return register_server(install, RegistrationScope::kUser);
}

void shut_down() {
    if (!afx::lock_component_for_good()) return AfxDaoAbandon();
    const MethodFrame method;
    try {
        db::shut_down_engine();
    } catch (...) {
        // There is nobody left to tell.
    }
}

}  // namespace frame
