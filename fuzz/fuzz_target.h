// The entry point of a fuzzer: one function that accepts any bytes and returns. An engine error is a normal result; any
// other exception, and every sanitizer report, is a finding.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
