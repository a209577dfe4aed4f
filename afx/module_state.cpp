// The two states of a component: its own, and the one that stands for the host it runs in.
#include "afx/module_state.h"

namespace {

constinit AFX_MODULE_STATE component_state("kvdb");
constinit AFX_MODULE_STATE host_state("host");

thread_local AFX_MODULE_STATE* current_state = &host_state;
thread_local ModuleStateObserver state_observer = nullptr;

}  // namespace

AFX_MODULE_STATE* AfxGetStaticModuleState() { return &component_state; }

AFX_MODULE_STATE* AfxGetModuleState() { return current_state; }

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) {
    AFX_MODULE_STATE* const previous = current_state;
    current_state = state != nullptr ? state : &host_state;
    if (state_observer != nullptr) state_observer(current_state);
    return previous;
}

void AfxOleLockApp() { component_state.m_nObjectCount.fetch_add(1); }

void AfxOleUnlockApp() { component_state.m_nObjectCount.fetch_sub(1); }

HRESULT AfxDllCanUnloadNow() { return component_state.m_nObjectCount.load() == 0 ? S_OK : S_FALSE; }

void set_module_state_observer_for_test(ModuleStateObserver observer) { state_observer = observer; }
