#include "tools/interrupt.h"

#include <csignal>

#include "tools/errors.h"

namespace tools {
namespace {

volatile std::sig_atomic_t has_come = 0;

void note(int) { has_come = 1; }

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
