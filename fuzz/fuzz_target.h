// What a fuzzer is: one function that takes any bytes at all and comes back. An engine error is an answer;
// everything else that gets out of it, and every report of a sanitizer, is a find.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
