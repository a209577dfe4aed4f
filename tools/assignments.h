// member=value, as the user types it.
#pragma once

#include <string>
#include <vector>

namespace tools {

struct Assignment {
    std::string member;
    std::string value;
};
using Assignments = std::vector<Assignment>;

// UsageError for a word that is none.
Assignments assignments_of(const std::vector<std::string>& words);

}  // namespace tools
