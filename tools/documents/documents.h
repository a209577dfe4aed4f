// What is installed beside the tool: its man page, and what lets a shell complete its command line. Both are made from
// the commands' declarations.
#pragma once

#include <string>

#include "tools/documents/outline.h"

namespace tools {

// kvdb(1), in the language of man pages.
std::string man_page(const Outline& outline);

// The shells, by the names that completion_script takes.
Names completion_shells();
// UsageError for another one.
std::string completion_script(const Outline& outline, const std::string& shell);

std::string bash_completion(const Outline& outline);
std::string zsh_completion(const Outline& outline);
std::string fish_completion(const Outline& outline);

}  // namespace tools
