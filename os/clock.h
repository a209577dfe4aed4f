// Clock and alarms, behind a seam so that a test can advance the time as it likes.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace os {

using TimePoint = std::chrono::steady_clock::time_point;

// Runs its work once for each setting, on a thread of its own.
//
// 1. `set` and the work share no lock for longer than it takes to note a time.
// 2. Nothing runs after the object is destroyed, and nothing is left of it: no thread, no reference to the library.
// 3. In a forked child nothing runs and nothing is waited for; the same holds while a Windows process ends.
class Alarm {
public:
    virtual ~Alarm() = default;
    // Schedules the work for `due` or soon after; of two settings that are pending the earlier counts. False when the
    // system cannot create a thread: then the work will not run.
    virtual bool set(TimePoint due) = 0;
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual TimePoint now() = 0;
    // `work` must neither throw nor destroy the alarm.
    virtual std::unique_ptr<Alarm> make_alarm(std::function<void()> work) = 0;
};

// The machine's clock.
Clock& system_clock();

// Disables all further alarms of the machine's clock. For library shutdown: the system loads and unloads libraries
// under a lock, and a thread started now would wake up in an unloaded library.
void retire_alarms() noexcept;
bool alarms_are_retired() noexcept;

}  // namespace os
