// What cannot be read of a damaged file: told place by place on standard error, while the rest is printed.
#pragma once

#include <string>

#include "jet/base/salvage.h"

namespace tools {

// For files opened below the gates: a listener that tells, and counts.
jet::DamageListener damage_teller(const std::string& path);
// For the files that the gates open for reading.
void tell_damage_of_gates();

// CommandError when some place was told: what was printed is not all.
void require_undamaged();

}  // namespace tools
