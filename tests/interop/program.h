// Starts the programs of other makers that the tests compare with.
#pragma once

#include <string>
#include <vector>

namespace interop {

struct ProgramResult {
    int exit_code = -1;  // -1: it could not be started, or a signal ended it
    std::string output;  // what it wrote to its standard output; the rest goes to this process's own
};

// Runs `words[0]`, looked for along PATH, with time zone UTC and a UTF-8 locale, and waits for its end.
ProgramResult run_program(const std::vector<std::string>& words);

// Whether a program of that name stands on PATH.
bool has_program(const std::string& name);

}  // namespace interop
