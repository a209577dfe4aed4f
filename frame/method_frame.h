// The frame of every call into the component: its lock, and inside it the component's module state as the thread's
// current one. Both end with the scope, exceptions included.
#pragma once

#include "afx/component_lock.h"
#include "afx/module_state.h"

namespace frame {

class MethodFrame {
public:
    MethodFrame() : state_(AfxGetStaticModuleState()) {}

private:
    const afx::ComponentLock lock_;
    const AFX_MAINTAIN_STATE2 state_;
};

}  // namespace frame
