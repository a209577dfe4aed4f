// Each entry point runs under the component's own module state.
#include "frame/entry_points.h"

#include "afx/module_state.h"
#include "db/session.h"
#include "frame/class_table.h"
#include "frame/module.h"
#include "frame/registrar.h"

namespace frame {

HRESULT can_unload_now() {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return AfxDllCanUnloadNow() == S_OK && module_use_count() == 0 ? S_OK : S_FALSE;
}

HRESULT get_class_object(REFCLSID clsid, REFIID riid, void** object) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const ClassEntry* const entry = find_class(clsid);
    return entry != nullptr ? entry->create_factory(*entry, riid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT register_server(bool install) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    for (const ClassEntry& entry : class_table()) {
        const HRESULT result = entry.update_registry(entry, install);
        if (FAILED(result)) return result;
    }
    return register_type_library(install);
}

void shut_down() {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    try {
        db::shut_down_engine();
    } catch (...) {
        // There is nobody left to tell.
    }
}

}  // namespace frame
