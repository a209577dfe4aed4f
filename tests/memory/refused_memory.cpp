// The program's own operator new, and linker wrappers of malloc and its relatives: all code linked into this program
// calls these.
#include "tests/memory/refused_memory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool is_refusing = false;
thread_local int to_grant = 0;
thread_local int to_refuse = 0;
thread_local int refusals = 0;

bool is_refused() {
    if (!is_refusing || to_refuse == 0) return false;
    if (to_grant > 0) {
        --to_grant;
        return false;
    }
    --to_refuse;
    ++refusals;
    return true;
}

}  // namespace

namespace testing_support {

RefusedMemory::RefusedMemory(int granted, int count) {
    to_grant = granted;
    to_refuse = count;
    refusals = 0;
    is_refusing = true;
}
RefusedMemory::~RefusedMemory() { is_refusing = false; }
int RefusedMemory::refused() const { return refusals; }

}  // namespace testing_support

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* memory, std::size_t bytes);

void* __wrap_malloc(std::size_t bytes) { return is_refused() ? nullptr : __real_malloc(bytes); }
void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return is_refused() ? nullptr : __real_calloc(count, bytes);
}
void* __wrap_realloc(void* memory, std::size_t bytes) { return is_refused() ? nullptr : __real_realloc(memory, bytes); }
}

void* operator new(std::size_t bytes) {
    if (is_refused()) throw std::bad_alloc();
    if (void* const memory = __real_malloc(bytes == 0 ? 1 : bytes)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return is_refused() ? nullptr : __real_malloc(bytes == 0 ? 1 : bytes);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
