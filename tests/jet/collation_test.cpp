// Sort keys against known bytes, and comparison against the keys.
#include "jet/indexes/collation.h"
#include "jet/indexes/sort_key.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "tests/support/hex.h"

namespace {

using testing_support::hex;
jet::ByteVector key(std::u16string_view text) {
    jet::ByteVector bytes;
    jet::append_sort_key(bytes, text);
    return bytes;
}

std::string key_hex(std::u16string_view text) { return hex(key(text)); }

std::string descending_hex(std::u16string_view text) {
    jet::ByteVector bytes;
    jet::append_descending_sort_key(bytes, text);
    return hex(bytes);
}

TEST(SortKey, plain_letters_give_inline_bytes) {
    EXPECT_EQ("6B 60 59 6D 57 01 00", key_hex(u"Smith"));
    EXPECT_EQ("6D 4A 4C 5E 51 6B 01 00", key_hex(u"Tables"));
    EXPECT_EQ("01 00", key_hex(u""));
}

TEST(SortKey, descending_form_is_inverted_with_own_end) {
    EXPECT_EQ("94 9F A6 92 A8 FE FF 00", descending_hex(u"Smith"));
    EXPECT_EQ("FE FF 00", descending_hex(u""));
}

TEST(SortKey, accents_follow_by_position) {
    EXPECT_EQ("6F 60 5E 4A 6F 6D 01 13 00", key_hex(u"\u00FCmlaut"));
    EXPECT_EQ("4A 4A 5C 5C 64 6B 59 4A 01 13 13 02 02 13 02 02 13 00", key_hex(u"\u00E4\u00E4kk\u00F6si\u00E4"));
    EXPECT_EQ("64 5E 07 12 07 55 69 64 6B 6B 51 01 13 02 02 02 02 02 02 13 00", key_hex(u"\u00D6l & Gr\u00F6\u00DFe"));
}

TEST(SortKey, characters_without_weight_are_listed_at_the_end) {
    EXPECT_EQ("64 4C 69 59 51 62 01 01 01 01 80 0B 06 80 00", key_hex(u"O'Brien"));
    EXPECT_EQ("4A 4C 01 01 01 01 80 0B 06 82 00", key_hex(u"a-b"));
    EXPECT_EQ("4A 4C 4D 01 01 01 01 80 0B 06 82 80 0F 06 04 00", key_hex(u"a-b\u0002c"));
}

TEST(SortKey, unprintable_after_accent_counts_extra_bytes) {
    // One accent, then two characters: the hyphen stands at place 3.
    EXPECT_EQ("51 4A 4A 4A 01 0E 01 01 01 80 13 06 82 00", key_hex(u"\u00E9aa-a"));
}

TEST(SortKey, equal_letters_in_several_spellings_give_one_key) {
    EXPECT_EQ(key(u"ss"), key(u"\u00DF"));
    EXPECT_EQ(key(u"ABC"), key(u"abc"));
    EXPECT_EQ(key(u"\u00C9"), key(u"\u00E9"));
    EXPECT_EQ(key(u"\u00E6"), key(u"ae"));
    EXPECT_NE(key(u"e"), key(u"\u00E9"));
}

TEST(SortKey, combining_mark_gives_the_key_of_the_composed_letter) {
    EXPECT_EQ(key(u"caf\u00E9"), key(u"cafe\u0301"));
    EXPECT_EQ(key(u"\u00FCber"), key(u"u\u0308ber"));
}

TEST(SortKey, leading_combining_mark_starts_the_extra_list) {
    EXPECT_EQ("4A 01 0C 00", key_hex(u"\u0301a"));
    // The mark does not count as a place for the list of unprintables.
    EXPECT_EQ("4A 4A 01 0C 01 01 01 80 0B 06 82 00", key_hex(u"\u0301a-a"));
}

TEST(SortKey, cp1252_characters_beyond_latin1_have_known_weights) {
    EXPECT_EQ("35 A1 01 00", key_hex(u"\u20AC"));
    EXPECT_EQ("2B 39 01 00", key_hex(u"\u201A"));
    EXPECT_EQ("53 01 7B 00", key_hex(u"\u0192"));
    EXPECT_EQ("2B 3D 01 00", key_hex(u"\u201E"));
    EXPECT_EQ("34 B9 01 00", key_hex(u"\u2026"));
    EXPECT_EQ("2B 02 01 03 00", key_hex(u"\u02C6"));
    EXPECT_EQ("6B 01 14 00", key_hex(u"\u0160"));
    EXPECT_EQ("6B 01 14 00", key_hex(u"\u0161"));
    EXPECT_EQ("64 51 01 00", key_hex(u"\u0153"));
    EXPECT_EQ("78 01 14 00", key_hex(u"\u017E"));
    EXPECT_EQ("2B 38 01 00", key_hex(u"\u2019"));
    EXPECT_EQ("01 01 01 01 80 07 06 89 00", key_hex(u"\u2013"));
    EXPECT_EQ("01 01 01 01 80 07 06 8B 00", key_hex(u"\u2014"));
    EXPECT_EQ("2B 1C 01 00", key_hex(u"\u02DC"));
    EXPECT_EQ("6E 04 01 00", key_hex(u"\u2122"));
    EXPECT_EQ("76 01 13 00", key_hex(u"\u0178"));
}

TEST(SortKey, ranges_grow_by_one_per_character) {
    EXPECT_EQ("79 0C 01 00", key_hex(u"\u0391"));
    EXPECT_EQ("79 0D 01 00", key_hex(u"\u0392"));
    EXPECT_EQ("79 2F 01 00", key_hex(u"\u0410"));
    EXPECT_EQ("9F 02 01 00", key_hex(u"\u4E00"));
    EXPECT_EQ("9F 08 01 00", key_hex(u"\u4E02"));
    EXPECT_EQ("9F 09 01 00", key_hex(u"\u4E03"));
}

TEST(SortKey, kana_flags_are_packed_three_to_a_byte) {
    EXPECT_EQ("7F 02 01 01 01 A0 FF 02 80 FF 80 00", key_hex(u"\u3041"));
    // Only ordinary kana: the flags are dropped, their end mark stays.
    EXPECT_EQ("7F 02 01 01 01 FF 02 80 FF 80 00", key_hex(u"\u3042"));
    // With an unprintable behind: one more FF before its list.
    EXPECT_EQ("7F 02 01 01 01 A0 FF 02 80 FF 80 FF 01 80 0B 06 82 00", key_hex(u"\u3041-"));
    EXPECT_EQ("7F 02 7F 02 7F 02 7F 02 01 01 01 BE A0 FF 02 80 FF 80 00", key_hex(u"\u3042\u3042\u3041\u3041"));
}

TEST(SortKey, surrogates_have_computed_weights) {
    EXPECT_EQ("B0 02 B4 F8 01 3F 3F 00", key_hex(u"\xD800\xDC00"));
    EXPECT_EQ("B0 02 B5 02 01 3F 3F 00", key_hex(u"\xD800\xDC08"));
    EXPECT_EQ("B0 02 B6 02 01 3F 3F 00", key_hex(u"\xD800\xDD06"));
}

TEST(SortKey, trailing_blanks_and_everything_beyond_255_characters_are_left_out) {
    EXPECT_EQ(key(u"Dan"), key(u"Dan   "));
    EXPECT_NE(key(u"Dan"), key(u" Dan"));
    EXPECT_NE(key(u"D an"), key(u"Dan"));
    const std::u16string base(255, u'a');
    EXPECT_EQ(key(base), key(base + u"b"));
    // Blanks are removed after the cut.
    EXPECT_EQ(key(u"a"), key(u"a" + std::u16string(254, u' ') + u"b"));
}

TEST(SortKey, key_is_appended) {
    jet::ByteVector bytes{0x7F};
    jet::append_sort_key(bytes, u"a");
    EXPECT_EQ("7F 4A 01 00", hex(bytes));
    jet::ByteVector down{0x80};
    jet::append_descending_sort_key(down, u"a");
    EXPECT_EQ("80 B5 FE FF 00", hex(down));
}

TEST(CompareText, case_and_trailing_blanks_do_not_count) {
    EXPECT_TRUE(jet::equal_text(u"Drums", u"DRUMS"));
    EXPECT_TRUE(jet::equal_text(u"Dan ", u"dan"));
    EXPECT_TRUE(jet::equal_text(u"\u00E9t\u00E9", u"\u00C9T\u00C9  "));
    EXPECT_TRUE(jet::equal_text(u"", u"   "));
    EXPECT_FALSE(jet::equal_text(u" Dan", u"Dan"));
    EXPECT_FALSE(jet::equal_text(u"e", u"\u00E9"));
    EXPECT_FALSE(jet::equal_text(u"O'Brien", u"OBrien"));
    EXPECT_TRUE(jet::equal_text(u"Stra\u00DFe", u"STRASSE"));
}

TEST(CompareText, order_is_that_of_the_letters) {
    EXPECT_LT(jet::compare_text(u"abc", u"ABD"), 0);
    EXPECT_GT(jet::compare_text(u"b", u"A"), 0);
    EXPECT_LT(jet::compare_text(u"a", u"ab"), 0);
    EXPECT_LT(jet::compare_text(u"e", u"\u00E9"), 0);
    EXPECT_LT(jet::compare_text(u"\u00E9", u"f"), 0);
    EXPECT_LT(jet::compare_text(u" z", u"a"), 0);
    EXPECT_LT(jet::compare_text(u"9", u"a"), 0);
    EXPECT_EQ(0, jet::compare_text(u"", u""));
}

TEST(CompareText, long_texts_are_compared_whole) {
    const std::u16string base(1000, u'x');
    EXPECT_TRUE(jet::equal_text(base + u"A", base + u"a"));
    EXPECT_FALSE(jet::equal_text(base + u"a", base + u"b"));
    EXPECT_LT(jet::compare_text(base + u"a", base + u"\u00E4"), 0);
}

TEST(CompareText, random_texts_agree_with_their_sort_keys) {
    const std::u16string alphabet =
        u"aAbB \u00E9\u00C9e'-\u00DFs\u0301\u0308\u3041\u3042z\u0002\u00E6\u0410\u4E00\xD800\xDC00^+\u01FD\t";
    std::mt19937 random(4711);
    const auto any = [&random](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    const auto text = [&] {
        std::u16string made;
        for (std::size_t i = any(7); i > 0; --i) made.push_back(alphabet[any(alphabet.size())]);
        return made;
    };
    int equal = 0;
    for (int round = 0; round < 200000; ++round) {
        const std::u16string a = text();
        const std::u16string b = text();
        const auto order = key(a) <=> key(b);
        const int compared = jet::compare_text(a, b);
        ASSERT_EQ(order < 0, compared < 0) << jet::to_utf8(a) << " / " << jet::to_utf8(b);
        ASSERT_EQ(order > 0, compared > 0) << jet::to_utf8(a) << " / " << jet::to_utf8(b);
        ASSERT_EQ(order == 0, jet::equal_text(a, b));
        if (order == 0) ++equal;
    }
    EXPECT_GT(equal, 1000);
}

TEST(CompareText, random_bmp_texts_agree_with_their_sort_keys) {
    std::mt19937 random(815);
    for (int round = 0; round < 100000; ++round) {
        std::u16string a;
        std::u16string b;
        for (int i = 0; i < 3; ++i) {
            a.push_back(static_cast<char16_t>(random()));
            b.push_back(random() % 2 == 0 ? a.back() : static_cast<char16_t>(random()));
        }
        const auto order = key(a) <=> key(b);
        const int compared = jet::compare_text(a, b);
        ASSERT_EQ(order < 0, compared < 0) << round;
        ASSERT_EQ(order > 0, compared > 0) << round;
    }
}

TEST(EqualCharacter, letters_fold_case_and_keep_accents) {
    EXPECT_TRUE(jet::equal_character(u'a', u'A'));
    EXPECT_TRUE(jet::equal_character(u'\u00E9', u'\u00C9'));
    EXPECT_TRUE(jet::equal_character(u'\u0161', u'\u0160'));
    EXPECT_TRUE(jet::equal_character(u'\u0434', u'\u0414'));
    EXPECT_FALSE(jet::equal_character(u'e', u'\u00E9'));
    EXPECT_FALSE(jet::equal_character(u'a', u'b'));
}

TEST(EqualCharacter, other_characters_equal_only_themselves) {
    EXPECT_TRUE(jet::equal_character(u'-', u'-'));
    EXPECT_FALSE(jet::equal_character(u'2', u'\u00B2'));
    EXPECT_FALSE(jet::equal_character(u'\'', u'-'));
    EXPECT_FALSE(jet::equal_character(u'\u0000', u'\u00FF'));
}

TEST(CompareCharacter, accented_letters_stand_after_their_base_letter) {
    EXPECT_EQ(0, jet::compare_character(u'a', u'A'));
    EXPECT_LT(jet::compare_character(u'a', u'\u00E0'), 0);
    EXPECT_LT(jet::compare_character(u'\u00E0', u'B'), 0);
    EXPECT_GT(jet::compare_character(u'\u00EA', u'E'), 0);
    EXPECT_LT(jet::compare_character(u'0', u'9'), 0);
    EXPECT_LT(jet::compare_character(u'9', u'a'), 0);
    EXPECT_LT(jet::compare_character(u'2', u'\u00B2'), 0);
    EXPECT_GT(jet::compare_character(u'\u00B2', u'2'), 0);
}

TEST(CompareLatin, decides_as_the_order_does_or_not_at_all) {
    constexpr std::u16string_view kCharacters = u"aAbBzZ019 -'_.\u00C4\u00E4\u00E9\u00DF\u00E6\u00A0\u0001\u4E00";
    std::mt19937 random{3};
    const auto below = [&](std::size_t count) { return random() % count; };
    int decided = 0;
    constexpr int kPairs = 200000;
    for (int pair = 0; pair < kPairs; ++pair) {
        std::u16string a;
        std::u16string b;
        for (std::size_t left = below(5); left > 0; --left) a += kCharacters[below(kCharacters.size() - 1)];
        b = a.substr(0, below(a.size() + 1));
        for (std::size_t left = below(3); left > 0; --left) b += kCharacters[below(kCharacters.size())];
        const std::vector<std::uint8_t> narrow(a.begin(), a.end());
        const auto order = jet::compare_latin(narrow, b);
        if (!order) continue;
        ++decided;
        ASSERT_EQ(*order, jet::compare_text(a, b)) << jet::to_utf8(a) << '|' << jet::to_utf8(b);
    }
    EXPECT_GT(decided, kPairs / 3);
}

TEST(CompareLatin, plain_words_are_always_decided) {
    const auto compare = [](std::string_view a, std::u16string_view b) {
        return jet::compare_latin({reinterpret_cast<const std::uint8_t*>(a.data()), a.size()}, b);
    };
    EXPECT_EQ(compare("Album", u"ALBUM"), 0);
    EXPECT_EQ(compare("Album", u"Single"), -1);
    EXPECT_EQ(compare("Single", u"Album"), 1);
    EXPECT_EQ(compare("Album", u"Albums"), -1);
    EXPECT_EQ(compare("Client 2", u"Client 10"), 1);
    EXPECT_EQ(compare("", u""), 0);
}

TEST(CompareLatin, zero_byte_is_never_decided) {
    const std::uint8_t toggled[] = {'a', 0, 'b'};
    EXPECT_EQ(jet::compare_latin(toggled, std::u16string_view(u"a\0b", 3)), std::nullopt);
    EXPECT_EQ(jet::compare_latin(toggled, u"a"), std::nullopt);
}

}  // namespace
