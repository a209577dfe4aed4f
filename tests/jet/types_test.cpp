// Names between UTF-16 and UTF-8, and their equality.
#include "jet/base/types.h"
#include "jet/indexes/collation.h"

#include <gtest/gtest.h>

namespace {

TEST(Utf8, characters_of_every_length_survive_both_ways) {
    const std::u16string text = u"a\u00E9\u20AC\xD83D\xDE00z";
    const std::string bytes = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
    EXPECT_EQ(bytes, jet::to_utf8(text));
    EXPECT_EQ(text, jet::from_utf8(bytes));
}

TEST(Utf8, unpaired_surrogate_becomes_replacement) {
    EXPECT_EQ("a\xEF\xBF\xBD", jet::to_utf8(u"a\xD800"));
    EXPECT_EQ(
        "\xEF\xBF\xBD"
        "b",
        jet::to_utf8(u"\xDC00"
                     u"b"));
    EXPECT_EQ("\xEF\xBF\xBD\xEF\xBF\xBD", jet::to_utf8(u"\xD800\xD800"));
}

TEST(Utf8, invalid_bytes_become_replacements) {
    EXPECT_EQ(u"\uFFFD", jet::from_utf8("\xFF"));
    EXPECT_EQ(u"\uFFFD\uFFFD", jet::from_utf8("\xC0\x80"));
    EXPECT_EQ(u"\uFFFD", jet::from_utf8("\xC3"));
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", jet::from_utf8("\xED\xA0\x80"));
    EXPECT_EQ(u"\uFFFD(", jet::from_utf8("\xC3("));
    EXPECT_EQ(u"", jet::from_utf8(""));
}

TEST(SameName, case_does_not_count) {
    EXPECT_TRUE(jet::same_name(u"ProjID", u"PROJid"));
    EXPECT_TRUE(jet::same_name(u"caf\u00E9", u"CAF\u00C9"));
    EXPECT_FALSE(jet::same_name(u"Proj", u"ProjID"));
    EXPECT_FALSE(jet::same_name(u"Proj-ID", u"ProjID"));
}

TEST(RowId, packed_form_orders_by_page_then_slot) {
    const jet::RowId row{0x123456, 7};
    EXPECT_EQ(0x12345607u, row.pack());
    EXPECT_EQ(row, jet::RowId::unpack(row.pack()));
    EXPECT_LT((jet::RowId{1, 255}), (jet::RowId{2, 0}));
    EXPECT_TRUE(jet::RowId().is_null());
}

}  // namespace
