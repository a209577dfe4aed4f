// The structural check of a file.
#pragma once

#include <functional>
#include <vector>

#include "jet/check/violation.h"
#include "jet/tables/database.h"

namespace jet {

// Every violated invariant of the file; empty for a sound one. Never throws for damage it can name.
// Damage that stops a part of the check is itself reported. Of each rule a hundred are listed one by one, the rest of
// them as one at the end; with a hundred thousand the check ends. `on_page` is called for each page that is found to be
// part of something, and ends the check by what it throws.
std::vector<Violation> check_structure(Database& database, const std::function<void()>& on_page = {});

}  // namespace jet
