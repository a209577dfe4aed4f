#include <gtest/gtest.h>

#include <string>

#include "os/code_page.h"
#include "os/system.h"

namespace {

using os::CodePage;

class CodePageTest : public testing::Test {
protected:
    ~CodePageTest() override { os::set_code_page(CodePage::kSystem); }
};

TEST_F(CodePageTest, windows_1252_every_byte_survives_a_round_trip) {
    os::set_code_page(CodePage::kWindows1252);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        EXPECT_EQ(os::widen(text).size(), 1u) << byte;
        EXPECT_EQ(os::narrow(os::widen(text)), text) << byte;
    }
}

TEST_F(CodePageTest, windows_1252_special_bytes_are_the_published_characters) {
    os::set_code_page(CodePage::kWindows1252);
    EXPECT_EQ(os::widen("\x80\x85\x8A\x96\x99\x9F"), u"\u20AC\u2026\u0160\u2013\u2122\u0178");
    EXPECT_EQ(os::widen("A\xA0\xE4\xFF"), u"A\u00A0\u00E4\u00FF");
}

TEST_F(CodePageTest, windows_1252_unassigned_bytes_keep_their_value) {
    os::set_code_page(CodePage::kWindows1252);
    EXPECT_EQ(os::widen("\x81\x8D\x8F\x90\x9D"), (std::u16string{0x81, 0x8D, 0x8F, 0x90, 0x9D}));
}

TEST_F(CodePageTest, windows_1252_character_without_equivalent_becomes_question_mark) {
    os::set_code_page(CodePage::kWindows1252);
    EXPECT_EQ(os::narrow(u"a\u0101b\u4E2D"), "a?b?");
    // The code points 0x80 to 0x9F of the reassigned bytes have no byte of their own.
    EXPECT_EQ(os::narrow(std::u16string{0x80, 0x9F}), "??");
    EXPECT_EQ(os::narrow(u"\U0001F3B5"), "??");
}

TEST_F(CodePageTest, utf8_text_of_every_length_survives_a_round_trip) {
    os::set_code_page(CodePage::kUtf8);
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5";
    EXPECT_EQ(os::widen(text), u"a\u00E4\u20AC\U0001F3B5");
    EXPECT_EQ(os::narrow(os::widen(text)), text);
}

TEST_F(CodePageTest, utf8_every_code_point_survives_a_round_trip) {
    for (char32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
        if (code_point >= 0xD800 && code_point <= 0xDFFF) continue;
        std::u16string wide;
        if (code_point < 0x10000) {
            wide = {static_cast<char16_t>(code_point)};
        } else {
            wide = {static_cast<char16_t>(0xD7C0 + (code_point >> 10)),
                    static_cast<char16_t>(0xDC00 + (code_point & 0x3FF))};
        }
        ASSERT_EQ(os::detail::utf8_to_utf16(os::detail::utf16_to_utf8(wide)), wide)
            << static_cast<std::uint32_t>(code_point);
    }
}

TEST_F(CodePageTest, utf8_beyond_the_bmp_becomes_a_surrogate_pair) {
    os::set_code_page(CodePage::kUtf8);
    EXPECT_EQ(os::widen("\xF0\x90\x80\x80"), (std::u16string{0xD800, 0xDC00}));
    EXPECT_EQ(os::widen("\xF4\x8F\xBF\xBF"), (std::u16string{0xDBFF, 0xDFFF}));
    EXPECT_EQ(os::narrow(std::u16string{0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF");
}

TEST_F(CodePageTest, utf8_bad_bytes_become_one_unknown_character_each) {
    os::set_code_page(CodePage::kUtf8);
    EXPECT_EQ(os::widen("a\xE4z"), u"a\uFFFDz");                                                // stray lead
    EXPECT_EQ(os::widen("\x80\xBF"), u"\uFFFD\uFFFD");                                          // stray continuations
    EXPECT_EQ(os::widen("\xE2\x82"), u"\uFFFD\uFFFD");                                          // ends too early
    EXPECT_EQ(os::widen("\xE2\x82z"), u"\uFFFD\uFFFDz");                                        // broken off
    EXPECT_EQ(os::widen("\xC0\x80\xC1\xBF"), u"\uFFFD\uFFFD\uFFFD\uFFFD");                      // overlong
    EXPECT_EQ(os::widen("\xE0\x9F\xBF"), u"\uFFFD\uFFFD\uFFFD");                                // overlong
    EXPECT_EQ(os::widen("\xF0\x8F\xBF\xBF"), u"\uFFFD\uFFFD\uFFFD\uFFFD");                      // overlong
    EXPECT_EQ(os::widen("\xED\xA0\x80\xED\xBF\xBF"), u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");  // surrogates
    EXPECT_EQ(os::widen("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");  // past the last code point
    EXPECT_EQ(os::widen("\xF8\xFE\xFF"), u"\uFFFD\uFFFD\uFFFD");
}

TEST_F(CodePageTest, utf8_lone_surrogate_becomes_question_mark) {
    os::set_code_page(CodePage::kUtf8);
    EXPECT_EQ(os::narrow(std::u16string{0xD800}), "?");
    EXPECT_EQ(os::narrow(std::u16string{0xDC00, u'a'}), "?a");
    EXPECT_EQ(os::narrow(std::u16string{0xD800, 0xD800, 0xDC00}), "?\xF0\x90\x80\x80");
}

TEST_F(CodePageTest, text_with_zero_bytes_keeps_them) {
    const std::string text("a\0b", 3);
    for (const CodePage page : {CodePage::kUtf8, CodePage::kWindows1252, CodePage::kSystem}) {
        os::set_code_page(page);
        EXPECT_EQ(os::widen(text), std::u16string(u"a\0b", 3));
        EXPECT_EQ(os::narrow(os::widen(text)), text);
        EXPECT_EQ(os::widen(""), u"");
        EXPECT_EQ(os::narrow(u""), "");
    }
}

}  // namespace
