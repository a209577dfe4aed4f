// Alarms of a POSIX system: one thread each, started at the first setting. Closing joins it, because the library may be
// unmapped right after. The thread blocks all signals, so that it never runs a handler of the host.
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "os/clock.h"

namespace os {
namespace {

constexpr std::size_t kStackBytes = std::size_t{256} << 10;

// State shared by both threads. In a forked child its lock may be held for ever, so there it is left alone and never
// freed.
struct AlarmState {
    explicit AlarmState(std::function<void()> w) : work(std::move(w)) {}

    std::mutex mutex;
    std::condition_variable changed;
    std::optional<TimePoint> due;
    bool ended = false;
    const std::function<void()> work;

    void run() {
        std::unique_lock lock(mutex);
        while (!ended) {
            if (!due) {
                changed.wait(lock);
            } else if (const TimePoint until = *due; std::chrono::steady_clock::now() < until) {
                changed.wait_until(lock, until);
            } else {
                due.reset();
                lock.unlock();
                work();
                lock.lock();
            }
        }
    }
};

void* run_alarm(void* state) {
    static_cast<AlarmState*>(state)->run();
    return nullptr;
}

class PosixAlarm : public Alarm {
public:
    explicit PosixAlarm(std::function<void()> work)
        : state_(std::make_unique<AlarmState>(std::move(work))), process_(::getpid()) {}

    ~PosixAlarm() override {
        if (::getpid() != process_) {
            static_cast<void>(state_.release());
            return;
        }
        if (!thread_) return;
        {
            const std::lock_guard lock(state_->mutex);
            state_->ended = true;
        }
        state_->changed.notify_one();
        ::pthread_join(*thread_, nullptr);
    }

    bool set(TimePoint due) override {
        if (::getpid() != process_) return false;
        const std::lock_guard lock(state_->mutex);  // held while the thread starts: its work may set the alarm too
        if (state_->due && *state_->due <= due) return true;
        if (!thread_ && (alarms_are_retired() || !start())) return false;
        state_->due = due;
        state_->changed.notify_one();
        return true;
    }

private:
    bool start() {
        pthread_attr_t attributes;
        if (::pthread_attr_init(&attributes) != 0) return false;
        ::pthread_attr_setstacksize(&attributes, kStackBytes);
        sigset_t all;
        sigset_t before;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before);
        pthread_t thread{};
        const bool started = ::pthread_create(&thread, &attributes, run_alarm, state_.get()) == 0;
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        ::pthread_attr_destroy(&attributes);
        if (started) thread_ = thread;
        return started;
    }

    std::unique_ptr<AlarmState> state_;
    const pid_t process_;
    std::optional<pthread_t> thread_;
};

class SystemClock : public Clock {
public:
    TimePoint now() override { return std::chrono::steady_clock::now(); }
    std::unique_ptr<Alarm> make_alarm(std::function<void()> work) override {
        return std::make_unique<PosixAlarm>(std::move(work));
    }
};

}  // namespace

Clock& system_clock() {
    static SystemClock clock;
    return clock;
}

}  // namespace os
