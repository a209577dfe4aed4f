// Long work as commands do it: it tells how far it is, and Ctrl-C ends it at the next step.
#pragma once

#include "tools/interrupt.h"
#include "tools/progress.h"

namespace tools {

class LongWork {
public:
    // As for Progress.
    LongWork(const char* what, std::uint64_t total) : progress_(what, total) {}

    // CommandError where the person has had enough.
    void step(std::uint64_t count = 1) {
        require_uninterrupted();
        progress_.step(count);
    }

private:
    Progress progress_;
};

}  // namespace tools
