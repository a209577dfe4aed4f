#include "tools/interrupt.h"

#include <csignal>
#include <string>

#include "tools/errors.h"

namespace tools {
namespace {

volatile std::sig_atomic_t has_come = 0;
const char* outcome_of_it = "";

// The second one ends the program as ever.
void note(int number) {
    has_come = 1;
    std::signal(number, SIG_DFL);
}

}  // namespace

void catch_interrupts(const char* outcome) {
    outcome_of_it = outcome;
    std::signal(SIGINT, note);
    std::signal(SIGTERM, note);
#ifdef SIGHUP
    std::signal(SIGHUP, note);
#endif
}

bool is_interrupted() { return has_come != 0; }

void require_uninterrupted() {
    if (has_come != 0) throw CommandError(std::string("interrupted; ") + outcome_of_it);
}

}  // namespace tools
