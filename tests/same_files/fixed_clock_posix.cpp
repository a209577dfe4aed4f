// The program's functions take precedence over those of the C library, in the component too.
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "tests/same_files/fixed_clock.h"

using testing_support::kFixedMilliseconds;
using testing_support::kFixedSeconds;

extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* now) noexcept {
    if (clock != CLOCK_REALTIME) return static_cast<int>(::syscall(SYS_clock_gettime, clock, now));
    now->tv_sec = kFixedSeconds;
    now->tv_nsec = kFixedMilliseconds * 1'000'000;
    return 0;
}

extern "C" __attribute__((visibility("default"))) time_t time(time_t* now) noexcept {
    if (now != nullptr) *now = kFixedSeconds;
    return kFixedSeconds;
}

void testing_support::stop_clock() {}
