// How a command ends when it does not succeed.
#pragma once

#include <stdexcept>

namespace tools {

// What the user typed cannot be meant: exit code 2 and one line.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What was asked for did not succeed: exit code 1 and one line.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace tools
