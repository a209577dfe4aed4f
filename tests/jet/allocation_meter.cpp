// Replaces the program's operator new with one that counts, remembers the largest request and refuses one. In a unit of its own, so that
// no compiler sees the pair of them at a caller.
#include "tests/jet/allocation_meter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> largest_request{0};
std::atomic<std::uint64_t> requests{0};
std::atomic<std::uint64_t> refused_request{0};

}  // namespace

namespace jet {

void reset_largest_allocation() { largest_request = 0; }
std::size_t largest_allocation() { return largest_request; }
std::uint64_t allocation_count() { return requests; }
void refuse_allocation(std::uint64_t nth) { refused_request = nth == 0 ? 0 : requests + nth; }

}  // namespace jet

void* operator new(std::size_t bytes) {
    std::size_t largest = largest_request.load(std::memory_order_relaxed);
    while (bytes > largest && !largest_request.compare_exchange_weak(largest, bytes, std::memory_order_relaxed)) {
    }
    if (requests.fetch_add(1, std::memory_order_relaxed) + 1 == refused_request.load(std::memory_order_relaxed)) {
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
