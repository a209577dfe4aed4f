// The studio at a glance: a card for each picture, "" where the tables have nothing to draw it from.
//
// What they keep of a table is bounded: months, years, the first rooms and pieces. The rest is summed up.
#pragma once

#include <chrono>
#include <string>

#include "tools/report/studio_tables.h"

namespace tools {

// Numbers that an owner asks first.
std::string key_figures(const StudioTables& tables);
// Each room's bookings by week, a picture for each year; the present one, or the nearest, first.
std::string bookings_picture(const StudioTables& tables, std::chrono::sys_days today);
std::string invoices_picture(const StudioTables& tables, std::chrono::sys_days today);
std::string projects_picture(const StudioTables& tables, std::chrono::sys_days today);
std::string stock_picture(const StudioTables& tables);
std::string gear_picture(const StudioTables& tables);

}  // namespace tools
