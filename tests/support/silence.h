// Whether anything is printed while tests run: a library of the component prints and logs nothing, whatever happens to
// it. Programs that load one ask for this at their start:
//
//     const bool is_silent = testing_support::expect_silence();
//
// From then on a test that passes fails all the same when something has come to standard output or standard error
// during it, from whatever code and by whatever way. What failing and skipped tests print is shown after them. Suites
// that end in `Slow` may print what they have measured. Nothing is captured in sanitized builds, whose reports end the
// program.
#pragma once

#include <string>

namespace testing_support {

bool expect_silence();
// What the running test has printed so far; it does not count any more.
std::string take_printed();
// False where nothing is captured.
bool is_capturing();
// For the running test: what is printed on either stream is noticed. The silence of all other tests rests on it.
void expect_printing_to_be_noticed();

}  // namespace testing_support
