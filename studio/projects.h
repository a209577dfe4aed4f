// The projects of the studio (`Projects`), the top of its data.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<ProjInfo> kProjects;

}  // namespace studio
