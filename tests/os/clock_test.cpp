// Alarms of the machine's own clock.
#include "os/clock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using namespace std::chrono_literals;

template <typename Condition>
bool soon(Condition condition) {
    for (int i = 0; i < 1000 && !condition(); ++i) std::this_thread::sleep_for(10ms);
    return condition();
}

TEST(SystemAlarm, work_is_done_once_for_each_setting_and_not_before_its_time) {
    std::atomic<int> rung{0};
    std::atomic<std::int64_t> at{0};
    const auto alarm = os::system_clock().make_alarm([&] {
        at = os::system_clock().now().time_since_epoch().count();
        ++rung;
    });
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(alarm->set(os::system_clock().now() + 1h));
        const os::TimePoint due = os::system_clock().now() + 30ms;
        ASSERT_TRUE(alarm->set(due)) << "the earlier counts";
        ASSERT_TRUE(alarm->set(due + 1h)) << "the earlier counts";
        ASSERT_TRUE(soon([&] { return rung == round; }));
        EXPECT_GE(at.load(), due.time_since_epoch().count());
    }
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(rung, 3);
}

TEST(SystemAlarm, set_from_within_the_work_rings_again) {
    // Many, because the first work may begin before the setting that starts its thread has returned.
    for (int round = 0; round < 100; ++round) {
        std::atomic<int> rung{0};
        std::unique_ptr<os::Alarm> alarm;
        alarm = os::system_clock().make_alarm([&] {
            if (++rung < 3) alarm->set(os::system_clock().now());
        });
        alarm->set(os::system_clock().now());
        ASSERT_TRUE(soon([&] { return rung == 3; }));
    }
}

TEST(SystemAlarm, setting_does_not_wait_for_work_under_way) {
    std::atomic<bool> working{false};
    std::atomic<bool> may_end{false};
    const auto alarm = os::system_clock().make_alarm([&] {
        working = true;
        while (!may_end) std::this_thread::sleep_for(1ms);
    });
    ASSERT_TRUE(alarm->set(os::system_clock().now()));
    ASSERT_TRUE(soon([&] { return working.load(); }));
    EXPECT_TRUE(alarm->set(os::system_clock().now() + 1h)) << "returns while the work goes on";
    may_end = true;
}

TEST(SystemAlarm, end_waits_for_work_under_way_and_drops_what_is_to_come) {
    std::atomic<bool> working{false};
    std::atomic<bool> done{false};
    std::atomic<int> late{0};
    auto slow = os::system_clock().make_alarm([&] {
        working = true;
        std::this_thread::sleep_for(100ms);
        done = true;
    });
    auto later = os::system_clock().make_alarm([&] { ++late; });
    slow->set(os::system_clock().now());
    later->set(os::system_clock().now() + 20ms);
    ASSERT_TRUE(soon([&] { return working.load(); }));
    slow.reset();
    EXPECT_TRUE(done);
    auto dropped = os::system_clock().make_alarm([&] { ++late; });
    dropped->set(os::system_clock().now() + 1h);
    dropped.reset();
    later.reset();
    EXPECT_LE(late, 1);
}

TEST(SystemAlarm, works_again_after_it_was_idle_for_long) {
    std::atomic<int> rung{0};
    const auto alarm = os::system_clock().make_alarm([&] { ++rung; });
    alarm->set(os::system_clock().now());
    ASSERT_TRUE(soon([&] { return rung == 1; }));
    std::this_thread::sleep_for(1300ms);
    ASSERT_TRUE(alarm->set(os::system_clock().now()));
    EXPECT_TRUE(soon([&] { return rung == 2; }));
}

#ifndef _WIN32
TEST(SystemAlarm, child_of_a_fork_neither_rings_nor_waits) {
    std::atomic<int> rung{0};
    auto alarm = os::system_clock().make_alarm([&] { ++rung; });
    alarm->set(os::system_clock().now() + 50ms);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(20);
        const bool refused = !alarm->set(os::system_clock().now());
        std::this_thread::sleep_for(100ms);
        alarm.reset();
        ::_exit(refused && rung == 0 ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(soon([&] { return rung == 1; })) << "the parent's goes on";
}
#endif

}  // namespace
