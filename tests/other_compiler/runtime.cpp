// What the other compiler's C++ runtime links into every program: its start, the heap, the type of types and the
// thread's data. The rest comes from the runtime's libraries, which Wine has.
#include <windows.h>

#include <stdlib.h>

#include <new>

class type_info {
public:
    type_info();
    virtual ~type_info();
};
type_info::type_info() {}
type_info::~type_info() {}

namespace std {

exception::~exception() noexcept {}
const char* exception::what() const noexcept { return "exception"; }
bad_alloc::bad_alloc() noexcept {}
bad_alloc::~bad_alloc() noexcept {}
const char* bad_alloc::what() const noexcept { return "no memory"; }

}  // namespace std

extern "C" {

int _fltused = 1;  // floating point is used
unsigned long _tls_index = 0;
#pragma section(".tls")
#pragma section(".tls$ZZZ")
__declspec(allocate(".tls")) char _tls_start = 0;
__declspec(allocate(".tls$ZZZ")) char _tls_end = 0;
__declspec(allocate(".rdata$T")) extern const IMAGE_TLS_DIRECTORY _tls_used = {reinterpret_cast<ULONG_PTR>(&_tls_start),
                                                                               reinterpret_cast<ULONG_PTR>(&_tls_end),
                                                                               reinterpret_cast<ULONG_PTR>(&_tls_index),
                                                                               0,
                                                                               0,
                                                                               0};

int run_host();
void __cdecl start() { ExitProcess(static_cast<UINT>(run_host())); }

}  // extern "C"

void* operator new(size_t bytes) { return malloc(bytes); }
void operator delete(void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }
