// What the tests have tried, in numbers: each test that fails disks, kills processes, cuts the power or damages files
// says how often, and ./test adds up what all of them have said. A test that is skipped stands there with its reason.
//
// Where KVDB_TEST_FIGURES names a folder, every test program leaves a file in it:
//
//     tried kills 200 passed GateCrash.killed_host_loses_no_call_that_had_returned
//     skipped FileCorrupt.damage_to_files_of_access_gives_an_engine_error_or_none: no sample files
//
// A test that ends its program leaves no line, and does not pass either.
#pragma once

#include <cstdint>

namespace testing_support {

enum class Figure { kFaults, kKills, kPowerCuts, kDamagedFiles };

// Adds to what the running test has tried.
void count_tried(Figure figure, std::uint64_t count = 1);

}  // namespace testing_support
