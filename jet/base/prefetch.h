// CPU prefetch hints.
#pragma once

#include "jet/base/bytes.h"

namespace jet {

// For the cache line at any address.
inline void prefetch_line([[maybe_unused]] const void* address) {
#ifdef __GNUC__
    __builtin_prefetch(address);
#endif
}

// For bytes that will soon be read.
inline void prefetch_bytes(ByteSpan bytes) {
    constexpr std::size_t kLine = 64;
    for (std::size_t at = 0; at < bytes.size(); at += kLine) prefetch_line(bytes.data() + at);
}

}  // namespace jet
