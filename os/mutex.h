// A lock between threads that needs neither construction nor destruction nor memory: it may stand in a variable that
// is used before the library's start and after its end.
#pragma once

#include <cstdint>

#ifndef _WIN32
#include <pthread.h>
#endif

namespace os {

// Not recursive. Satisfies what std::lock_guard asks for.
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

// The calling thread among the living ones of the process, never 0. In the child of a fork it is what it was in the
// parent.
std::uintptr_t thread_number() noexcept;

// Has `before` called in the thread that forks, before it does, and `after` in the parent and in the child: what a lock
// guards is whole in the child, and the lock is not one that nobody will open. Nothing where processes are not forked.
void around_forks(void (*before)(), void (*after)());

}  // namespace os
