// One broken rule of a file.
#pragma once

#include <cstddef>
#include <string>

#include "jet/base/types.h"

namespace jet {

struct Violation {
    PageNumber page = 0;
    int row = -1;           // slot, or -1 when the rule is about the page or the table
    std::string rule;       // short name of the rule
    std::string detail;     // one line
    std::size_t count = 1;  // findings that it stands for: more than one where the rule has more than are listed
};

}  // namespace jet
