// Statistics of what the tests have tried: each test that fails disks, kills processes, cuts the power or damages files
// reports how often, and ./test adds the reports up. A skipped test is listed with its reason.
//
// If KVDB_TEST_FIGURES names a folder, every test program writes a file in it:
//
//     tried kills 200 passed GateCrash.killed_host_loses_no_call_that_had_returned
//     skipped SampleFileCorrupt.damage_to_files_of_access_gives_an_engine_error_or_none: no sample files
//
// A test that ends its program writes no line, and does not pass either.
#pragma once

#include <cstdint>

namespace testing_support {

enum class Figure { kFaults, kKills, kPowerCuts, kDamagedFiles };

// Adds to the figures of the running test.
void count_tried(Figure figure, std::uint64_t count = 1);

}  // namespace testing_support
