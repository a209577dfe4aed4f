// The small types every part of the engine speaks: page numbers, row addresses, column values.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace jet {

// 0-based page of the file; 24 bits are used on disk.
using PageNumber = std::uint32_t;

// Address of a row: its page and its slot on that page. On disk the packed form is page << 8 | slot,
// and 0 means "none". Ordering is scan order.
struct RowId {
    PageNumber page = 0;
    std::uint8_t slot = 0;

    static RowId unpack(std::uint32_t packed) { return {packed >> 8, static_cast<std::uint8_t>(packed)}; }
    std::uint32_t pack() const { return page << 8 | slot; }
    bool is_null() const { return page == 0; }
    friend auto operator<=>(const RowId&, const RowId&) = default;
};

// Column type codes on disk.
enum class ColumnType : std::uint8_t {
    kBoolean = 0x01,
    kByte = 0x02,
    kInteger = 0x03,
    kLong = 0x04,
    kCurrency = 0x05,
    kSingle = 0x06,
    kDouble = 0x07,
    kDate = 0x08,
    kBinary = 0x09,
    kText = 0x0A,
    kOle = 0x0B,
    kMemo = 0x0C,
    kGuid = 0x0F,
    kNumeric = 0x10,
    kFixedBinary = 0x11,
    kComplexId = 0x12,
};

constexpr bool is_long_value(ColumnType type) { return type == ColumnType::kOle || type == ColumnType::kMemo; }

inline constexpr int kCurrencyPlaces = 4;  // after the decimal point

// Amount in ten-thousandths.
struct Currency {
    std::int64_t ten_thousandths = 0;
    friend auto operator<=>(const Currency&, const Currency&) = default;
};

// Days since 1899-12-30; the fraction is a positive time of day even before that day.
struct Date {
    double days = 0;
    friend bool operator==(const Date&, const Date&) = default;
};

// 16 bytes as stored (u32, u16, u16 little-endian, then 8 bytes).
struct Guid {
    std::array<std::uint8_t, 16> bytes{};
    friend bool operator==(const Guid&, const Guid&) = default;
};

// 17 bytes as stored: sign byte, then four little-endian words, most significant word first.
struct Numeric {
    std::array<std::uint8_t, 17> bytes{};
    std::uint8_t scale = 0;  // decimal places, from the column
    friend bool operator==(const Numeric&, const Numeric&) = default;
};

// Its copying is spelt out, and so not trivial: of nothing but trivial types, texts and vectors, a variant of libstdc++
// 12 takes itself for never empty, and when a copy throws it destroys what was never made.
struct Null {
    constexpr Null() = default;
    constexpr Null(const Null&) noexcept {}
    constexpr Null& operator=(const Null&) noexcept { return *this; }
    friend constexpr bool operator==(const Null&, const Null&) { return true; }
};
// One column's value. kByte is uint8_t, kInteger int16_t, kLong and kComplexId int32_t, kText and
// kMemo UTF-16 text, kBinary, kOle and kFixedBinary bytes.
using Value = std::variant<Null, bool, std::uint8_t, std::int16_t, std::int32_t, Currency, float, double, Date,
                           std::u16string, std::vector<std::uint8_t>, Guid, Numeric>;

inline bool is_null(const Value& value) { return std::holds_alternative<Null>(value); }

// UTF-8 form of engine names for error texts.
std::string to_utf8(std::u16string_view text);
std::u16string from_utf8(std::string_view text);

}  // namespace jet
