// Replaces the program's operator new with one that remembers the largest request. In a unit of its own, so that
// no compiler sees the pair of them at a caller.
#include "tests/jet/allocation_meter.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> largest_request{0};
std::atomic<std::size_t> held_bytes{0};
std::atomic<std::size_t> peak_bytes{0};
std::atomic<std::size_t> bytes_at_reset{0};
thread_local int granted_requests = -1;  // before one is refused; below zero: none is

std::size_t size_of(void* memory) {
#ifdef _WIN32
    return _msize(memory);
#else
    return malloc_usable_size(memory);
#endif
}

void count(void* memory) {
    const std::size_t held = held_bytes += size_of(memory);
    std::size_t peak = peak_bytes.load(std::memory_order_relaxed);
    while (held > peak && !peak_bytes.compare_exchange_weak(peak, held, std::memory_order_relaxed)) {
    }
}

void release(void* memory) {
    if (memory) held_bytes -= size_of(memory);
    std::free(memory);
}

}  // namespace

namespace jet {

void reset_largest_allocation() { largest_request = 0; }
std::size_t largest_allocation() { return largest_request; }

void reset_peak_allocation() { bytes_at_reset = peak_bytes = held_bytes.load(); }
std::size_t peak_allocation() { return peak_bytes - bytes_at_reset; }

RefusedAllocation::RefusedAllocation(int granted) { granted_requests = granted; }
RefusedAllocation::~RefusedAllocation() { granted_requests = -1; }
bool RefusedAllocation::refused() const { return granted_requests < 0; }

}  // namespace jet

void* operator new(std::size_t bytes) {
    std::size_t largest = largest_request.load(std::memory_order_relaxed);
    while (bytes > largest && !largest_request.compare_exchange_weak(largest, bytes, std::memory_order_relaxed)) {
    }
    if (granted_requests >= 0 && granted_requests-- == 0) throw std::bad_alloc();
    if (void* memory = std::malloc(bytes == 0 ? 1 : bytes)) {
        count(memory);
        return memory;
    }
    throw std::bad_alloc();
}
// The library's algorithms ask this way for buffers they can do without.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    try {
        return operator new(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
