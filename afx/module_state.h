// Which module's framework globals are current on this thread. The component makes its own state
// current at every entry point and gives the caller's back on every way out:
//
//     AFX_MANAGE_STATE(AfxGetStaticModuleState());
//
// 1. The current state is a matter of the thread; a new thread starts with the host's.
// 2. A switch ends with its scope, exceptions included, and switches nest.
// 3. The framework's unload test looks at this module's state only, whatever is current.
#pragma once

#include <kvdb/com.h>

#include <atomic>

// The globals of one module, as far as this framework has any.
struct AFX_MODULE_STATE {
    constexpr explicit AFX_MODULE_STATE(const char* name) : m_lpszName(name) {}

    const char* const m_lpszName;
    std::atomic<LONG> m_nObjectCount{0};  // what keeps the module loaded, as AfxOleLockApp counts it
};

// The component's own state.
AFX_MODULE_STATE* AfxGetStaticModuleState();

// The state that is current on this thread: the host's until one is set. Never null.
AFX_MODULE_STATE* AfxGetModuleState();

// Makes `state` current on this thread (null: the host's) and returns the one that was.
AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state);

// Makes a state current for the object's lifetime.
class AFX_MAINTAIN_STATE2 {
public:
    explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) : previous_(AfxSetModuleState(state)) {}
    ~AFX_MAINTAIN_STATE2() { AfxSetModuleState(previous_); }
    AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
    AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

private:
    AFX_MODULE_STATE* previous_;
};

#define AFX_MANAGE_STATE(state) const AFX_MAINTAIN_STATE2 afx_managed_state_(state)

// Count what must keep the component loaded.
void AfxOleLockApp();
void AfxOleUnlockApp();

// S_OK when nothing of the framework keeps the component loaded, else S_FALSE.
HRESULT AfxDllCanUnloadNow();

// Called on this thread at every switch with the state that has become current; null ends it. For
// tests, which see that way what holds inside a call.
using ModuleStateObserver = void (*)(AFX_MODULE_STATE* now);
void set_module_state_observer_for_test(ModuleStateObserver observer);
