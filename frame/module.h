// What keeps the component loaded: its living objects (gates and class factories) and the locks that
// hosts hold on it. The component may be unloaded only while there is neither.
#pragma once

#include <kvdb/com.h>

namespace frame {

// Counts as one object of the component for its lifetime.
class ModuleReference {
public:
    ModuleReference();
    ~ModuleReference();
    ModuleReference(const ModuleReference&) = delete;
    ModuleReference& operator=(const ModuleReference&) = delete;
};

// Adds or takes back one lock.
void lock_module(bool lock);

// How many objects and locks there are.
LONG module_use_count();

}  // namespace frame
