#include "jet/tables/coerce.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

using enum ColumnType;

ColumnDef column_of(ColumnType type, std::uint16_t length_bytes = 0) {
    ColumnDef column;
    column.name = u"Amount";
    column.type = type;
    column.length_bytes = length_bytes;
    return column;
}

Value coerced(ColumnType type, Value value, std::uint16_t length_bytes = 510) {
    return coerce_value(column_of(type, length_bytes), std::move(value));
}

int refused(ColumnType type, Value value, std::uint16_t length_bytes = 510) {
    return error_number([&] { coerced(type, std::move(value), length_bytes); });
}

TEST(Coerce, null_stays_null_and_a_boolean_is_never_null) {
    for (const ColumnType type :
         {kByte, kInteger, kLong, kCurrency, kSingle, kDouble, kDate, kBinary, kText, kOle, kMemo, kGuid, kNumeric}) {
        EXPECT_EQ(coerced(type, Null{}), Value(Null{})) << static_cast<int>(type);
    }
    EXPECT_EQ(coerced(kBoolean, Null{}), Value(false));
}

TEST(Coerce, integers_round_half_to_even) {
    EXPECT_EQ(coerced(kLong, 0.5), Value(std::int32_t{0}));
    EXPECT_EQ(coerced(kLong, 1.5), Value(std::int32_t{2}));
    EXPECT_EQ(coerced(kLong, 2.5), Value(std::int32_t{2}));
    EXPECT_EQ(coerced(kLong, -2.5), Value(std::int32_t{-2}));
    EXPECT_EQ(coerced(kLong, -3.5), Value(std::int32_t{-4}));
    EXPECT_EQ(coerced(kInteger, Currency{-25000}), Value(std::int16_t{-2}));
}

TEST(Coerce, integers_end_at_their_limits) {
    EXPECT_EQ(coerced(kLong, 2147483647.0), Value(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(coerced(kLong, -2147483648.0), Value(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ(coerced(kLong, 2147483647.4), Value(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(refused(kLong, 2147483647.5), errors::kBadConversion);
    EXPECT_EQ(refused(kLong, -2147483649.0), errors::kBadConversion);
    EXPECT_EQ(refused(kInteger, std::int32_t{32768}), errors::kBadConversion);
    EXPECT_EQ(coerced(kInteger, std::int32_t{-32768}), Value(std::int16_t{-32768}));
    EXPECT_EQ(refused(kByte, std::int32_t{-1}), errors::kBadConversion);
    EXPECT_EQ(refused(kByte, std::int32_t{256}), errors::kBadConversion);
    EXPECT_EQ(coerced(kByte, 255.0), Value(std::uint8_t{255}));
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_EQ(refused(kLong, bad), errors::kBadConversion) << bad;
    }
}

TEST(Coerce, booleans_are_minus_one_and_zero) {
    EXPECT_EQ(coerced(kLong, true), Value(std::int32_t{-1}));
    EXPECT_EQ(coerced(kDouble, false), Value(0.0));
    EXPECT_EQ(coerced(kBoolean, std::int32_t{-1}), Value(true));
    EXPECT_EQ(coerced(kBoolean, std::int32_t{2}), Value(true));
    EXPECT_EQ(coerced(kBoolean, 0.0), Value(false));
    EXPECT_EQ(refused(kByte, true), errors::kBadConversion);
}

TEST(Coerce, text_becomes_a_number_where_it_is_one) {
    EXPECT_EQ(coerced(kLong, std::u16string(u" +17 ")), Value(std::int32_t{17}));
    EXPECT_EQ(coerced(kDouble, std::u16string(u"-1.5e2")), Value(-150.0));
    EXPECT_EQ(coerced(kCurrency, std::u16string(u"3.25")), Value(Currency{32500}));
    for (const char16_t* bad : {u"", u" ", u"x", u"1x", u"1 2", u"+", u"--1", u"inf", u"nan", u"1e999"}) {
        EXPECT_EQ(refused(kDouble, std::u16string(bad)), errors::kBadConversion) << to_utf8(bad);
    }
}

TEST(Coerce, currency_keeps_four_places_and_its_range) {
    EXPECT_EQ(coerced(kCurrency, 0.00005), Value(Currency{0}));
    EXPECT_EQ(coerced(kCurrency, 0.00035), Value(Currency{4}));
    EXPECT_EQ(coerced(kCurrency, Currency{std::numeric_limits<std::int64_t>::min()}),
              Value(Currency{std::numeric_limits<std::int64_t>::min()}));
    EXPECT_EQ(refused(kCurrency, 1e15), errors::kBadConversion);
    EXPECT_EQ(refused(kCurrency, std::numeric_limits<double>::quiet_NaN()), errors::kBadConversion);
    EXPECT_EQ(coerced(kText, Currency{-12500}), Value(std::u16string(u"-1.25")));
    EXPECT_EQ(coerced(kText, Currency{70000}), Value(std::u16string(u"7")));
    EXPECT_EQ(coerced(kText, Currency{std::numeric_limits<std::int64_t>::min()}),
              Value(std::u16string(u"-922337203685477.5808")));
}

TEST(Coerce, single_has_a_smaller_range_than_double) {
    EXPECT_EQ(coerced(kSingle, 0.1), Value(0.1f));
    EXPECT_EQ(refused(kSingle, 1e39), errors::kBadConversion);
    EXPECT_EQ(coerced(kDouble, 1e39), Value(1e39));
    EXPECT_EQ(coerced(kDouble, 0.5f), Value(0.5));
}

TEST(Coerce, dates_lie_between_the_years_100_and_9999) {
    EXPECT_EQ(coerced(kDate, -657434.0), Value(Date{-657434.0}));
    EXPECT_EQ(coerced(kDate, 2958465.999), Value(Date{2958465.999}));
    EXPECT_EQ(refused(kDate, 2958466.0), errors::kBadConversion);
    EXPECT_EQ(refused(kDate, -657435.0), errors::kBadConversion);
    EXPECT_EQ(refused(kDate, std::numeric_limits<double>::quiet_NaN()), errors::kBadConversion);
    EXPECT_EQ(coerced(kDouble, Date{1.5}), Value(1.5));
}

TEST(Coerce, text_keeps_to_its_columns_length) {
    EXPECT_EQ(coerced(kText, std::u16string(5, u'x'), 10), Value(std::u16string(5, u'x')));
    EXPECT_EQ(refused(kText, std::u16string(6, u'x'), 10), errors::kTextTooLong);
    EXPECT_EQ(coerced(kMemo, std::u16string(70000, u'x'), 0), Value(std::u16string(70000, u'x')));
    EXPECT_EQ(coerced(kText, std::int32_t{-12}), Value(std::u16string(u"-12")));
    EXPECT_EQ(coerced(kText, 0.1), Value(std::u16string(u"0.1")));
    EXPECT_EQ(coerced(kText, 0.1f), Value(std::u16string(u"0.1")));
    EXPECT_EQ(refused(kText, ByteVector{1}), errors::kBadConversion);
    try {
        coerced(kText, std::u16string(6, u'x'), 10);
        FAIL() << "too long a text was taken";
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find("'Amount'"), std::string::npos) << error.what();
    }
}

TEST(Coerce, bytes_and_identifiers_take_only_their_own) {
    EXPECT_EQ(coerced(kBinary, ByteVector(10), 10), Value(ByteVector(10)));
    EXPECT_EQ(refused(kBinary, ByteVector(11), 10), errors::kTextTooLong);
    EXPECT_EQ(refused(kBinary, std::u16string(u"x")), errors::kBadConversion);
    EXPECT_EQ(coerced(kOle, ByteVector(100000), 0), Value(ByteVector(100000)));
    EXPECT_EQ(coerced(kGuid, Guid{}), Value(Guid{}));
    EXPECT_EQ(refused(kGuid, std::int32_t{1}), errors::kBadConversion);
    EXPECT_EQ(coerced(kNumeric, Numeric{}), Value(Numeric{}));
    EXPECT_EQ(refused(kNumeric, 1.0), errors::kBadConversion);
    EXPECT_EQ(refused(kLong, Guid{}), errors::kBadConversion);
    EXPECT_EQ(refused(kFixedBinary, ByteVector{1}), errors::kBadConversion);
    EXPECT_EQ(refused(kComplexId, std::int32_t{1}), errors::kBadConversion);
}

}  // namespace
}  // namespace jet
