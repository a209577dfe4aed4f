// The exchange of fields against going through values, for every record of the gear tables.
#include "afx/field_exchange.h"

#include "gear/gear.h"
#include "tests/studio/both_ways.h"

namespace {

class GearFieldExchange : public BothWays {};

TEST_F(GearFieldExchange, records_are_as_by_values) {
    compare(gear::kGear);
    compare(gear::kServices);
    compare(gear::kRepairs);
    compare(gear::kCategories);
    compare(gear::kRentalsInPart);
    compare(gear::kRentals);
}

}  // namespace
