// The words that a user typed, in UTF-8 on Windows; elsewhere they are the bytes that the system handed over.
#pragma once

#include <string>
#include <vector>

namespace tools {

// What main was given, without the program's name. On Windows what the program writes is UTF-8 from then on,
// with line ends as everywhere.
std::vector<std::string> program_arguments(int argc, char** argv);

}  // namespace tools
