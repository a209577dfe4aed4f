// The checksum of journals and of the file state that a journal is bound to.
#pragma once

#include <cstdint>

#include "jet/base/bytes.h"

namespace jet {

// A 64-bit checksum of `bytes`, chained on `seed`. On disk: it never changes. No protection against deliberate changes.
std::uint64_t checksum64(ByteSpan bytes, std::uint64_t seed);

}  // namespace jet
