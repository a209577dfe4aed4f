// The structural check of a file.
#pragma once

#include <vector>

#include "jet/check/violation.h"
#include "jet/tables/database.h"

namespace jet {

// Every violated invariant of the file; empty for a sound one. Never throws for damage it can name.
// Damage that stops a part of the check is itself reported. With a thousand of them the check ends.
std::vector<Violation> check_structure(Database& database);

}  // namespace jet
