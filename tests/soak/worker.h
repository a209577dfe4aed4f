// Runs the cases of one kind and prints a line for each step, which the driver reads from another process:
//
//     skip REASON                 the machine cannot run the kind
//     case SEED                   before a case: if the program dies now, that case has failed
//     done SEED TRIED NEXT        it held; NEXT is the seed that follows
//     failed SEED TRIED NEXT WHY  it did not
//
// A line feed in WHY is printed as " / ".
#pragma once

#include <string>

#include "tests/soak/kind.h"

namespace soak {

struct Shift {
    std::string kind;
    Seed first = 1;
    std::uint64_t cases = 0;  // 0: until the time is over
    double seconds = 0;
    std::string failures;  // folder
};

// Returns the program's exit code: 0 whether or not cases failed, 2 for an unknown kind.
int work(const Shift& shift);

}  // namespace soak
