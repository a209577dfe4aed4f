// What cannot be read of a damaged file: told place by place on standard error, while the rest is printed.
#pragma once

#include <cstddef>
#include <string>

#include "jet/base/salvage.h"

namespace tools {

// A listener that tells, and counts.
jet::DamageListener damage_teller(const std::string& path);

// How many were told.
std::size_t damaged_places();
// CommandError when some place was told: what was given out is not all.
void require_undamaged();

}  // namespace tools
