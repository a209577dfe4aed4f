// Statements of one frame are the same statement with other literals.
#include "jet/sql/skim.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "jet/sql/parser.h"

namespace jet::sql {
namespace {

std::u16string frame_of(std::u16string_view statement) {
    const auto skimmed = skim(statement);
    return skimmed ? skimmed->frame : u"none";
}

TEST(Skim, whole_numbers_and_texts_are_taken_out) {
    const auto skimmed = skim(u"SELECT * FROM [T 1] WHERE [a2]=45 AND b3 LIKE \"*[0-9]x*\" OR c='7'");
    ASSERT_TRUE(skimmed);
    EXPECT_EQ(skimmed->literals, (std::vector<Literal>{std::int64_t{45}, u"*[0-9]x*", u"7"}));
    EXPECT_EQ(skimmed->frame, frame_of(u"SELECT * FROM [T 1] WHERE [a2]=6 AND b3 LIKE '' OR c=\"\""));
    EXPECT_NE(skimmed->frame, frame_of(u"SELECT * FROM [T 2] WHERE [a2]=6 AND b3 LIKE '' OR c=\"\""));
    EXPECT_NE(skimmed->frame, frame_of(u"SELECT * FROM [T 1] WHERE [a2]='' AND b3 LIKE '' OR c=\"\""));
}

TEST(Skim, literals_that_take_the_lexer_are_left_to_it) {
    for (const std::u16string_view literal :
         {u"-4", u"4.5", u".5", u"4e3", u"4E", u"#01/02/2005#", u"'a''b'", u"\"a\"\"b\"", u"'a", u"1234567890123456789",
          u"[a", u"4%", u"\x01", u"\x02"}) {
        EXPECT_EQ(skim(u"SELECT * FROM T WHERE a=" + std::u16string(literal)), std::nullopt) << to_utf8(literal);
    }
}

// Random pieces, the literals among them made up twice.
TEST(Skim, statements_of_one_frame_have_one_shape) {
    static constexpr std::u16string_view kPieces[] = {
        u"SELECT", u"*", u" FROM ", u"[T]", u" WHERE ", u"a", u"E", u"_", u"$", u"=",  u"<",  u">",    u" ",
        u"(",      u")", u" AND ",  u",",   u";",       u"[", u"]", u".", u"-", u"\"", u"\'", u"\xE4", u"\xA0",
    };
    std::mt19937 engine(5);
    const auto random = [&] { return static_cast<std::uint32_t>(engine()); };
    const auto number = [&] {
        std::u16string digits;
        for (std::uint32_t left = 1 + random() % 20; left > 0; --left) {
            digits += static_cast<char16_t>(u'0' + random() % 10);
        }
        return digits;
    };
    const auto text = [&] {
        static constexpr std::u16string_view kInside = u"a[]1 \"'#.-E";
        std::u16string inside;
        for (std::uint32_t left = random() % 6; left > 0; --left) inside += kInside[random() % kInside.size()];
        const char16_t delimiter = random() % 2 == 0 ? u'"' : u'\'';
        return delimiter + inside + delimiter;
    };
    int compared = 0;
    for (int round = 0; round < 200000; ++round) {
        std::u16string one;
        std::u16string two;
        for (std::uint32_t left = 1 + random() % 8; left > 0; --left) {
            const std::uint32_t kind = random() % 4;
            if (kind < 2) {
                const std::u16string_view piece = kPieces[random() % std::size(kPieces)];
                one += piece;
                two += piece;
            } else {
                one += kind == 2 ? number() : text();
                two += kind == 2 ? number() : text();
            }
        }
        const auto skimmed = skim(one);
        const auto other = skim(two);
        if (!skimmed || !other || skimmed->frame != other->frame) continue;
        const Lexed lexed = lex(one);
        if (lexed.tokens.back().kind == TokenKind::kBad) continue;  // never remembered
        ++compared;
        const Lexed other_lexed = lex(two);
        EXPECT_EQ(shape_of(lexed), shape_of(other_lexed)) << to_utf8(one) << "\n" << to_utf8(two);
        EXPECT_EQ(skimmed->literals, lexed.literals) << to_utf8(one);
        EXPECT_EQ(other->literals, other_lexed.literals) << to_utf8(two);
    }
    EXPECT_GT(compared, 5000);
}

TEST(StatementCache, remembered_statement_is_recalled_by_its_frame) {
    const std::u16string statement = u"SELECT * FROM [Remembered] WHERE [a]=4";
    EXPECT_EQ(recall_statement(frame_of(statement)), nullptr);
    const auto parsed = parse(lex(statement));
    remember_statement(frame_of(statement), parsed);
    EXPECT_EQ(recall_statement(frame_of(u"SELECT * FROM [Remembered] WHERE [a]=12")), parsed);
}

}  // namespace
}  // namespace jet::sql
