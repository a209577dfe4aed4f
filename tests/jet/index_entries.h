// Keys and entries of indexes, as tests make them up.
#pragma once

#include <cstdint>

#include "jet/base/bytes.h"
#include "jet/base/types.h"

namespace jet {

constexpr PageNumber kTable = 2;

inline ByteVector bytes_of(ByteSpan span) { return ByteVector(span.begin(), span.end()); }

inline ByteVector long_key(std::uint32_t value) {
    ByteVector key{0x7F};
    append_be(key, value ^ 0x80000000u, 4);
    return key;
}

inline ByteVector entry_of(ByteSpan key, RowId row) {
    ByteVector entry = bytes_of(key);
    append_be(entry, row.pack(), 4);
    return entry;
}

}  // namespace jet
