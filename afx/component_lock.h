// The one lock of this copy of the library. Whoever is inside a gate's method or an entry point holds it, so that the
// databases, and everything below them, are used by one thread at a time whatever threads the host calls from.
//
// Invariants
//  1. A thread that holds the lock may take it again, and lets go with the last release.
//  2. Nothing outside the component is called with the lock held that could wait for another thread of the host: the
//     conversion of automation arguments, which may release objects of others, runs without it.
//  3. Neither taking nor releasing it asks for memory.
//  4. The end of the library takes the lock for good or not at all, and never waits for it where the platform forbids
//     waiting.
#pragma once

namespace afx {

class ComponentLock {
public:
    ComponentLock();
    ~ComponentLock();
    ComponentLock(const ComponentLock&) = delete;
    ComponentLock& operator=(const ComponentLock&) = delete;
};

// Takes the lock and never gives it back, so that later calls of other threads wait for the end of the process; calls
// of this one go on. True as well when this thread has done so before. False when somebody is still inside, on this
// thread (in a handler of a signal) or on another that does not come out within a second or has been ended there. From
// the call on nothing here begins a thread, which could wake up in a library that has gone.
bool lock_component_for_good();

}  // namespace afx
