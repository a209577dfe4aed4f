#include "jet/storage/text_codec.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "jet/base/error.h"
#include "jet/base/types.h"

namespace jet {
namespace {

ByteVector bytes(std::initializer_list<int> list) {
    ByteVector result;
    for (const int value : list) result.push_back(static_cast<std::uint8_t>(value));
    return result;
}

// What comes of a stored text as ASCII; none where it is not.
std::optional<std::string> as_ascii(const ByteVector& stored) {
    std::string copied(ascii_length(stored), '?');
    if (!copy_ascii(stored, copied.data())) return std::nullopt;
    return copied;
}

TEST(TextCodec, plain_text_is_two_bytes_a_unit) {
    EXPECT_EQ(encode_text(u"a\u4e01", false), bytes({'a', 0, 0x01, 0x4e}));
    EXPECT_EQ(encode_text(u"", true), ByteVector());
    EXPECT_EQ(decode_text(bytes({'a', 0, 0x01, 0x4e})), u"a\u4e01");
    EXPECT_EQ(decode_text({}), u"");
}

TEST(TextCodec, three_narrow_characters_or_more_are_compressed) {
    EXPECT_EQ(encode_text(u"abc", true), bytes({0xFF, 0xFE, 'a', 'b', 'c'}));
    EXPECT_EQ(encode_text(u"ab\u00ff", true), bytes({0xFF, 0xFE, 'a', 'b', 0xFF}));
    EXPECT_EQ(encode_text(u"ab", true), bytes({'a', 0, 'b', 0}));
    EXPECT_EQ(encode_text(u"abc", false), bytes({'a', 0, 'b', 0, 'c', 0}));
}

TEST(TextCodec, a_wide_character_or_a_nul_keeps_the_text_plain) {
    EXPECT_EQ(encode_text(u"abc\u0100", true).size(), 8u);
    EXPECT_EQ(encode_text(std::u16string(u"ab\0c", 4), true), bytes({'a', 0, 'b', 0, 0, 0, 'c', 0}));
}

TEST(TextCodec, toggling_form_is_read) {
    EXPECT_EQ(decode_text(bytes({0xFF, 0xFE, 'a', 'b', 0, 0x01, 0x4e, 0x02, 0x4e, 0, 'c'})), u"ab\u4e01\u4e02c");
    // It may end in either mode, and inside a unit.
    EXPECT_EQ(decode_text(bytes({0xFF, 0xFE, 0, 0x01, 0x4e})), u"\u4e01");
    EXPECT_EQ(decode_text(bytes({0xFF, 0xFE, 0, 0x01, 0x4e, 0x02})), u"\u4e01");
    EXPECT_EQ(decode_text(bytes({0xFF, 0xFE, 'a', 0})), u"a");
    // The high byte of a unit is no toggle.
    EXPECT_EQ(decode_text(bytes({0xFF, 0xFE, 0, 'x', 0, 'y', 0, 0, 'z'})), u"xyz");
}

// As plain text it would be taken for the mark, and what follows for one byte a character.
TEST(TextCodec, text_beginning_like_the_mark_takes_the_toggling_form) {
    EXPECT_EQ(encode_text(u"\uFEFF", false), bytes({0xFF, 0xFE, 0, 0xFF, 0xFE}));
    EXPECT_EQ(encode_text(u"\uFEFFab\u4e01c", true),
              bytes({0xFF, 0xFE, 0, 0xFF, 0xFE, 'a', 0, 'b', 0, 0x01, 0x4e, 0, 'c'}));
    EXPECT_EQ(encode_text(u"a\uFEFF", false), bytes({'a', 0, 0xFF, 0xFE}));
    for (const std::u16string& text : {std::u16string(u"\uFEFF\uFEFF"), std::u16string(u"\uFEFF\u4e01\u4e02"),
                                       std::u16string(u"\uFEFFab"), std::u16string(u"\uFEFF\u0001\uffff\u00ff")}) {
        EXPECT_EQ(decode_text(encode_text(text, false)), text);
        EXPECT_EQ(decode_text(encode_text(text, true)), text);
        EXPECT_EQ(as_ascii(encode_text(text, true)), std::nullopt);
    }
}

TEST(TextCodec, text_beginning_like_the_mark_with_a_unit_of_a_zero_low_byte_is_refused) {
    for (const std::u16string& text :
         {std::u16string(u"\uFEFF\u0100"), std::u16string(u"\uFEFFa\u3000b"), std::u16string(u"\uFEFF\0a", 3)}) {
        EXPECT_THROW(encode_text(text, true), Error) << to_utf8(text);
        EXPECT_EQ(decode_text(encode_text(text.substr(1), true)), text.substr(1));
    }
}

TEST(TextCodec, odd_last_byte_and_lone_marks_are_harmless) {
    EXPECT_EQ(decode_text(bytes({'a', 0, 'b'})), u"a");
    EXPECT_EQ(decode_text(bytes({0xFF})), u"");
    EXPECT_EQ(decode_text(bytes({0xFF, 0xFE})), u"");
}

TEST(TextCodec, every_text_comes_back) {
    for (const bool compress : {false, true}) {
        for (const std::u16string& text :
             {std::u16string(u"Grüße"), std::u16string(255, u'x'), std::u16string(u"\u20ac\u20ac\u20ac"),
              std::u16string(u"a\0b\0c", 5), std::u16string(1, static_cast<char16_t>(0xD800))}) {
            EXPECT_EQ(decode_text(encode_text(text, compress)), text);
        }
    }
}

// Both stored forms, with a character at each place that is or is not ASCII.
TEST(TextCodec, ascii_without_nul_is_copied_and_nothing_else_is) {
    for (std::size_t length = 0; length < 40; ++length) {
        std::u16string text;
        for (std::size_t i = 0; i < length; ++i) text += static_cast<char16_t>(u'A' + i);
        for (const bool compress : {false, true}) {
            EXPECT_EQ(as_ascii(encode_text(text, compress)), to_utf8(text));
        }
        for (std::size_t at = 0; at < length; ++at) {
            for (const char16_t c : {u'\0', u'\x80', u'\u0100', u'\u4141', u'\u8041', u'\uFFFF'}) {
                std::u16string other = text;
                other[at] = c;
                EXPECT_EQ(as_ascii(encode_text(other, false)), std::nullopt) << length << " " << at << " " << int{c};
                if (c <= 0xFF && length > 2) {
                    ByteVector compressed = encode_text(text, true);
                    compressed[2 + at] = static_cast<std::uint8_t>(c);
                    EXPECT_EQ(as_ascii(compressed), std::nullopt) << length << " " << at << " " << int{c};
                }
            }
        }
    }
    EXPECT_EQ(as_ascii(bytes({'a', 0, 'b'})), "a");  // an odd last byte is ignored, as in decode_text
}

}  // namespace
}  // namespace jet
