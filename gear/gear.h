// The rentable gear of the studio: the items (`Gear`), the services rendered with them (`GearServices`), repairs
// (`GearRepairs`), categories (`GearCategories`) and rentals (`GearRentals`).
//
// All but the categories go by their filter in every operation: the row of the key where the record has one, else
// the first row that matches what is set, else the first row of the table.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace gear {

extern const studio::TableMapping<GearInfo> kGear;
extern const studio::TableMapping<GearServInfo> kServices;
extern const studio::TableMapping<GRepairsInfo> kRepairs;
extern const studio::TableMapping<GearCatInfo> kCategories;
// What the older gate serves of a rental: nothing of GearID, ClientID, RoomID and the dates of the filter.
extern const studio::TableMapping<GearRentInfo> kRentalsInPart;
extern const studio::TableMapping<GearRentInfo> kRentals;

}  // namespace gear
