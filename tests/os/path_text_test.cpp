#include "os/path_text.h"

#include <gtest/gtest.h>

namespace {

TEST(PathText, every_sequence_of_units_survives_the_way_there_and_back) {
    const std::u16string cases[] = {u"",
                                    u"C:\\Studio",
                                    u"Micha\x0142",
                                    u"\xD83C\xDFB5",
                                    u"\xD800",
                                    u"\xDC00",
                                    u"a\xDFFFz\xD83C",
                                    u"\xDC00\xD800",
                                    u"\xD800\xD83C\xDFB5\xDC00"};
    for (const std::u16string& units : cases) EXPECT_EQ(os::units_of_path(os::path_of_units(units)), units);
    for (char32_t unit = 1; unit < 0x10000; ++unit) {
        const std::u16string one(1, static_cast<char16_t>(unit));
        ASSERT_EQ(os::units_of_path(os::path_of_units(one)), one) << static_cast<std::uint32_t>(unit);
    }
}

TEST(PathText, what_is_utf_16_becomes_utf_8) {
    EXPECT_EQ(os::path_of_units(u"\x0142"), "\xC5\x82");
    EXPECT_EQ(os::path_of_units(u"\xD83C\xDFB5"), "\xF0\x9F\x8E\xB5");
    EXPECT_EQ(os::path_of_units(u"x\xD800y"), "x\xED\xA0\x80y");
}

TEST(PathText, bytes_that_are_no_text_do_not_become_a_name_in_use) {
    EXPECT_EQ(os::units_of_path("a\xFFz"), os::units_of_path("a\xFEz"));
    EXPECT_NE(os::units_of_path("a\xFFz"), u"az");
}

}  // namespace
