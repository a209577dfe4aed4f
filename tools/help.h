// The help, from the commands' declarations.
#pragma once

#include <string>

#include "tools/names.h"

namespace CLI {
class App;
}

namespace tools {

inline constexpr const char* kProgramHelp = "kvdb: looks at, keeps, moves and rescues the data of a recording studio.";

Names command_names(const CLI::App& tree);
// "kvdb list FOLDER TABLE [--json] ..."
std::string usage_line(const CLI::App& command);
// Usage, sentences, and a line for each word and option.
std::string help_of(const CLI::App& command);
// All commands by group, each with its usage and its first sentence.
std::string help_of_all(const CLI::App& tree);

// What holds for all commands: a paragraph on each line.
std::string help_notes();

// The text in lines of at most `width` characters, each behind `indent` blanks.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t width);

}  // namespace tools
