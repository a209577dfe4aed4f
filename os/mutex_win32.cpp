#include "os/mutex.h"

#include <windows.h>

namespace os {

namespace {

static_assert(sizeof(SRWLOCK) == sizeof(void*));
SRWLOCK* slim(void** lock) { return reinterpret_cast<SRWLOCK*>(lock); }

}  // namespace

void Mutex::lock() noexcept { AcquireSRWLockExclusive(slim(&slim_lock_)); }

bool Mutex::try_lock() noexcept { return TryAcquireSRWLockExclusive(slim(&slim_lock_)) != 0; }

void Mutex::unlock() noexcept { ReleaseSRWLockExclusive(slim(&slim_lock_)); }

std::uintptr_t thread_number() noexcept { return GetCurrentThreadId(); }

void around_forks(void (*)(), void (*)()) {}

}  // namespace os
