#include "tests/soak/refused_memory.h"

#include <cstdlib>
#include <new>

namespace soak {
namespace {

thread_local bool is_counting = false;
thread_local std::uint64_t requests = 0;
thread_local std::uint64_t refusals = 0;
thread_local std::uint64_t first_refused = 0;  // 0: none
thread_local std::uint64_t refused_count = 0;

bool is_refused() {
    if (!is_counting) return false;
    ++requests;
    if (first_refused == 0 || requests < first_refused || requests - first_refused >= refused_count) return false;
    ++refusals;
    return true;
}

}  // namespace

void refuse_memory(std::uint64_t first, std::uint64_t count) {
    requests = refusals = 0;
    first_refused = first;
    refused_count = count;
}
void refuse_no_memory() { refuse_memory(0, 0); }
std::uint64_t memory_requests() { return requests; }
std::uint64_t memory_refusals() { return refusals; }

void component_begins() { is_counting = true; }
void component_ends() { is_counting = false; }

}  // namespace soak

void* operator new(std::size_t bytes) {
    if (!soak::is_refused()) {
        if (void* const memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
    }
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return soak::is_refused() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
