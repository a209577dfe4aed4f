// The program's own function comes before that of the C library, for the standard library too.
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "tests/soak/simulated_clock.h"

namespace {

bool stands_still = false;
timespec now_on_the_clock{};

}  // namespace

extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* now) noexcept {
    if (clock == CLOCK_MONOTONIC && stands_still) {
        *now = now_on_the_clock;
        return 0;
    }
    return static_cast<int>(::syscall(SYS_clock_gettime, clock, now));
}

void soak::stop_clock() {
    ::clock_gettime(CLOCK_MONOTONIC, &now_on_the_clock);
    stands_still = true;
}

void soak::let_time_pass(std::chrono::milliseconds span) {
    constexpr long kSecond = 1'000'000'000;
    now_on_the_clock.tv_nsec += static_cast<long>(span.count() % 1000) * 1'000'000;
    now_on_the_clock.tv_sec += span.count() / 1000 + now_on_the_clock.tv_nsec / kSecond;
    now_on_the_clock.tv_nsec %= kSecond;
}
