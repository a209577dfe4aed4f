// Keys of index entries against known bytes, and their order against that of the values.
#include "jet/indexes/index_key.h"
#include "jet/schema/table_def.h"
#include "tests/support/hex.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

using jet::ColumnType;
using jet::Value;
using testing_support::hex;

struct Fixture {
    jet::TableDef def;
    jet::RealIndex index;

    explicit Fixture(ColumnType type, bool ascending = true) { add(type, ascending); }

    void add(ColumnType type, bool ascending) {
        jet::ColumnDef column;
        column.name = u"C";
        column.type = type;
        column.number = static_cast<std::uint16_t>(def.columns.size() + 3);
        def.columns.push_back(column);
        index.columns.push_back({column.number, ascending});
    }
};

jet::ByteVector key_of(ColumnType type, const Value& value, bool ascending = true) {
    const Fixture fixture(type, ascending);
    return jet::make_index_key(fixture.index, fixture.def, std::span(&value, 1));
}

std::string ascending(ColumnType type, const Value& value) { return hex(key_of(type, value)); }
std::string descending(ColumnType type, const Value& value) { return hex(key_of(type, value, false)); }

jet::Numeric numeric_of(bool negative, std::uint64_t magnitude) {
    jet::Numeric value;
    value.bytes[0] = negative ? 0x80 : 0x00;
    for (std::size_t i = 0; i < 4; ++i) {
        value.bytes[13 + i] = static_cast<std::uint8_t>(magnitude >> (8 * i));
        value.bytes[9 + i] = static_cast<std::uint8_t>(magnitude >> (32 + 8 * i));
    }
    return value;
}

TEST(IndexKey, long_is_big_endian_with_turned_sign) {
    EXPECT_EQ("7F 80 00 00 01", ascending(ColumnType::kLong, std::int32_t{1}));
    EXPECT_EQ("80 7F FF FF EB", descending(ColumnType::kLong, std::int32_t{20}));
    EXPECT_EQ("80 7F FF FF EC", descending(ColumnType::kLong, std::int32_t{19}));
    EXPECT_EQ("7F 7F FF FF FF", ascending(ColumnType::kLong, std::int32_t{-1}));
    EXPECT_EQ("7F 00 00 00 00", ascending(ColumnType::kLong, INT32_MIN));
}

TEST(IndexKey, small_integers_and_currency) {
    EXPECT_EQ("7F FE", ascending(ColumnType::kByte, std::uint8_t{0xFE}));
    EXPECT_EQ("80 01", descending(ColumnType::kByte, std::uint8_t{0xFE}));
    EXPECT_EQ("7F 80 07", ascending(ColumnType::kInteger, std::int16_t{7}));
    EXPECT_EQ("80 80 00", descending(ColumnType::kInteger, std::int16_t{-1}));
    EXPECT_EQ("7F 80 00 00 00 00 00 27 10", ascending(ColumnType::kCurrency, jet::Currency{10000}));
    EXPECT_EQ("80 80 00 00 00 00 00 27 0F", descending(ColumnType::kCurrency, jet::Currency{-10000}));
}

TEST(IndexKey, null_is_the_flag_alone) {
    EXPECT_EQ("00", ascending(ColumnType::kLong, Value()));
    EXPECT_EQ("FF", descending(ColumnType::kLong, Value()));
    EXPECT_EQ("00", ascending(ColumnType::kText, Value()));
}

TEST(IndexKey, boolean_is_never_null) {
    EXPECT_EQ("7F 00", ascending(ColumnType::kBoolean, true));
    EXPECT_EQ("7F FF", ascending(ColumnType::kBoolean, false));
    EXPECT_EQ("80 FF", descending(ColumnType::kBoolean, true));
    EXPECT_EQ("80 00", descending(ColumnType::kBoolean, false));
    EXPECT_EQ("7F FF", ascending(ColumnType::kBoolean, Value()));
}

TEST(IndexKey, real_numbers_turn_sign_or_all_bits) {
    EXPECT_EQ("7F BF 80 00 00", ascending(ColumnType::kSingle, 1.0F));
    EXPECT_EQ("7F 40 7F FF FF", ascending(ColumnType::kSingle, -1.0F));
    EXPECT_EQ("80 40 7F FF FF", descending(ColumnType::kSingle, 1.0F));
    EXPECT_EQ("80 BF 80 00 00", descending(ColumnType::kSingle, -1.0F));
    EXPECT_EQ("7F BF F0 00 00 00 00 00 00", ascending(ColumnType::kDouble, 1.0));
    EXPECT_EQ("7F 40 0F FF FF FF FF FF FF", ascending(ColumnType::kDouble, -1.0));
    EXPECT_EQ("7F C0 E2 C1 80 00 00 00 00", ascending(ColumnType::kDate, jet::Date{38412}));
    EXPECT_EQ("80 3F 1D 3E 7F FF FF FF FF", descending(ColumnType::kDate, jet::Date{38412}));
}

TEST(IndexKey, text_uses_the_sort_key) {
    EXPECT_EQ("7F 6B 60 59 6D 57 01 00", ascending(ColumnType::kText, std::u16string(u"Smith")));
    EXPECT_EQ("80 94 9F A6 92 A8 FE FF 00", descending(ColumnType::kText, std::u16string(u"Smith")));
    EXPECT_EQ("7F 01 00", ascending(ColumnType::kMemo, std::u16string()));
}

TEST(IndexKey, binary_is_cut_into_counted_segments) {
    const jet::ByteVector nine{1, 2, 3, 4, 5, 6, 7, 8, 9};
    const jet::ByteVector eight{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ("7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01", ascending(ColumnType::kBinary, nine));
    EXPECT_EQ("7F 01 02 03 04 05 06 07 08 08", ascending(ColumnType::kBinary, eight));
    EXPECT_EQ("7F", ascending(ColumnType::kBinary, jet::ByteVector()));
    EXPECT_EQ("80 FE FD FC FB FA F9 F8 F7 09 F6 FF FF FF FF FF FF FF FE", descending(ColumnType::kBinary, nine));
}

TEST(IndexKey, guid_is_its_textual_order_as_binary) {
    const jet::Guid guid{
        {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};
    EXPECT_EQ("7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08", ascending(ColumnType::kGuid, guid));
    EXPECT_EQ("80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7", descending(ColumnType::kGuid, guid));
}

TEST(IndexKey, numeric_keeps_its_sign_byte_in_both_directions) {
    const std::string zeros = "00 00 00 00 00 00 00 00 ";
    const std::string ones = "FF FF FF FF FF FF FF FF ";
    EXPECT_EQ("7F FF " + zeros + "00 00 00 01 00 00 00 02",
              ascending(ColumnType::kNumeric, numeric_of(false, 0x100000002)));
    EXPECT_EQ("7F 00 " + ones + "FF FF FF FE FF FF FF FD",
              ascending(ColumnType::kNumeric, numeric_of(true, 0x100000002)));
    EXPECT_EQ("80 FF " + ones + "FF FF FF FF FF FF FF FD", descending(ColumnType::kNumeric, numeric_of(false, 2)));
    EXPECT_EQ("80 00 " + zeros + "00 00 00 00 00 00 00 02", descending(ColumnType::kNumeric, numeric_of(true, 2)));
}

TEST(IndexKey, columns_follow_each_other) {
    Fixture fixture(ColumnType::kLong);
    fixture.add(ColumnType::kText, true);
    fixture.add(ColumnType::kLong, false);
    const std::vector<Value> values{std::int32_t{0x0F000001}, std::u16string(u"ab"), Value()};
    EXPECT_EQ("7F 8F 00 00 01 7F 4A 4C 01 00 FF", hex(jet::make_index_key(fixture.index, fixture.def, values)));
}

TEST(IndexKey, column_is_found_by_number_not_by_place) {
    Fixture fixture(ColumnType::kByte);
    fixture.add(ColumnType::kByte, true);
    fixture.index.columns = {{fixture.def.columns[1].number, true}};
    const std::vector<Value> values{std::uint8_t{1}, std::uint8_t{2}};
    EXPECT_EQ("7F 02", hex(jet::make_index_key(fixture.index, fixture.def, values)));
}

template <class T>
void expect_rising(ColumnType type, const std::vector<T>& values) {
    for (std::size_t i = 1; i < values.size(); ++i) {
        EXPECT_LT(key_of(type, values[i - 1]), key_of(type, values[i])) << i;
        EXPECT_GT(key_of(type, values[i - 1], false), key_of(type, values[i], false)) << i;
    }
    EXPECT_LT(key_of(type, Value()), key_of(type, values.front()));
    EXPECT_GT(key_of(type, Value(), false), key_of(type, values.front(), false));
}

TEST(IndexKey, order_of_keys_is_that_of_the_values) {
    expect_rising<std::uint8_t>(ColumnType::kByte, {0, 1, 127, 128, 255});
    expect_rising<std::int16_t>(ColumnType::kInteger, {-32768, -1, 0, 1, 32767});
    expect_rising<std::int32_t>(ColumnType::kLong, {INT32_MIN, -256, -1, 0, 1, 255, 256, INT32_MAX});
    expect_rising<jet::Currency>(ColumnType::kCurrency, {{INT64_MIN}, {-1}, {0}, {1}, {INT64_MAX}});
    expect_rising<float>(ColumnType::kSingle, {-1e30F, -1.5F, -1.0F, 0.0F, 1e-20F, 1.0F, 1e30F});
    expect_rising<double>(ColumnType::kDouble, {-1e300, -1.5, -1.0, 0.0, 1e-200, 1.0, 1e300});
    expect_rising<std::u16string>(ColumnType::kText, {u"", u"1", u"a", u"ab", u"b"});
    expect_rising<jet::ByteVector>(ColumnType::kBinary, {{1}, {1, 0}, {1, 1}, {1, 1, 1, 1, 1, 1, 1, 1, 1}, {2}});
}

TEST(IndexKey, value_of_another_type_is_an_error) {
    const Fixture fixture(ColumnType::kLong);
    const Value value = 1.0;
    EXPECT_THROW(jet::make_index_key(fixture.index, fixture.def, std::span(&value, 1)), jet::Error);
}

TEST(AllNullKey, one_value_is_enough_to_say_no) {
    Fixture fixture(ColumnType::kLong);
    fixture.add(ColumnType::kLong, true);
    EXPECT_TRUE(jet::all_null_key(fixture.index, fixture.def, std::vector<Value>{Value(), Value()}));
    EXPECT_TRUE(jet::all_null_key(fixture.index, fixture.def, std::vector<Value>{}));
    EXPECT_FALSE(jet::all_null_key(fixture.index, fixture.def, std::vector<Value>{Value(), std::int32_t{0}}));
}

TEST(WhyNotMaintainable, known_types_in_general_order_are_maintainable) {
    for (const ColumnType type :
         {ColumnType::kBoolean, ColumnType::kByte, ColumnType::kInteger, ColumnType::kLong, ColumnType::kCurrency,
          ColumnType::kSingle, ColumnType::kDouble, ColumnType::kDate, ColumnType::kBinary, ColumnType::kText,
          ColumnType::kMemo, ColumnType::kGuid, ColumnType::kNumeric}) {
        const Fixture fixture(type);
        EXPECT_FALSE(jet::why_not_maintainable(fixture.index, fixture.def));
    }
}

TEST(WhyNotMaintainable, other_types_and_orders_are_named) {
    for (const ColumnType type : {ColumnType::kOle, ColumnType::kComplexId, ColumnType::kFixedBinary}) {
        const Fixture fixture(type);
        ASSERT_TRUE(jet::why_not_maintainable(fixture.index, fixture.def));
        EXPECT_NE(std::string::npos, jet::why_not_maintainable(fixture.index, fixture.def)->find("column C"));
    }
    Fixture german(ColumnType::kText);
    german.def.columns[0].lcid = 0x0407;
    EXPECT_TRUE(jet::why_not_maintainable(german.index, german.def));
    Fixture newer(ColumnType::kText);
    newer.def.columns[0].sort_version = 2;
    EXPECT_TRUE(jet::why_not_maintainable(newer.index, newer.def));
    Fixture number(ColumnType::kLong);
    number.def.columns[0].lcid = 0x0407;  // means nothing for a number
    EXPECT_FALSE(jet::why_not_maintainable(number.index, number.def));
    Fixture absent(ColumnType::kLong);
    absent.index.columns[0].column_number = 99;
    EXPECT_TRUE(jet::why_not_maintainable(absent.index, absent.def));
}

}  // namespace
