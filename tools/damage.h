// What cannot be read of a damaged file: told place by place on standard error, while the rest is printed.
#pragma once

#include <cstddef>
#include <string>

#include "jet/base/salvage.h"

namespace tools {

// Whether the engine's number says that something of the file cannot be read.
bool is_damage(int error_number);

// A listener that tells, and counts.
jet::DamageListener damage_teller(const std::string& path);
// Tells and counts what no listener is called for: the definition of a table, a file that cannot be opened.
void tell_damage(const std::string& path, const std::string& what);

// How many were told, of all files.
std::size_t damaged_places();
// Whether one was told of this file.
bool has_damage(const std::string& path);
// CommandError when some place was told: what was given out is not all.
void require_undamaged();
// The commands that help the owner of the damaged file.
std::string help_for_damaged(const std::string& path);

}  // namespace tools
