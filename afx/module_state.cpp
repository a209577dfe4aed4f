// The two states of a component: its own, and the one that stands for the host it runs in.
#include "afx/module_state.h"

namespace {

constinit AFX_MODULE_STATE component_state("kvdb");
constinit AFX_MODULE_STATE host_state("host");

// One object: finding a thread's own costs a call, on Windows a slow one.
struct ThreadState {
    AFX_MODULE_STATE* current = &host_state;
    ModuleStateObserver observer = nullptr;
};
constinit thread_local ThreadState thread_state;

}  // namespace

AFX_MODULE_STATE* AfxGetStaticModuleState() { return &component_state; }

AFX_MODULE_STATE* AfxGetModuleState() { return thread_state.current; }

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) {
    ThreadState& thread = thread_state;
    AFX_MODULE_STATE* const previous = thread.current;
    thread.current = state != nullptr ? state : &host_state;
    if (thread.observer != nullptr) thread.observer(thread.current);
    return previous;
}

void AfxOleLockApp() { component_state.m_nObjectCount.fetch_add(1); }

void AfxOleUnlockApp() { component_state.m_nObjectCount.fetch_sub(1); }

HRESULT AfxDllCanUnloadNow() { return component_state.m_nObjectCount.load() == 0 ? S_OK : S_FALSE; }

void set_module_state_observer_for_test(ModuleStateObserver observer) { thread_state.observer = observer; }
