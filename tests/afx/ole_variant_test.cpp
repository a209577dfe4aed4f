#include "afx/ole_variant.h"

#include <cstring>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

TEST(OleVariant, default_value_is_empty_with_zero_payload) {
    const COleVariant value;
    EXPECT_EQ(value.vt, VT_EMPTY);
    EXPECT_EQ(value.llVal, 0);
}

TEST(OleVariant, integers_of_every_width_are_vt_i4) {
    const COleVariant values[] = {COleVariant(-7), COleVariant(-7L), COleVariant(4294967289u),
                                  COleVariant(4294967289ul)};
    for (const COleVariant& value : values) {
        EXPECT_EQ(value.vt, VT_I4);
        EXPECT_EQ(value.lVal, -7);
    }
    EXPECT_EQ(COleVariant(static_cast<long>(5), VT_I4).lVal, 5);
    EXPECT_EQ(COleVariant(static_cast<short>(-3)).vt, VT_I2);
    EXPECT_EQ(COleVariant(static_cast<short>(-3)).iVal, -3);
    EXPECT_EQ(COleVariant(1, VT_BOOL).boolVal, VARIANT_TRUE);
    EXPECT_EQ(COleVariant(static_cast<BYTE>(0xAB)).bVal, 0xAB);
}

TEST(OleVariant, unused_payload_bytes_are_zero) {
    const COleVariant byte(static_cast<BYTE>(1));
    EXPECT_EQ(byte.llVal, 1);
    COleVariant value(1.5);
    value.Clear();
    EXPECT_EQ(value.vt, VT_EMPTY);
    EXPECT_EQ(value.dblVal, 0.0);
}

TEST(OleVariant, text_is_narrow_and_counts_bytes) {
    const COleVariant value("caf\xE9", VT_BSTRT);
    EXPECT_EQ(value.vt, VT_BSTR);
    EXPECT_EQ(SysStringByteLen(value.bstrVal), 4u);
    EXPECT_STREQ(V_BSTRT(&value), "caf\xE9");
    EXPECT_EQ(COleVariant("x").vt, VT_BSTR);
    EXPECT_EQ(afx::variant_text(COleVariant(static_cast<const char*>(nullptr))), "");
}

TEST(OleVariant, copy_is_deep) {
    COleVariant first("one");
    COleVariant second(first);
    EXPECT_NE(first.bstrVal, second.bstrVal);
    first = COleVariant(5);
    EXPECT_STREQ(V_BSTRT(&second), "one");
    second = second;
    EXPECT_STREQ(V_BSTRT(&second), "one");
    COleVariant third;
    third = static_cast<const VARIANT&>(second);
    EXPECT_STREQ(V_BSTRT(&third), "one");
}

TEST(OleVariant, copy_keeps_zero_bytes_inside) {
    COleVariant value;
    value.SetText(std::string_view("a\0b", 3));
    const COleVariant copy(value);
    EXPECT_EQ(afx::variant_text(copy), std::string_view("a\0b", 3));
}

TEST(OleVariant, move_leaves_empty) {
    COleVariant first("one");
    const COleVariant second(std::move(first));
    EXPECT_EQ(first.vt, VT_EMPTY);
    EXPECT_STREQ(V_BSTRT(&second), "one");
}

TEST(OleVariant, array_copy_throws) {
    VARIANT array;
    VariantInit(&array);
    array.vt = VT_ARRAY | VT_I2;
    array.parray = nullptr;
#ifndef _WIN32  // the platform copies arrays
    try {
        const COleVariant copy(array);
        FAIL() << "no exception";
    } catch (COleException* e) {
        EXPECT_EQ(e->m_sc, DISP_E_BADVARTYPE);
        e->Delete();
    }
#endif
}

TEST(OleVariant, change_type_between_numbers_rounds_half_to_even) {
    COleVariant value(2.5);
    value.ChangeType(VT_I4);
    EXPECT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 2);
    value = COleVariant("12.75");
    value.ChangeType(VT_CY);
    EXPECT_EQ(value.cyVal.int64, 127500);
    value.ChangeType(VT_BSTR);
    EXPECT_STREQ(V_BSTRT(&value), "12.75");
    value.ChangeType(VT_R4);
    EXPECT_EQ(value.fltVal, 12.75f);
    value.ChangeType(VT_BOOL);
    EXPECT_EQ(value.boolVal, VARIANT_TRUE);
}

// As dates only; a date keeps whatever count it holds.
TEST(OleVariant, number_is_a_date_between_the_years_100_and_9999) {
    const auto becomes_a_date = [](double days) {
        COleVariant value(days);
        try {
            value.ChangeType(VT_DATE);
        } catch (COleException* e) {
            e->Delete();
            return false;
        }
        return value.vt == VT_DATE && value.date == days;
    };
    EXPECT_TRUE(becomes_a_date(2958465.999));
    EXPECT_FALSE(becomes_a_date(2958466.0));
    EXPECT_TRUE(becomes_a_date(-657434.0));
    EXPECT_TRUE(becomes_a_date(-657434.999));
    EXPECT_FALSE(becomes_a_date(-657435.0));
}

TEST(OleVariant, change_type_failure_keeps_the_value) {
    COleVariant value("Fish");
    try {
        value.ChangeType(VT_I4);
        FAIL() << "no exception";
    } catch (COleException* e) {
        EXPECT_EQ(e->m_sc, DISP_E_TYPEMISMATCH);
        e->Delete();
    }
    EXPECT_STREQ(V_BSTRT(&value), "Fish");
    COleVariant huge(1e300);
    EXPECT_THROW(
        {
            try {
                huge.ChangeType(VT_CY);
            } catch (COleException* e) {
                e->Delete();
                throw 1;
            }
        },
        int);
}

TEST(OleVariant, source_of_change_type_stays_as_it_is) {
    const COleVariant source("7");
    COleVariant value;
    value.ChangeType(VT_I4, &source);
    EXPECT_EQ(value.lVal, 7);
    EXPECT_STREQ(V_BSTRT(&source), "7");
}

TEST(OleVariant, float_text_has_the_digits_of_the_float) {
    COleVariant value(1.1f);
    value.ChangeType(VT_BSTR);
    EXPECT_STREQ(V_BSTRT(&value), "1.1");
}

}  // namespace
