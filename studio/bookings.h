// Bookings of rooms and engineers (`Bookings`), the one table whose dates keep hour and minute.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<BookingInfo> kBookings;

}  // namespace studio
