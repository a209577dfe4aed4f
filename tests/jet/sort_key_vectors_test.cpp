// Keys of texts that engine-written files and an independent implementation give, in all orders.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "jet/indexes/sort_key.h"

namespace {

using jet::TextOrder;

std::string hex(const jet::ByteVector& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char two[4];
        std::snprintf(two, sizeof two, "%02X", byte);
        text += two;
    }
    return text;
}

std::string ascending(std::u16string_view text, TextOrder order = TextOrder::kGeneral) {
    jet::ByteVector key;
    jet::append_sort_key(key, text, order);
    return hex(key);
}

std::string descending(std::u16string_view text, TextOrder order = TextOrder::kGeneral) {
    jet::ByteVector key;
    jet::append_descending_sort_key(key, text, order);
    return hex(key);
}

struct Vector {
    const char16_t* text;
    const char* ascending;
    const char* descending;  // with the flag byte 80 cut off
};

TEST(SortKeyVectors, kana_leave_their_mark_before_the_unprintables) {
    const Vector vectors[] = {
        {u"\u30E9", "7F42010101FF0280FF8000", "80BDFEFEFE00FD7F007FFF00"},
        {u"\u30E9-1", "7F4238010101FF0280FF80FF01800B068200", "80BDC7FEFEFE00FD7F007F00FE7FF4F97DFF00"},
        {u"\u30E9\u30A4\u30D6-1", "7F427F037F2C38010202030101FF0280FF80FF018013068200",
         "80BD80FC80D3C7FEFDFDFCFEFE00FD7F007F00FE7FECF97DFF00"},
        {u"\u30A2-", "7F02010101FF0280FF80FF01800B068200", "80FDFEFEFE00FD7F007F00FE7FF4F97DFF00"},
        {u"\u3041-1", "7F0238010101A0FF0280FF80FF01800B068200", "80FDC7FEFEFE5F00FD7F007F00FE7FF4F97DFF00"},
        {u"\u3042-1", "7F0238010101FF0280FF80FF01800B068200", "80FDC7FEFEFE00FD7F007F00FE7FF4F97DFF00"},
        {u"-\u30E9", "7F42010101FF0280FF80FF018007068200", "80BDFEFEFE00FD7F007F00FE7FF8F97DFF00"},
        {u"a\u30C3'b", "4A7F1C4C010101A0FF0280FF80FF01800F068000", "B580E3B3FEFEFE5F00FD7F007F00FE7FF0F97FFF00"},
        {u"\u3072\u3089\u304C\u306A-2", "7F2B7F427F0A7F223A010202030101FF0280FF80FF018017068200",
         "80D480BD80F580DDC5FEFDFDFCFEFE00FD7F007F00FE7FE8F97DFF00"},
        {u"\u30E9\u00E9-x", "7F42517501020E0101FF0280FF80FF01800F068200",
         "80BDAE8AFEFDF1FEFE00FD7F007F00FE7FF0F97DFF00"},
    };
    for (const Vector& vector : vectors) {
        EXPECT_EQ(ascending(vector.text), vector.ascending);
        EXPECT_EQ(descending(vector.text), vector.descending);
    }
}

TEST(SortKeyVectors, letters_that_expand_count_as_many_positions) {
    const std::string many_unaccented = [] {
        std::string text;
        for (int i = 0; i < 26; ++i) text += "02";
        return text;
    }();
    EXPECT_EQ(ascending(u"Plutzer Lebensmittelgro\u00DFm\u00E4rkte AG"),
              "665E6F6D785169075E514C51626B60596D6D515E5569646B6B604A695C6D51074A5501" + many_unaccented + "1300");
    EXPECT_EQ(ascending(u"NuNuCa Nu\u00DF-Nougat-Creme"),
              "626F626F4D4A07626F6B6B62646F554A6D4D69516051010101018033068280"
              "4B068200");
    EXPECT_EQ(ascending(u"Gr\u00F6\u00DFen\u00E4nderung"),
              "5569646B6B51624A624F51696F62550102021302020202"
              "1300");
    EXPECT_EQ(ascending(u"\u00C6-\u00E9"), "4A51510102020E010101800F068200");
}

TEST(SortKeyVectors, order_of_jet_3_gives_the_keys_of_its_files) {
    EXPECT_EQ(ascending(u"Plutzer Lebensmittelgro\u00DFm\u00E4rkte AG", TextOrder::kGeneral97),
              "736D78777E6675116D66616670766F6A7777666D68757276766F60756C776611606802222222222260");
    EXPECT_EQ(ascending(u"Gr\u00F6\u00DFe", TextOrder::kGeneral97), "6875727676660600");
    EXPECT_EQ(ascending(u"Stra\u00DFe \u00E9", TextOrder::kGeneral97), "76777560767666116602222240");
    EXPECT_EQ(ascending(u"Smith", TextOrder::kGeneral97), "766F6A776900");
    EXPECT_EQ(descending(u"Smith", TextOrder::kGeneral97), "8990958896FF");
    EXPECT_EQ(ascending(u"M\u00FCller", TextOrder::kGeneral97), "6F786D6D66750600");
    EXPECT_EQ(ascending(u"\u00E9t\u00E9", TextOrder::kGeneral97), "6677660440");
    EXPECT_EQ(ascending(std::u16string(u"Lock\0", 5), TextOrder::kGeneral97), "6D72626C1000");
}

TEST(SortKeyVectors, order_version_1_gives_the_keys_of_its_files) {
    constexpr auto k1 = TextOrder::kGeneral1;
    EXPECT_EQ(ascending(u"Smith", k1), "0E910E510E320E990E2C0100");
    EXPECT_EQ(ascending(u"Tables", k1), "0E990E020E090E480E210E910100");
    EXPECT_EQ(ascending(u"\u00E9t\u00E9", k1), "0E210E990E21010E020E00");
    EXPECT_EQ(ascending(u"O'Brien", k1), "0E7C0E090E8A0E320E210E7001010101800B068000");
    EXPECT_EQ(ascending(u"a-b", k1), "0E020E0901010101800B068200");
    EXPECT_EQ(descending(u"a-b", k1), "F1FDF1F6FEFEFEFE7FF4F97DFF00");
    EXPECT_EQ(ascending(u"\xD83D\xDE00", k1), "B03FB6FC013F3F00");
    EXPECT_EQ(ascending(u"", k1), "0100");
    EXPECT_EQ(ascending(u"\u30E9-1", k1), "7F420D19010101FF0280FF80FF01800B068200");
    EXPECT_EQ(ascending(u"\u30E9\u30A4\u30D6-1", k1), "7F427F037F2C0D19010202030101FF0280FF80FF018013068200");
}

}  // namespace
