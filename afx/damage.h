// Reading past damage, for a program that contains the component: what databases that are opened for reading only
// cannot read is told and passed over, instead of raised (jet/base/salvage.h).
#pragma once

#include <functional>
#include <string>

#include "jet/base/salvage.h"

namespace afx {

// `path` is the file's, as it was opened.
using FileDamageListener = std::function<void(const std::string& path, const jet::DamagedPlace& place)>;

// For databases opened from now on; an empty listener: damage is raised again.
void set_damage_listener(FileDamageListener listener);
// What such a database is opened with.
jet::DamageListener damage_listener_for(const std::string& path);

}  // namespace afx
