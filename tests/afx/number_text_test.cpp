// Numbers as text, compared with the digits that the original runtime is documented to print.
#include "afx/number_text.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(NumberText, fixed_usual_values_have_six_decimals) {
    EXPECT_EQ(afx::fixed6_text(0), "0.000000");
    EXPECT_EQ(afx::fixed6_text(2.5), "2.500000");
    EXPECT_EQ(afx::fixed6_text(-1.25), "-1.250000");
    EXPECT_EQ(afx::fixed6_text(static_cast<double>(1.1f)), "1.100000");
}

TEST(NumberText, fixed_exact_tie_rounds_away_from_zero) {
    EXPECT_EQ(afx::fixed6_text(0.0078125), "0.007813");  // 1/128
    EXPECT_EQ(afx::fixed6_text(-0.0078125), "-0.007813");
    EXPECT_EQ(afx::fixed6_text(0.0234375), "0.023438");  // 3/128: both rules agree
    EXPECT_EQ(afx::fixed6_text(0.00000049999), "0.000000");
}

TEST(NumberText, fixed_huge_value_reads_back_the_same_float) {
    const float huge = 3.4e38f;
    const std::string text = afx::fixed6_text(huge);
    EXPECT_EQ(text.substr(text.size() - 7), ".000000");
    EXPECT_EQ(static_cast<float>(afx::double_of(text)), huge);
}

TEST(NumberText, not_finite_values_read_as_one_like_the_old_runtime) {
    EXPECT_EQ(afx::fixed6_text(kInfinity), "1.#INF00");
    EXPECT_EQ(afx::fixed6_text(-kInfinity), "-1.#INF00");
    EXPECT_EQ(afx::fixed6_text(std::nan("")), "1.#QNAN0");
    EXPECT_EQ(afx::double_of("1.#INF00"), 1.0);
}

TEST(NumberText, exponent_has_three_digits) {
    EXPECT_EQ(afx::exponent_text(1.5), "1.500000e+000");
    EXPECT_EQ(afx::exponent_text(0), "0.000000e+000");
    EXPECT_EQ(afx::exponent_text(-12345.678), "-1.234568e+004");
    EXPECT_EQ(afx::exponent_text(1e-5), "1.000000e-005");
    EXPECT_EQ(afx::exponent_text(1e100), "1.000000e+100");
    EXPECT_EQ(afx::exponent_text(5e-324), "4.940656e-324");
}

TEST(NumberText, exponent_exact_tie_rounds_away_from_zero) {
    EXPECT_EQ(afx::exponent_text(1000000.5), "1.000001e+006");
    EXPECT_EQ(afx::exponent_text(-1000000.5), "-1.000001e+006");
    EXPECT_EQ(afx::exponent_text(10000005e8), "1.000001e+015");
    EXPECT_EQ(afx::exponent_text(1.0000015), "1.000001e+000");  // its double lies below the tie
    EXPECT_EQ(afx::exponent_text(9999999.5), "1.000000e+007");
}

TEST(NumberText, general_is_shortest) {
    EXPECT_EQ(afx::general_text(12.0), "12");
    EXPECT_EQ(afx::general_text(-0.1), "-0.1");
    EXPECT_EQ(afx::general_text(1e20), "1e+20");
    EXPECT_EQ(afx::general_text(0.1f), "0.1");
    EXPECT_EQ(afx::general_text(0.0f), "0");
}

TEST(NumberText, currency_drops_trailing_zeros) {
    EXPECT_EQ(afx::currency_text(125000), "12.5");
    EXPECT_EQ(afx::currency_text(1502500), "150.25");
    EXPECT_EQ(afx::currency_text(0), "0");
    EXPECT_EQ(afx::currency_text(-7500), "-0.75");
    EXPECT_EQ(afx::currency_text(12345678901), "1234567.8901");
    EXPECT_EQ(afx::currency_text(10000000), "1000");
    EXPECT_EQ(afx::currency_text(1), "0.0001");
    EXPECT_EQ(afx::currency_text(std::numeric_limits<std::int64_t>::min()), "-922337203685477.5808");
}

TEST(NumberText, integer_stops_at_first_other_character) {
    EXPECT_EQ(afx::integer_of(""), 0);
    EXPECT_EQ(afx::integer_of("TRUE"), 0);
    EXPECT_EQ(afx::integer_of("Fish"), 0);
    EXPECT_EQ(afx::integer_of("0x1F"), 0);
    EXPECT_EQ(afx::integer_of("12.5"), 12);
    EXPECT_EQ(afx::integer_of("1.500000e+000"), 1);
    EXPECT_EQ(afx::integer_of("  -17 rest"), -17);
    EXPECT_EQ(afx::integer_of("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(afx::integer_of("99999999999999999999"), std::numeric_limits<std::int32_t>::max());
}

TEST(NumberText, double_reads_a_prefix) {
    EXPECT_EQ(afx::double_of("12,5"), 12.0);
    EXPECT_EQ(afx::double_of(" -1.25e2x"), -125.0);
    EXPECT_EQ(afx::double_of("1d2"), 100.0);
    EXPECT_EQ(afx::double_of(".5"), 0.5);
    EXPECT_EQ(afx::double_of("5."), 5.0);
    EXPECT_EQ(afx::double_of("1e"), 1.0);
    EXPECT_EQ(afx::double_of("."), 0.0);
    EXPECT_EQ(afx::double_of("Invalid"), 0.0);
    EXPECT_EQ(afx::double_of("1e999"), kInfinity);
    EXPECT_EQ(afx::double_of("-1e-999"), 0.0);
}

TEST(NumberText, parse_double_wants_the_whole_text) {
    double value = 7;
    EXPECT_TRUE(afx::parse_double(" 12.5 ", value));
    EXPECT_EQ(value, 12.5);
    EXPECT_FALSE(afx::parse_double("12,5", value));
    EXPECT_FALSE(afx::parse_double("", value));
    EXPECT_FALSE(afx::parse_double("1e999", value));
}

TEST(NumberText, parse_currency_is_exact_and_checks_range) {
    std::int64_t amount = 0;
    EXPECT_TRUE(afx::parse_currency("12.5", amount));
    EXPECT_EQ(amount, 125000);
    EXPECT_TRUE(afx::parse_currency("-0.75", amount));
    EXPECT_EQ(amount, -7500);
    EXPECT_TRUE(afx::parse_currency("1.00005", amount));  // tie to even
    EXPECT_EQ(amount, 10000);
    EXPECT_TRUE(afx::parse_currency("1.00015", amount));
    EXPECT_EQ(amount, 10002);
    EXPECT_TRUE(afx::parse_currency("1.000051", amount));
    EXPECT_EQ(amount, 10001);
    EXPECT_TRUE(afx::parse_currency("922337203685477.5807", amount));
    EXPECT_EQ(amount, std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(afx::parse_currency("-922337203685477.5808", amount));
    EXPECT_EQ(amount, std::numeric_limits<std::int64_t>::min());
    EXPECT_FALSE(afx::parse_currency("922337203685477.5808", amount));
    EXPECT_FALSE(afx::parse_currency("99999999999999999999999", amount));
    EXPECT_FALSE(afx::parse_currency("12,5", amount));
    EXPECT_FALSE(afx::parse_currency(".", amount));
}

TEST(NumberText, round_ties_go_to_even) {
    std::int64_t whole = 0;
    EXPECT_TRUE(afx::round_to_int64(2.5, whole));
    EXPECT_EQ(whole, 2);
    EXPECT_TRUE(afx::round_to_int64(-3.5, whole));
    EXPECT_EQ(whole, -4);
    EXPECT_TRUE(afx::round_to_int64(1.4999, whole));
    EXPECT_EQ(whole, 1);
    EXPECT_FALSE(afx::round_to_int64(1e30, whole));
    EXPECT_FALSE(afx::round_to_int64(std::nan(""), whole));
}

}  // namespace
