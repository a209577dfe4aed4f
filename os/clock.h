// Time that passes, and work to be done when it has: behind a seam, so that a test can let it pass as it likes.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace os {

using TimePoint = std::chrono::steady_clock::time_point;

// Does its work once for each setting, on a thread of its own.
//
// 1. `set` and the work share no lock for longer than it takes to note a time.
// 2. Nothing runs after the object has gone, and nothing is left of it: no thread, no reference to the library.
// 3. In a forked child nothing runs and nothing is waited for; neither while a Windows process ends.
class Alarm {
public:
    virtual ~Alarm() = default;
    // Has the work done at `due` or soon after; a setting that is still to come stays as it is. False when the system
    // has no thread to give: then nothing will happen.
    virtual bool set(TimePoint due) = 0;
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual TimePoint now() = 0;
    // `work` must not throw, nor destroy the alarm.
    virtual std::unique_ptr<Alarm> make_alarm(std::function<void()> work) = 0;
};

// The machine's own.
Clock& system_clock();

// From now on no alarm of the machine's clock can be set: for the end of a library, where the system loads and unloads
// under a lock and a thread begun now would wake up in a library that has gone.
void retire_alarms() noexcept;
bool alarms_are_retired() noexcept;

}  // namespace os
