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

TEST_F(GearFieldExchange, files_written_are_those_written_by_values) {
    write_both(gear::kGear);
    write_both(gear::kServices);
    write_both(gear::kRepairs);
    write_both(gear::kCategories);
    write_both(gear::kRentalsInPart);
    write_both(gear::kRentals);
    expect_same_files();
}

}  // namespace
