// Patterns of LIKE.
#include <gtest/gtest.h>

#include <chrono>

#include "jet/sql/like.h"

namespace {

using jet::sql::LikePattern;

bool like(std::u16string_view value, std::u16string_view pattern) {
    const auto compiled = LikePattern::compile(pattern);
    if (!compiled) throw std::invalid_argument("bad pattern");
    return compiled->matches(value);
}

bool is_valid_pattern(std::u16string_view pattern) { return LikePattern::compile(pattern).has_value(); }

TEST(Like, pattern_must_match_the_whole_value) {
    EXPECT_TRUE(like(u"Love", u"Love"));
    EXPECT_FALSE(like(u"My Love", u"Love"));
    EXPECT_FALSE(like(u"Love Song", u"Love"));
    EXPECT_FALSE(like(u"", u"a"));
}

TEST(Like, star_matches_any_run_also_empty) {
    EXPECT_TRUE(like(u"My Love Song", u"*love*"));
    EXPECT_TRUE(like(u"love", u"*love*"));
    EXPECT_TRUE(like(u"love", u"love*"));
    EXPECT_TRUE(like(u"", u"*"));
    EXPECT_TRUE(like(u"", u"***"));
    EXPECT_TRUE(like(u"abcabd", u"*abd"));
    EXPECT_TRUE(like(u"aXbXc", u"a*b*c"));
    EXPECT_FALSE(like(u"aXbX", u"a*b*c"));
    EXPECT_TRUE(like(u"a\r\nb", u"a*b"));
}

TEST(Like, question_mark_matches_exactly_one_character) {
    EXPECT_TRUE(like(u"Dan", u"D?n"));
    EXPECT_FALSE(like(u"Dn", u"D?n"));
    EXPECT_FALSE(like(u"Daan", u"D?n"));
    EXPECT_FALSE(like(u"", u"?"));
}

TEST(Like, hash_matches_one_digit) {
    EXPECT_TRUE(like(u"Take 7", u"Take #"));
    EXPECT_FALSE(like(u"Take x", u"Take #"));
    EXPECT_FALSE(like(u"Take \u00B2", u"Take #"));
    EXPECT_FALSE(like(u"Take 17", u"Take #"));
}

TEST(Like, list_matches_one_of_its_characters_and_ranges) {
    EXPECT_TRUE(like(u"b", u"[abc]"));
    EXPECT_FALSE(like(u"d", u"[abc]"));
    EXPECT_TRUE(like(u"k", u"[a-cj-lx]"));
    EXPECT_TRUE(like(u"x", u"[a-cj-lx]"));
    EXPECT_FALSE(like(u"m", u"[a-cj-lx]"));
    EXPECT_TRUE(like(u"5", u"[0-9]"));
    EXPECT_FALSE(like(u"ab", u"[abc]"));
}

TEST(Like, negated_list_matches_one_character_outside) {
    EXPECT_TRUE(like(u"d", u"[!abc]"));
    EXPECT_FALSE(like(u"B", u"[!abc]"));
    EXPECT_FALSE(like(u"b", u"[!a-c]"));
    EXPECT_FALSE(like(u"", u"[!a]"));
}

TEST(Like, special_characters_stand_for_themselves_in_brackets) {
    EXPECT_TRUE(like(u"a*b", u"a[*]b"));
    EXPECT_FALSE(like(u"aXb", u"a[*]b"));
    EXPECT_TRUE(like(u"a?b", u"a[?]b"));
    EXPECT_FALSE(like(u"aXb", u"a[?]b"));
    EXPECT_TRUE(like(u"a#b", u"a[#]b"));
    EXPECT_FALSE(like(u"a1b", u"a[#]b"));
    EXPECT_TRUE(like(u"a[b", u"a[[]b"));
    EXPECT_FALSE(like(u"ab", u"a[[]b"));
}

TEST(Like, closing_bracket_and_exclamation_mark_outside_a_list_are_literal) {
    EXPECT_TRUE(like(u"a]b", u"a]b"));
    EXPECT_TRUE(like(u"wow!", u"wow!"));
    EXPECT_TRUE(like(u"-", u"-"));
}

TEST(Like, hyphen_first_or_last_in_a_list_is_literal) {
    EXPECT_TRUE(like(u"-", u"[-a]"));
    EXPECT_TRUE(like(u"a", u"[-a]"));
    EXPECT_TRUE(like(u"-", u"[a-]"));
    EXPECT_FALSE(like(u"b", u"[a-]"));
    EXPECT_FALSE(like(u"-", u"[!-a]"));
    EXPECT_TRUE(like(u"b", u"[!-a]"));
    EXPECT_TRUE(like(u"-", u"[-]"));
}

TEST(Like, empty_list_is_skipped) {
    EXPECT_TRUE(like(u"ab", u"a[]b"));
    EXPECT_TRUE(like(u"", u"[]"));
    EXPECT_FALSE(like(u"x", u"[]"));
}

TEST(Like, exclamation_mark_alone_in_a_list_is_literal) {
    EXPECT_TRUE(like(u"!", u"[!]"));
    EXPECT_FALSE(like(u"a", u"[!]"));
}

TEST(Like, bad_patterns_are_refused) {
    EXPECT_FALSE(is_valid_pattern(u"[z-a]"));
    EXPECT_FALSE(is_valid_pattern(u"x[!9-0]"));
    EXPECT_FALSE(is_valid_pattern(u"a[bc"));
    EXPECT_FALSE(is_valid_pattern(u"["));
    EXPECT_TRUE(is_valid_pattern(u"[a-Z]"));
    EXPECT_TRUE(is_valid_pattern(u"[a-a]"));
}

TEST(Like, case_is_ignored_and_accents_are_not) {
    EXPECT_TRUE(like(u"DAN", u"dan"));
    EXPECT_TRUE(like(u"CAF\u00C9", u"caf\u00E9"));
    EXPECT_FALSE(like(u"cafe", u"caf\u00E9"));
    EXPECT_TRUE(like(u"D", u"[a-f]"));
}

TEST(Like, ranges_follow_the_text_order) {
    EXPECT_TRUE(like(u"\u00E0", u"[A-E]"));
    EXPECT_FALSE(like(u"\u00EA", u"[A-E]"));
    EXPECT_FALSE(like(u"-", u"[A-E]"));
    EXPECT_FALSE(like(u"\u00B2", u"[0-2]"));
}

TEST(Like, percent_and_underscore_are_ordinary) {
    EXPECT_TRUE(like(u"100%", u"100%"));
    EXPECT_FALSE(like(u"100x", u"100%"));
    EXPECT_TRUE(like(u"a_b", u"a_b"));
    EXPECT_FALSE(like(u"axb", u"a_b"));
}

TEST(Like, trailing_blanks_count) {
    EXPECT_FALSE(like(u"Dan ", u"Dan"));
    EXPECT_TRUE(like(u"Dan ", u"Dan "));
    EXPECT_TRUE(like(u"Dan ", u"Dan*"));
}

TEST(Like, empty_pattern_matches_only_empty_text) {
    EXPECT_TRUE(like(u"", u""));
    EXPECT_FALSE(like(u" ", u""));
}

TEST(Like, many_stars_take_no_exponential_time) {
    const std::u16string value(20000, u'a');
    std::u16string pattern;
    for (int i = 0; i < 30; ++i) pattern += u"*a";
    pattern += u"*b";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(like(value, pattern));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
