// Little-endian access to bytes, checked against their end. Index entries alone are big-endian; the
// functions for those say so.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <vector>

#include "jet/base/error.h"

namespace jet {

using ByteSpan = std::span<const std::uint8_t>;
using MutableByteSpan = std::span<std::uint8_t>;
using ByteVector = std::vector<std::uint8_t>;

inline void check_range(ByteSpan bytes, std::size_t at, std::size_t count) {
    if (at > bytes.size() || count > bytes.size() - at) fail_short(at + count);
}

// The bytes [at, at + count) of `bytes`, checked.
inline ByteSpan slice(ByteSpan bytes, std::size_t at, std::size_t count) {
    check_range(bytes, at, count);
    return bytes.subspan(at, count);
}

inline std::uint8_t load_u8(ByteSpan bytes, std::size_t at) {
    check_range(bytes, at, 1);
    return bytes[at];
}
inline std::uint16_t load_u16(ByteSpan bytes, std::size_t at) {
    check_range(bytes, at, 2);
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}
inline std::uint32_t load_u32(ByteSpan bytes, std::size_t at) {
    check_range(bytes, at, 4);
    return static_cast<std::uint32_t>(bytes[at]) | static_cast<std::uint32_t>(bytes[at + 1]) << 8 |
           static_cast<std::uint32_t>(bytes[at + 2]) << 16 | static_cast<std::uint32_t>(bytes[at + 3]) << 24;
}
inline std::uint64_t load_u64(ByteSpan bytes, std::size_t at) {
    return load_u32(bytes, at) | static_cast<std::uint64_t>(load_u32(bytes, at + 4)) << 32;
}
inline std::int16_t load_i16(ByteSpan bytes, std::size_t at) { return static_cast<std::int16_t>(load_u16(bytes, at)); }
inline std::int32_t load_i32(ByteSpan bytes, std::size_t at) { return static_cast<std::int32_t>(load_u32(bytes, at)); }
inline std::int64_t load_i64(ByteSpan bytes, std::size_t at) { return static_cast<std::int64_t>(load_u64(bytes, at)); }
inline float load_f32(ByteSpan bytes, std::size_t at) { return std::bit_cast<float>(load_u32(bytes, at)); }
inline double load_f64(ByteSpan bytes, std::size_t at) { return std::bit_cast<double>(load_u64(bytes, at)); }

inline void store_u8(MutableByteSpan bytes, std::size_t at, std::uint8_t value) {
    check_range(bytes, at, 1);
    bytes[at] = value;
}
inline void store_u16(MutableByteSpan bytes, std::size_t at, std::uint16_t value) {
    check_range(bytes, at, 2);
    bytes[at] = static_cast<std::uint8_t>(value);
    bytes[at + 1] = static_cast<std::uint8_t>(value >> 8);
}
inline void store_u32(MutableByteSpan bytes, std::size_t at, std::uint32_t value) {
    check_range(bytes, at, 4);
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}
inline void store_u64(MutableByteSpan bytes, std::size_t at, std::uint64_t value) {
    store_u32(bytes, at, static_cast<std::uint32_t>(value));
    store_u32(bytes, at + 4, static_cast<std::uint32_t>(value >> 32));
}
inline void store_f64(MutableByteSpan bytes, std::size_t at, double value) {
    store_u64(bytes, at, std::bit_cast<std::uint64_t>(value));
}
inline void store_bytes(MutableByteSpan bytes, std::size_t at, ByteSpan what) {
    check_range(bytes, at, what.size());
    if (!what.empty()) std::memmove(bytes.data() + at, what.data(), what.size());
}

inline void append_u8(ByteVector& to, std::uint8_t value) { to.push_back(value); }
inline void append_u16(ByteVector& to, std::uint16_t value) {
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
    to.insert(to.end(), std::begin(bytes), std::end(bytes));
}
inline void append_u32(ByteVector& to, std::uint32_t value) {
    std::uint8_t bytes[4];
    store_u32(bytes, 0, value);
    to.insert(to.end(), std::begin(bytes), std::end(bytes));
}
inline void append_u64(ByteVector& to, std::uint64_t value) {
    std::uint8_t bytes[8];
    store_u64(bytes, 0, value);
    to.insert(to.end(), std::begin(bytes), std::end(bytes));
}
inline void append_bytes(ByteVector& to, ByteSpan what) { to.insert(to.end(), what.begin(), what.end()); }

// Big-endian, for index entries only.
inline std::uint32_t load_be32(ByteSpan bytes, std::size_t at) {
    check_range(bytes, at, 4);
    return static_cast<std::uint32_t>(bytes[at]) << 24 | static_cast<std::uint32_t>(bytes[at + 1]) << 16 |
           static_cast<std::uint32_t>(bytes[at + 2]) << 8 | static_cast<std::uint32_t>(bytes[at + 3]);
}
inline void append_be(ByteVector& to, std::uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace jet
