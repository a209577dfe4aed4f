// Names of commands, tables and columns: when two are the same, and what a mistyped one was probably meant to be.
#pragma once

#include <string>
#include <vector>

namespace tools {

using Names = std::vector<std::string>;

// Whether two names of tables or members are the same: without regard to case.
bool is_same_name(const std::string& a, const std::string& b);
// "a, b, c"
std::string listed(const Names& names);

// The name that takes the fewest slips to the word (a character too many, too few, another one, or two exchanged), with
// no regard to case; "" when none is near.
std::string nearest_name(const std::string& word, const Names& names);
// "; did you mean NAME?", or "".
std::string suggestion(const std::string& word, const Names& names);

}  // namespace tools
