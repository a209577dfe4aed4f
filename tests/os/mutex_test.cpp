#include "os/mutex.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

constinit os::Mutex mutex;

}  // namespace

TEST(Mutex, one_thread_at_a_time_has_it) {
    int count = 0;
    const auto work = [&count] {
        for (int i = 0; i < 2000; ++i) {
            mutex.lock();
            ++count;
            mutex.unlock();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 4000);
}

TEST(Mutex, try_fails_while_another_thread_has_it) {
    ASSERT_TRUE(mutex.try_lock());
    std::thread([] { EXPECT_FALSE(mutex.try_lock()); }).join();
    mutex.unlock();
    std::thread([] {
        EXPECT_TRUE(mutex.try_lock());
        mutex.unlock();
    }).join();
}

TEST(ThreadNumber, is_the_threads_own) {
    const std::uintptr_t here = os::thread_number();
    EXPECT_NE(here, 0u);
    EXPECT_EQ(os::thread_number(), here);
    std::thread([here] { EXPECT_NE(os::thread_number(), here); }).join();
}
