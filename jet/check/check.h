// The structural check of a file.
#pragma once

#include <vector>

#include "jet/check/violation.h"
#include "jet/tables/database.h"

namespace jet {

// Every violated invariant of the file; empty for a sound one. Never throws for damage it can name.
// Damage that stops a part of the check is itself reported. Of each rule a hundred are listed one by one, the rest of
// them as one at the end; with a hundred thousand the check ends.
std::vector<Violation> check_structure(Database& database);

}  // namespace jet
