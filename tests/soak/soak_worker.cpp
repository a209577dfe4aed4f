// The program that runs the cases of one kind:
//
//     soak_worker KIND FIRST_SEED CASES SECONDS FAILURES_FOLDER
//
// CASES 0: until the seconds are over.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/soak/host_process.h"
#include "tests/soak/worker.h"

int main(int count, char** arguments) {
    ::testing::InitGoogleTest(&count, arguments);
#ifdef _WIN32
    if (const int code = soak::live_if_host(count, arguments); code >= 0) return code;
#endif
    if (count != 6) {
        std::fprintf(stderr, "usage: soak_worker KIND FIRST_SEED CASES SECONDS FAILURES_FOLDER\n");
        return 2;
    }
    soak::Shift shift;
    shift.kind = arguments[1];
    shift.first = std::strtoull(arguments[2], nullptr, 10);
    shift.cases = std::strtoull(arguments[3], nullptr, 10);
    shift.seconds = std::strtod(arguments[4], nullptr);
    shift.failures = arguments[5];
    return soak::work(shift);
}
