// The rentable gear of the studio: the items (`Gear`), the services rendered with them (`GearServices`), repairs
// (`GearRepairs`), categories (`GearCategories`) and rentals (`GearRentals`).
//
// All except the categories use their filter in every operation: the row of the key if the record has one, else
// the first row that matches the set members, else the first row of the table.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace gear {

extern const studio::TableMapping<GearInfo> kGear;
extern const studio::TableMapping<GearServInfo> kServices;
extern const studio::TableMapping<GRepairsInfo> kRepairs;
extern const studio::TableMapping<GearCatInfo> kCategories;
// The older gate's part of a rental: without GearID, ClientID, RoomID and the dates of the filter.
extern const studio::TableMapping<GearRentInfo> kRentalsInPart;
extern const studio::TableMapping<GearRentInfo> kRentals;

}  // namespace gear
