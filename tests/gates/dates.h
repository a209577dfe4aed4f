// Dates of the gates' tests.
#pragma once

#include "kvdb/kvdb.h"

namespace testing_support {

// A time in March 2005.
inline CTime march(int day, int hour = 0, int minute = 0) { return CTime(2005, 3, day, hour, minute, 0); }

}  // namespace testing_support
