// The structural check of a file.
#pragma once

#include <string>
#include <vector>

#include "jet/tables/database.h"

namespace jet {

struct Violation {
    PageNumber page = 0;
    int row = -1;           // slot, or -1 when the rule is about the page or the table
    std::string rule;       // short name of the rule
    std::string detail;     // one line
    std::size_t count = 1;  // findings that it stands for: more than one where the rule has more than are listed
};

// Every violated invariant of the file; empty for a sound one. Never throws for damage it can name.
// Damage that stops a part of the check is itself reported. Of each rule a hundred are listed one by one, the rest of
// them as one at the end; with a hundred thousand the check ends.
std::vector<Violation> check_structure(Database& database);

}  // namespace jet
