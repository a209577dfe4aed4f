// What salvage has to say, for people.
#pragma once

#include <string>

#include "tools/rescue/salvage.h"

namespace tools {

// Lines, each with its end.
std::string salvage_text(const SalvageReport& report, const std::string& from, const std::string& to);
// The same as one JSON object.
std::string salvage_json(const SalvageReport& report, const std::string& from, const std::string& to);

}  // namespace tools
