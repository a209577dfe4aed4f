// Simulates lack of memory: refuses chosen allocations of this thread, by operator new and by the C library within this
// program.
#pragma once

namespace testing_support {

// While it lives, refuses `count` allocations of this thread after `granted` others.
class RefusedMemory {
public:
    RefusedMemory(int granted, int count);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;
    // How many were refused.
    int refused() const;
};

}  // namespace testing_support
