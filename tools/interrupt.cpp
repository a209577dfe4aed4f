#include "tools/interrupt.h"

#include <csignal>

#include "tools/errors.h"

namespace tools {
namespace {

volatile std::sig_atomic_t has_come = 0;

// The second one ends the program as ever.
void note(int number) {
    has_come = 1;
    std::signal(number, SIG_DFL);
}

}  // namespace

void catch_interrupts() {
    std::signal(SIGINT, note);
    std::signal(SIGTERM, note);
#ifdef SIGHUP
    std::signal(SIGHUP, note);
#endif
}

void require_uninterrupted() {
    if (has_come != 0) throw CommandError("interrupted; nothing of it was kept");
}

}  // namespace tools
