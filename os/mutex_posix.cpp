#include "os/mutex.h"

namespace os {

void Mutex::lock() noexcept { pthread_mutex_lock(&mutex_); }

bool Mutex::try_lock() noexcept { return pthread_mutex_trylock(&mutex_) == 0; }

void Mutex::unlock() noexcept { pthread_mutex_unlock(&mutex_); }

std::uintptr_t thread_number() noexcept { return pthread_self(); }

void around_forks(void (*before)(), void (*after)()) { pthread_atfork(before, after, after); }

}  // namespace os
