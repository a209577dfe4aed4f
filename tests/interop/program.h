// Runs the external programs that the tests compare with.
#pragma once

#include <string>
#include <vector>

namespace interop {

struct ProgramResult {
    int exit_code = -1;  // -1: it could not be started, or a signal ended it
    std::string output;  // its standard output; standard error goes to this process's
};

// Runs `words[0]`, searched in PATH, with time zone UTC and a UTF-8 locale, and waits for its exit.
ProgramResult run_program(const std::vector<std::string>& words);

// Whether PATH has a program of that name.
bool has_program(const std::string& name);

}  // namespace interop
