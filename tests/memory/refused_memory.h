// Memory that runs out: what this thread asks of operator new, and of the C library from within this program, is
// refused at will.
#pragma once

namespace testing_support {

// While it lives, `count` requests of this thread are refused after `granted` others were granted.
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
