// A lock between threads that needs no construction, destruction or memory, so it may be a variable used before the
// library's start and after its end.
#pragma once

#include <cstdint>

#ifndef _WIN32
#include <pthread.h>
#endif

namespace os {

// Not recursive. Meets the requirements of std::lock_guard.
class Mutex {
public:
    constexpr Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() noexcept;
    bool try_lock() noexcept;
    void unlock() noexcept;  // by any thread

private:
#ifdef _WIN32
    void* slim_lock_ = nullptr;
#else
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
#endif
};

// Number of the calling thread, unique among the living threads of the process, never 0. The child of a fork keeps the
// parent's.
std::uintptr_t thread_number() noexcept;

// Registers `before` to be called in the forking thread before a fork, and `after` in the parent and in the child: data
// under a lock is consistent in the child, and the lock is not held by a thread that does not exist there. Does nothing
// on systems without fork.
void around_forks(void (*before)(), void (*after)());

}  // namespace os
