#include "db/values.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <span>
#include <string>

#include "os/system.h"

namespace {

using db::TimeOfDay;

VARIANT of_type(int type) {
    VARIANT value;
    VariantInit(&value);
    value.vt = static_cast<VARTYPE>(type);
    value.llVal = 0;
    return value;
}

TEST(ValueToText, null_and_empty_are_empty_text) {
    EXPECT_EQ(db::value_to_text(of_type(VT_EMPTY)), "");
    EXPECT_EQ(db::value_to_text(of_type(VT_NULL)), "");
    EXPECT_EQ(db::value_to_integer(of_type(VT_NULL)), 0);
}

TEST(ValueToText, numbers) {
    EXPECT_EQ(db::value_to_text(COleVariant(static_cast<short>(-12))), "-12");
    EXPECT_EQ(db::value_to_text(COleVariant(-2147483647 - 1)), "-2147483648");
    EXPECT_EQ(db::value_to_text(COleVariant(2.5f)), "2.500000");
    EXPECT_EQ(db::value_to_text(COleVariant(1.5)), "1.500000e+000");
    EXPECT_EQ(db::value_to_text(COleVariant(COleCurrency(12, 5000))), "12.5");
    EXPECT_EQ(db::value_to_text(COleVariant(static_cast<BYTE>(0xAB))), "0xAB");
    EXPECT_EQ(db::value_to_text(COleVariant(static_cast<BYTE>(7))), "0x07");
}

TEST(ValueToText, boolean_is_truth_text_and_parses_as_zero) {
    EXPECT_EQ(db::value_to_text(COleVariant(1, VT_BOOL)), "TRUE");
    EXPECT_EQ(db::value_to_text(COleVariant(0, VT_BOOL)), "FALSE");
    EXPECT_EQ(db::value_to_integer(COleVariant(1, VT_BOOL)), 0);
    EXPECT_EQ(db::truth_text(-5), "TRUE");
    EXPECT_EQ(db::truth_text(0), "FALSE");
}

TEST(ValueToText, date_is_day_month_year_without_time) {
    EXPECT_EQ(db::value_to_text(COleVariant(COleDateTime(2004, 12, 31, 18, 30, 0))), "31/12/2004");
    EXPECT_EQ(db::value_to_text(COleVariant(COleDateTime())), "30/12/1899");
}

TEST(ValueToText, text_ends_at_its_first_zero_byte) {
    EXPECT_EQ(db::value_to_text(COleVariant("caf\xE9")), "caf\xE9");
    COleVariant value;
    value.SetText(std::string_view("a\0b", 3));
    EXPECT_EQ(db::value_to_text(value), "a");
    EXPECT_EQ(db::value_to_text(of_type(VT_BSTR)), "");
}

struct TypeName {
    int type;
    const char* name;
};
// Those whose values have no text of their own.
constexpr TypeName kNamedTypes[] = {
    {9, "VT_DISPATCH"},       {10, "VT_ERROR"},       {12, "VT_VARIANT"},
    {13, "VT_UNKNOWN"},       {16, "VT_I1"},          {18, "VT_UI2"},
    {19, "VT_UI4"},           {20, "VT_I8"},          {21, "VT_UI8"},
    {22, "VT_INT"},           {23, "VT_UINT"},        {24, "VT_VOID"},
    {25, "VT_HRESULT"},       {26, "VT_PTR"},         {27, "VT_SAFEARRAY"},
    {28, "VT_CARRAY"},        {29, "VT_USERDEFINED"}, {30, "VT_LPSTR"},
    {31, "VT_LPWSTR"},        {64, "VT_FILETIME"},    {65, "VT_BLOB"},
    {66, "VT_STREAM"},        {67, "VT_STORAGE"},     {68, "VT_STREAMED_OBJECT"},
    {69, "VT_STORED_OBJECT"}, {70, "VT_BLOB_OBJECT"}, {71, "VT_CF"},
    {72, "VT_CLSID"},
};
// The others have names behind the flags.
constexpr TypeName kTextTypes[] = {
    {0, "VT_EMPTY"}, {1, "VT_NULL"}, {2, "VT_I2"},   {3, "VT_I4"},    {4, "VT_R4"},   {5, "VT_R8"},
    {6, "VT_CY"},    {7, "VT_DATE"}, {8, "VT_BSTR"}, {11, "VT_BOOL"}, {17, "VT_UI1"},
};

TEST(ValueToText, other_types_give_their_names) {
    for (const auto& [type, name] : kNamedTypes) EXPECT_EQ(db::value_to_text(of_type(type)), name);
}

TEST(ValueToText, every_name_stands_behind_the_flags) {
    for (const auto types : {std::span<const TypeName>(kNamedTypes), std::span<const TypeName>(kTextTypes)}) {
        for (const auto& [type, name] : types) {
            EXPECT_EQ(db::value_to_text(of_type(VT_ARRAY | type)), (std::string("Array of ") + name).c_str());
            EXPECT_EQ(db::value_to_text(of_type(VT_BYREF | type)), (std::string("FishPointer to ") + name).c_str());
            EXPECT_EQ(db::value_to_text(of_type(VT_ARRAY | VT_BYREF | type)),
                      (std::string("Array of Pointer to ") + name).c_str());
        }
    }
    for (const int type : {14, 15, 32, 63}) {
        EXPECT_EQ(db::value_to_text(of_type(VT_ARRAY | type)), "Array of ");
        EXPECT_EQ(db::value_to_text(of_type(VT_BYREF | type)), "FishPointer to ");
    }
}

TEST(ValueToText, unnamed_types_give_fish) {
    for (const int type : {14, 15, 32, 36, 63, 73, 0x1000, 0x0FFF}) {
        EXPECT_EQ(db::value_to_text(of_type(type)), "Fish") << type;
    }
}

TEST(ValueToText, flags_keep_their_published_texts) {
    EXPECT_EQ(db::value_to_text(of_type(VT_BYREF | VT_I4)), "FishPointer to VT_I4");
    EXPECT_EQ(db::value_to_text(of_type(VT_ARRAY | VT_I2)), "Array of VT_I2");
    EXPECT_EQ(db::value_to_text(of_type(VT_ARRAY | VT_BYREF | VT_CLSID)), "Array of Pointer to VT_CLSID");
    EXPECT_EQ(db::value_to_text(of_type(VT_BYREF | 14)), "FishPointer to ");
    EXPECT_EQ(db::value_to_text(of_type(VT_BYREF | VT_BSTR)), "FishPointer to VT_BSTR");
}

struct Split {
    LONG whole = -9;
    LONG rest = -9;
};

Split split(float value) {
    Split result;
    EXPECT_EQ(db::float_to_currency(value, &result.whole, &result.rest), 0);
    return result;
}

struct SplitCase {
    float value;
    LONG whole;
    LONG rest;
    std::int64_t amount;
};

class FloatToCurrency : public testing::TestWithParam<SplitCase> {};

TEST_P(FloatToCurrency, known_value_splits_as_documented) {
    const SplitCase& expected = GetParam();
    const Split result = split(expected.value);
    EXPECT_EQ(result.whole, expected.whole);
    EXPECT_EQ(result.rest, expected.rest);
    EXPECT_EQ(db::currency_of(expected.value).m_cur.int64, expected.amount);
}

INSTANTIATE_TEST_SUITE_P(Values, FloatToCurrency,
                         testing::Values(SplitCase{0.0f, 0, 0, 0}, SplitCase{12.5f, 12, 5000, 125000},
                                         SplitCase{1.1f, 1, 1000, 11000}, SplitCase{19.99f, 19, 9900, 199900},
                                         SplitCase{-1.25f, -1, 2500, -7500},     // sign of the rest lost
                                         SplitCase{-0.5f, 0, 5000, 5000},        // sign lost entirely
                                         SplitCase{12.99996f, 12, 0, 120000},    // carry dropped
                                         SplitCase{12.03125f, 12, 313, 120313},  // a tie, away from zero
                                         SplitCase{1234567.89f, 1234567, 8750, 12345678750}));

TEST(FloatToCurrencySplit, any_float_is_accepted) {
    EXPECT_EQ(split(std::numeric_limits<float>::infinity()).rest, 0);
    EXPECT_EQ(split(-std::numeric_limits<float>::infinity()).rest, 0);
    EXPECT_EQ(split(std::nanf("")).rest, 0);
    EXPECT_EQ(split(std::numeric_limits<float>::max()).whole, std::numeric_limits<LONG>::min());
    EXPECT_EQ(split(std::numeric_limits<float>::denorm_min()).rest, 0);
    EXPECT_EQ(split(3e9f).whole, -1294967296);  // the low 32 bits
    EXPECT_EQ(split(3e9f).rest, 0);
    EXPECT_EQ(split(-2147483648.0f).whole, std::numeric_limits<LONG>::min());
    EXPECT_EQ(split(9.3e18f).whole, std::numeric_limits<LONG>::min());
}

TEST(FloatOfCurrency, every_amount_is_what_its_text_parses_to) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 100000; ++i) {
        COleCurrency amount;
        amount.m_cur.int64 = static_cast<std::int64_t>(random()) >> (random() % 64);
        ASSERT_EQ(db::float_of(amount), static_cast<float>(std::strtod(amount.Format().GetString(), nullptr)))
            << amount.m_cur.int64;
    }
}

TEST(FloatOfCurrency, amounts_come_back) {
    EXPECT_EQ(db::float_of(db::currency_of(12.5f)), 12.5f);
    EXPECT_EQ(db::float_of(db::currency_of(150.25f)), 150.25f);
    EXPECT_EQ(db::float_of(db::currency_of(1.1f)), 1.1f);
    EXPECT_EQ(db::float_of(COleCurrency(of_type(VT_NULL))), 0.0f);
    EXPECT_EQ(db::value_to_float(COleVariant(2.5f)), 2.5f);
}

class DateText : public testing::Test {
protected:
    ~DateText() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }
};

TEST_F(DateText, order_is_month_day_year_whatever_the_locale) {
    const CTime day(2005, 3, 5, 14, 35, 0);
    os::set_date_format_for_test("/", os::DateOrder::kMonthDayYear);
    EXPECT_EQ(db::date_text(day), "03/05/2005");
    os::set_date_format_for_test(".", os::DateOrder::kDayMonthYear);
    EXPECT_EQ(db::date_text(day), "03.05.2005");
    os::set_date_format_for_test("-", os::DateOrder::kYearMonthDay);
    EXPECT_EQ(db::date_text(CTime(2004, 12, 31, 0, 0, 0)), "12-31-2004");
}

TEST_F(DateText, time_without_date_gives_no_calendar_date) {
    os::set_date_format_for_test("/", os::DateOrder::kMonthDayYear);
    EXPECT_EQ(db::date_text(CTime(-1)), "00/00/0");
}

TEST(DateValue, only_the_date_travels) {
    const COleVariant value = db::date_value(CTime(2005, 3, 1, 14, 35, 20), TimeOfDay::kDropped);
    EXPECT_EQ(value.vt, VT_DATE);
    EXPECT_EQ(value.date, 38412.0);
    EXPECT_EQ(db::time_of(COleDateTime(38412.75), TimeOfDay::kDropped), CTime(2005, 3, 1, 0, 0, 0));
}

TEST(DateValue, to_the_minute_drops_seconds_both_ways) {
    const COleVariant value = db::date_value(CTime(2005, 3, 1, 14, 35, 20), TimeOfDay::kToTheMinute);
    EXPECT_EQ(COleDateTime(value).GetHour(), 14);
    EXPECT_EQ(COleDateTime(value).GetMinute(), 35);
    EXPECT_EQ(COleDateTime(value).GetSecond(), 0);
    EXPECT_EQ(db::time_of(COleDateTime(2005, 3, 1, 14, 35, 20), TimeOfDay::kToTheMinute), CTime(2005, 3, 1, 14, 35, 0));
}

TEST(DateValue, time_without_date_is_null_and_back) {
    EXPECT_EQ(db::date_value(CTime(-1), TimeOfDay::kDropped).vt, VT_NULL);
    EXPECT_EQ(db::time_of(COleDateTime(of_type(VT_NULL)), TimeOfDay::kDropped), CTime(-1));
    EXPECT_EQ(db::time_of(COleDateTime(1960, 1, 1, 0, 0, 0), TimeOfDay::kDropped), CTime(-1));
    EXPECT_EQ(db::time_of(COleDateTime(2050, 1, 1, 0, 0, 0), TimeOfDay::kDropped), CTime(-1));
}

}  // namespace
