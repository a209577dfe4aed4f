// What the program asks of operator new: the largest piece since the last reset, the most that was held at one time,
// and a request that is refused.
#pragma once

#include <cstddef>

namespace jet {

void reset_largest_allocation();
std::size_t largest_allocation();  // bytes

// The most bytes held at one time since reset_peak_allocation(), beyond what was held then.
void reset_peak_allocation();
std::size_t peak_allocation();

// While it lives, the request after `granted` others of this thread is refused with std::bad_alloc, once.
class RefusedAllocation {
public:
    explicit RefusedAllocation(int granted);
    ~RefusedAllocation();
    RefusedAllocation(const RefusedAllocation&) = delete;
    RefusedAllocation& operator=(const RefusedAllocation&) = delete;
    // Whether it has come to that.
    bool refused() const;
};

}  // namespace jet
