// A plain mutex, and who holds it: the platforms' own recursive ones are bound to a thread's number, which is another
// one in the child of a fork.
#include "afx/component_lock.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include "os/clock.h"
#include "os/mutex.h"

namespace afx {

namespace {

// Calls come after the destruction of static objects, too.
constinit os::Mutex mutex;
constexpr std::uintptr_t kNobody = 0;
constinit std::atomic<std::uintptr_t> holder{kNobody};
constinit int depth = 0;          // of the holder
constinit bool is_ended = false;  // the holder keeps the lock, though not the mutex

bool is_held_here() { return holder.load(std::memory_order_relaxed) == os::thread_number(); }

[[noreturn]] void wait_for_the_end_of_the_process() {
    mutex.unlock();
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

#ifdef _WIN32
// The library ends under the loader's lock, and other threads have been ended before: who waits there waits for ever.
constexpr std::chrono::milliseconds kPatience{0};
#else
constexpr std::chrono::milliseconds kPatience{1000};
#endif

void take() {
    if (!is_held_here()) {
        mutex.lock();
        if (is_ended) wait_for_the_end_of_the_process();
        holder.store(os::thread_number(), std::memory_order_relaxed);
    }
    ++depth;
}

void give() {
    if (--depth > 0) return;
    holder.store(kNobody, std::memory_order_relaxed);
    mutex.unlock();
}

// A fork waits for the call of another thread that is under way.
[[maybe_unused]] const bool is_taken_around_forks = (os::around_forks(take, give), true);

}  // namespace

ComponentLock::ComponentLock() { take(); }

ComponentLock::~ComponentLock() { give(); }

bool lock_component_for_good() {
    os::retire_alarms();
    if (is_held_here()) return is_ended;
    for (std::chrono::milliseconds waited{0}; !mutex.try_lock(); ++waited) {
        if (waited >= kPatience) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    holder.store(os::thread_number(), std::memory_order_relaxed);
    depth = 1;
    is_ended = true;
    mutex.unlock();  // whatever memory the library is loaded into next has no locked mutex in it
    return true;
}

}  // namespace afx
