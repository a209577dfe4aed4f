#include "afx/ole_currency.h"

#include <gtest/gtest.h>

#include "afx/ole_variant.h"

namespace {

TEST(OleCurrency, units_and_fraction_add_with_their_signs) {
    COleCurrency amount(-1, 2500);
    EXPECT_EQ(amount.m_cur.int64, -7500);
    amount.SetCurrency(2, 10000);
    EXPECT_EQ(amount.m_cur.int64, 30000);
    amount.SetCurrency(0, 0);
    EXPECT_EQ(amount, COleCurrency());
    amount.SetCurrency(-2147483647 - 1, -10000);
    EXPECT_EQ(amount.m_cur.int64, -21474836490000);
}

TEST(OleCurrency, format_is_shortest_with_a_point) {
    EXPECT_EQ(COleCurrency(12, 5000).Format(0, 0x400), "12.5");
    EXPECT_EQ(COleCurrency(150, 2500).Format(), "150.25");
    EXPECT_EQ(COleCurrency(1234567, 8901).Format(), "1234567.8901");
    EXPECT_EQ(COleCurrency(-1, 2500).Format(), "-0.75");
    EXPECT_EQ(COleCurrency(1000, 0).Format(), "1000");
}

TEST(OleCurrency, null_variant_gives_invalid_and_reads_as_no_number) {
    COleVariant null;
    null.vt = VT_NULL;
    const COleCurrency amount(null);
    EXPECT_EQ(amount.GetStatus(), COleCurrency::invalid);
    EXPECT_EQ(amount.m_cur.int64, 0);
    EXPECT_EQ(amount.Format(), "Invalid Currency");
}

TEST(OleCurrency, variant_conversions) {
    EXPECT_EQ(COleCurrency(COleVariant(12.5)).m_cur.int64, 125000);
    EXPECT_EQ(COleCurrency(COleVariant("3.25")).m_cur.int64, 32500);
    EXPECT_EQ(COleCurrency(COleVariant(7)).m_cur.int64, 70000);
    COleCurrency null;
    null.SetStatus(COleCurrency::null);
    EXPECT_EQ(null.Format(), "");
}

}  // namespace
