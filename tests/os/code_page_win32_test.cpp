// Code pages of the system other than the two of our own: a byte that they do not know is no other character.
#include <gtest/gtest.h>

#include "os/system_parts.h"
#include "os/windows_api_win32.h"

namespace {

using os::detail::narrow_to;
using os::detail::widen_from;

TEST(SystemCodePage, japanese_text_is_widened_and_unknown_bytes_are_told_apart) {
    constexpr unsigned kJapanese = 932;
    if (::IsValidCodePage(kJapanese) == 0) GTEST_SKIP() << "code page 932 is not installed";
    EXPECT_EQ(widen_from(kJapanese, "a\x82\xa0z"), u"a\u3042z");
    EXPECT_EQ(widen_from(kJapanese, ""), u"");
    EXPECT_EQ(widen_from(kJapanese, "a\x82"), u"a\uFFFD");                       // ends inside a character
    EXPECT_EQ(widen_from(kJapanese, "\x82\xa0\x85\x40\x82\xa2")[0], u'\u3042');  // no such character in the middle
    EXPECT_EQ(widen_from(kJapanese, "\x82\xa0\x85\x40\x82\xa2").find(u'?'), std::u16string::npos);
}

TEST(SystemCodePage, cyrillic_text_is_widened) {
    constexpr unsigned kCyrillic = 1251;
    if (::IsValidCodePage(kCyrillic) == 0) GTEST_SKIP() << "code page 1251 is not installed";
    EXPECT_EQ(widen_from(kCyrillic, "\xc6"), u"\u0416");
}

TEST(SystemCodePage, no_similar_letter_stands_for_one_that_is_lacking) {
    constexpr unsigned kCyrillic = 1251;
    if (::IsValidCodePage(kCyrillic) == 0) GTEST_SKIP() << "code page 1251 is not installed";
    EXPECT_EQ(narrow_to(kCyrillic, u"\u0416\u00FC\u00E9a"), "\xC6??a");
    EXPECT_EQ(narrow_to(kCyrillic, u""), "");
}

}  // namespace
