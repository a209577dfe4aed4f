// A clock that stands still until a test advances it; due alarms then ring in the test's own thread, each at its time.
#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "os/clock.h"

namespace testing_support {

class ManualClock : public os::Clock {
public:
    os::TimePoint now() override { return now_; }
    std::unique_ptr<os::Alarm> make_alarm(std::function<void()> work) override {
        return std::make_unique<ManualAlarm>(*this, std::move(work));
    }

    // Advances the time. Alarms that become due run at their time.
    void advance(std::chrono::steady_clock::duration span) {
        const os::TimePoint end = now_ + span;
        while (ManualAlarm* const next = first_due()) {
            if (*next->due > end) break;
            now_ = std::max(now_, *next->due);
            next->due.reset();
            next->work();
        }
        now_ = end;
    }
    // Number of alarms that are set.
    std::size_t pending() const {
        return static_cast<std::size_t>(std::count_if(alarms_.begin(), alarms_.end(),
                                                      [](const ManualAlarm* alarm) { return alarm->due.has_value(); }));
    }
    // Simulates a system that cannot create threads.
    void refuse_alarms(bool refuse) { refuses_ = refuse; }

private:
    struct ManualAlarm : os::Alarm {
        ManualAlarm(ManualClock& c, std::function<void()> w) : clock(c), work(std::move(w)) {
            clock.alarms_.push_back(this);
        }
        ~ManualAlarm() override { std::erase(clock.alarms_, this); }
        bool set(os::TimePoint at) override {
            if (clock.refuses_) return false;
            due = due ? std::min(*due, at) : at;
            return true;
        }

        ManualClock& clock;
        const std::function<void()> work;
        std::optional<os::TimePoint> due;
    };

    ManualAlarm* first_due() const {
        ManualAlarm* first = nullptr;
        for (ManualAlarm* const alarm : alarms_) {
            if (alarm->due && (first == nullptr || *alarm->due < *first->due)) first = alarm;
        }
        return first;
    }

    os::TimePoint now_ = std::chrono::steady_clock::now();
    std::vector<ManualAlarm*> alarms_;
    bool refuses_ = false;
};

}  // namespace testing_support
