// Code pages of one and two bytes a character, and files in them.
#include "jet/base/code_page.h"

#include <gtest/gtest.h>

#include <random>

#include "jet/base/format.h"
#include "jet/schema/properties.h"
#include "jet/schema/table_def.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/new_column.h"
#include "tests/support/code_page_file.h"
#include "tests/support/temp_folder.h"

#ifndef _WIN32
#include <iconv.h>
#endif

namespace jet {
namespace {

struct Sample {
    std::uint16_t code_page;
    std::u16string text;
    std::string bytes;
};

// "Last departure" in the language of each.
const Sample kSamples[] = {
    {932, u"\u6700\u5F8C\u306E\u51FA\u767A A\uFF97", "\x8D\xC5\x8C\xE3\x82\xCC\x8F\x6F\x94\xAD A\xD7"},
    {936, u"\u6700\u540E\u51FA\u53D1 \u20AC", "\xD7\xEE\xBA\xF3\xB3\xF6\xB7\xA2 \x80"},
    {949, u"\uB9C8\uC9C0\uB9C9 \uCD9C\uBC1C", "\xB8\xB6\xC1\xF6\xB8\xB7 \xC3\xE2\xB9\xDF"},
    {950, u"\u6700\u5F8C\u51FA\u767C", "\xB3\xCC\xAB\xE1\xA5\x58\xB5\x6F"},
};

ByteVector bytes_of(const std::string& text) { return {text.begin(), text.end()}; }

class DoubleByteCodePage : public testing::TestWithParam<std::uint16_t> {
protected:
    std::u16string decoded(ByteSpan bytes) const {
        std::u16string text;
        decode_narrow(bytes, GetParam(), text);
        return text;
    }
    ByteVector encoded(std::u16string_view text) const { return encode_narrow(text, GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Each, DoubleByteCodePage, testing::Values(932, 936, 949, 950),
                         [](const auto& tested) { return std::to_string(tested.param); });

TEST(CodePage, samples_have_the_bytes_of_their_code_page) {
    for (const Sample& sample : kSamples) {
        EXPECT_EQ(encode_narrow(sample.text, sample.code_page), bytes_of(sample.bytes)) << sample.code_page;
        std::u16string text;
        decode_narrow(bytes_of(sample.bytes), sample.code_page, text);
        EXPECT_EQ(text, sample.text) << sample.code_page;
        EXPECT_TRUE(is_in_code_page(sample.text, sample.code_page));
    }
    EXPECT_FALSE(is_in_code_page(u"\u0E01", 932));
    EXPECT_EQ(encode_narrow(u"a\u0E01b", 932), bytes_of("a?b"));
}

TEST_P(DoubleByteCodePage, every_pair_is_read_back_from_what_it_is_written_as) {
    int characters = 0;
    for (int lead = 0x80; lead <= 0xFF; ++lead) {
        for (int trail = 0; trail <= 0xFF; ++trail) {
            const ByteVector pair{static_cast<std::uint8_t>(lead), static_cast<std::uint8_t>(trail)};
            const std::u16string text = decoded(pair);
            ASSERT_EQ(decoded(encoded(text)), text) << lead << " " << trail;
            if (text.size() == 1) ++characters;
            if (text.size() == 2) {
                EXPECT_EQ(encoded(text), pair) << "bytes that are no character stay";
            }
        }
    }
    EXPECT_GT(characters, 9000);
}

TEST_P(DoubleByteCodePage, what_random_bytes_are_written_as_stays_the_same_from_then_on) {
    std::mt19937 random(GetParam());
    int as_they_were = 0;
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes(random() % 12);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() % 128 : random());
        // Another pair of a character that has two becomes the usual one.
        const ByteVector written = encoded(decoded(bytes));
        ASSERT_EQ(written.size(), bytes.size());
        ASSERT_EQ(encoded(decoded(written)), written);
        if (written == bytes) ++as_they_were;
    }
    EXPECT_GT(as_they_were, 18000);
}

#ifndef _WIN32
// What the system's own tables say of a pair; 0: nothing.
char16_t pair_by_the_system(iconv_t converter, std::uint8_t lead, std::uint8_t trail) {
    char in[] = {static_cast<char>(lead), static_cast<char>(trail)};
    char16_t out[4] = {};
    char* from = in;
    char* to = reinterpret_cast<char*>(out);
    std::size_t from_bytes = sizeof in;
    std::size_t to_bytes = sizeof out;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    const bool good = iconv(converter, &from, &from_bytes, &to, &to_bytes) != static_cast<std::size_t>(-1);
    return good && to_bytes == sizeof out - sizeof out[0] ? out[0] : char16_t{0};
}

// Whether the unit is for characters of the user's own.
bool is_own(char16_t unit) { return unit >= 0xE000 && unit < 0xF900; }

// The tables come from another source than the system's: they agree but for a handful that platforms have always told
// apart, and for the user's own characters.
TEST_P(DoubleByteCodePage, tables_agree_with_the_systems) {
    const char* const names[] = {"CP932", "CP936", "CP949", "BIG5"};
    const std::size_t index = GetParam() == 932 ? 0 : GetParam() == 936 ? 1 : GetParam() == 949 ? 2 : 3;
    const iconv_t converter = iconv_open("UTF-16LE", names[index]);
    if (converter == reinterpret_cast<iconv_t>(-1)) GTEST_SKIP() << "the system does not know " << names[index];
    int same = 0;
    int different = 0;
    for (int lead = 0x81; lead <= 0xFE; ++lead) {
        for (int trail = 0x40; trail <= 0xFE; ++trail) {
            const ByteVector pair{static_cast<std::uint8_t>(lead), static_cast<std::uint8_t>(trail)};
            const char16_t by_system = pair_by_the_system(converter, pair[0], pair[1]);
            const std::u16string text = decoded(pair);
            if (by_system == 0 || text.size() != 1 || is_own(text[0])) continue;
            ++(text[0] == by_system ? same : different);
        }
    }
    iconv_close(converter);
    EXPECT_GT(same, 7000);
    EXPECT_LT(different, 30);
}
#endif

TEST(CodePageFile, texts_of_two_bytes_a_character_are_kept_and_limited_by_bytes) {
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.code_page);
        const testing_support::TempFolder folder;
        CreateOptions options;
        options.format = &kJet3;
        {
            auto database = Database::create(folder.file("a.mdb"), options);
            NewColumn name = new_column(u"Name", ColumnType::kText);
            name.text_characters = 6;
            database->create_table(u"Texts", std::vector{new_column(u"Id", ColumnType::kLong, true), name,
                                                         new_column(u"Note", ColumnType::kMemo)});
            database->close();
        }
        testing_support::change_code_page(folder.file("a.mdb"), sample.code_page);
        const std::u16string three = sample.text.substr(0, 3);
        {
            const auto database = Database::open(folder.file("a.mdb"), {});
            Table& table = *database->find_table(u"Texts");
            table.insert({Null(), three, sample.text});
            EXPECT_EQ(error_number([&] { table.insert({Null(), three + u"x", Null()}); }), errors::kTextTooLong);
            database->close();
        }
        const auto database = Database::open(folder.file("a.mdb"), {});
        Table& table = *database->find_table(u"Texts");
        const std::vector<Value> values = row_values(table, *table.next_row({}));
        EXPECT_EQ(values[1], Value(three));
        EXPECT_EQ(values[2], Value(sample.text));
        expect_sound(*database);
    }
}

TEST(CodePageFile, names_of_two_bytes_a_character_are_written_and_read_back) {
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.code_page);
        TableDef def;
        def.format = &kJet3;
        def.max_columns = 1;
        def.code_page = sample.code_page;
        ColumnDef column;
        column.name = sample.text;
        column.type = ColumnType::kLong;
        column.length_bytes = 4;
        column.flags = jet4::tdef::kFlagFixed;
        column.code_page = sample.code_page;
        def.columns.push_back(column);
        const ByteVector bytes = build_table_def(def);
        EXPECT_EQ(parse_table_def(bytes, 1, kJet3, sample.code_page).columns[0].name, sample.text);

        PropertySet properties;
        properties.code_page = sample.code_page;
        properties.names.push_back(sample.text);
        PropertyBlock block;
        block.owner = sample.text;
        properties.blocks.push_back(block);
        const PropertySet back = parse_properties(build_properties(properties), sample.code_page);
        ASSERT_EQ(back.blocks.size(), 1u);
        EXPECT_EQ(back.blocks[0].owner, sample.text);
        EXPECT_EQ(back.names, properties.names);
    }
}

}  // namespace
}  // namespace jet
