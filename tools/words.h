// The words that a user typed. On Windows they are UTF-8 here, and become the system's code page where they name a
// file; elsewhere they are the bytes that the system handed over.
#pragma once

#include <string>
#include <vector>

namespace tools {

// What main was given, without the program's name. On Windows what the program writes is UTF-8 from then on,
// with line ends as everywhere.
std::vector<std::string> command_line_words(int argc, char** argv);

// A path as the engine takes it, and back.
std::string to_system_path(const std::string& word);
std::string from_system_path(const std::string& path);

}  // namespace tools
