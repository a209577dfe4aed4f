// Conditions over a made-up row: literals, precedence, three-valued logic, comparison, LIKE.
#include <map>
#include <optional>

#include "jet/sql/scalar.h"
#include "sql_made_up_row.h"

namespace {

using namespace sql_test;

jet::Numeric numeric(std::uint32_t magnitude, std::uint8_t scale, bool negative = false) {
    jet::Numeric value;
    value.scale = scale;
    value.bytes[0] = negative ? 0x80 : 0;
    for (std::size_t i = 0; i < 4; ++i) value.bytes[13 + i] = static_cast<std::uint8_t>(magnitude >> (8 * i));
    return value;
}

TEST(Lexis, keywords_and_names_ignore_case) {
    Row row;
    row.set(u"ProjID", std::int32_t{5});
    EXPECT_TRUE(row.meets(u"PROJID=5 and projid=5 aNd [pRoJiD]=5"));
}

TEST(Lexis, brackets_hold_reserved_words_and_blanks) {
    Row row;
    row.set(u"Date", jet::Date{1}).set(u"Client ID", std::int32_t{3});
    EXPECT_TRUE(row.meets(u"[Date]=#12/31/1899# AND [Client ID]=3"));
    EXPECT_EQ(3061, condition_error(u"[SELECT]=1"));
    EXPECT_EQ(3061, condition_error(u"[AND]=1"));
}

TEST(Lexis, either_quote_delimits_and_doubled_ones_stand_for_one) {
    Row row;
    row.set(u"Name", std::u16string(u"O'Brien \"Bob\""));
    EXPECT_TRUE(row.meets(u"[Name]=\"O'Brien \"\"Bob\"\"\""));
    EXPECT_TRUE(row.meets(u"[Name]='O''Brien \"Bob\"'"));
    row.set(u"Name", std::u16string(u"a\\"));
    EXPECT_TRUE(row.meets(u"[Name]=\"a\\\""));
}

TEST(Lexis, unescaped_values_parse_as_they_come) {
    Row row;
    row.set(u"Name", std::u16string(u"b"));
    EXPECT_FALSE(row.meets(u"[Name]=\"\"\"\""));
    row.set(u"Name", std::u16string(u"\""));
    EXPECT_TRUE(row.meets(u"[Name]=\"\"\"\""));
    row.set(u"Name", std::u16string(u"b"));
    EXPECT_TRUE(row.meets(u"[Name]=\"a\" OR \"1\"=\"1\""));
    EXPECT_EQ(3075, condition_error(u"[Name]=\"\"\""));
}

TEST(Lexis, anything_may_stand_in_a_text_literal) {
    Row row;
    row.set(u"Name", std::u16string(u"a\r\n*?#[];-- b"));
    EXPECT_TRUE(row.meets(u"[Name]=\"a\r\n*?#[];-- b\""));
    const std::u16string nul(1, u'\0');
    row.set(u"Name", u"a" + nul + u"b");
    EXPECT_TRUE(row.meets(u"[Name]=\"a" + nul + u"b\""));
    EXPECT_EQ(3075, condition_error(u"[ProjID]=1" + nul));
}

TEST(Lexis, integers_have_an_optional_minus) {
    Row row;
    row.set(u"ProjID", INT32_MIN);
    EXPECT_TRUE(row.meets(u"[ProjID]=-2147483648"));
    EXPECT_TRUE(row.meets(u"[ProjID]=- 2147483648"));
    EXPECT_FALSE(row.meets(u"[ProjID]=2147483648"));
    EXPECT_TRUE(row.meets(u"[ProjID]<99999999999999999999"));
    EXPECT_TRUE(row.meets(u"[ProjID]>-99999999999999999999"));
    row.set(u"ProjID", std::int32_t{7});
    EXPECT_TRUE(row.meets(u"[ProjID]=007"));
}

TEST(Lexis, decimals_and_exponents) {
    Row row;
    row.set(u"Weight", 12.5).set(u"ProjID", std::int32_t{1000});
    EXPECT_TRUE(row.meets(u"[Weight]=12.5"));
    EXPECT_TRUE(row.meets(u"[Weight]=12.50000"));
    EXPECT_TRUE(row.meets(u"[Weight]>.5"));
    EXPECT_TRUE(row.meets(u"[Weight]>-.5"));
    EXPECT_TRUE(row.meets(u"[ProjID]=1E3"));
    EXPECT_TRUE(row.meets(u"[ProjID]=1000."));
    EXPECT_TRUE(row.meets(u"[Weight]=1.25e+1"));
    EXPECT_TRUE(row.meets(u"[Weight]=125e-1"));
    EXPECT_TRUE(row.meets(u"[Weight]<1e999"));
    EXPECT_TRUE(row.meets(u"[Weight]>-1e999"));
    EXPECT_TRUE(row.meets(u"[Weight]>1e-999"));
}

TEST(Precedence, not_binds_before_and_before_or) {
    Row row;
    row.set(u"ProjID", std::int32_t{1});
    EXPECT_TRUE(row.meets(u"[ProjID]=1 OR [ProjID]=2 AND [ProjID]=3"));
    EXPECT_FALSE(row.meets(u"([ProjID]=1 OR [ProjID]=2) AND [ProjID]=3"));
    EXPECT_TRUE(row.meets(u"NOT [ProjID]=2 AND [ProjID]=1"));
    EXPECT_TRUE(row.meets(u"NOT [ProjID]=1 OR [ProjID]=1"));
    EXPECT_FALSE(row.meets(u"NOT ([ProjID]=1 OR [ProjID]=2)"));
}

TEST(Precedence, chains_in_parentheses_keep_all_their_terms) {
    Row row;
    row.set(u"ProjID", std::int32_t{1}).set(u"Small", std::uint8_t{2});
    EXPECT_FALSE(row.meets(u"([ProjID]=1 AND [Small]=2) AND ([ProjID]=1 AND ([Small]=3))"));
    EXPECT_TRUE(row.meets(u"([ProjID]=1 AND [Small]=2) AND ([ProjID]=1 AND ([Small]=2)) AND [ProjID]=1"));
    EXPECT_TRUE(row.meets(u"([ProjID]=9 OR [Small]=9) OR ([ProjID]=8 OR ([Small]=2))"));
    EXPECT_FALSE(row.meets(u"([ProjID]=9 OR [Small]=9) OR ([ProjID]=8 OR ([Small]=7)) OR [ProjID]=6"));
}

TEST(ThreeValues, comparison_with_null_is_unknown) {
    const Row row;
    for (const auto* text : {u"[ProjID]=0", u"[ProjID]<>0", u"[ProjID]<1", u"[Name]=\"\"", u"[Name] LIKE \"*\"",
                             u"[Name] NOT LIKE \"*\"", u"[Name] LIKE NULL", u"\"a\" LIKE [Name]", u"[ProjID]=NULL",
                             u"NULL=NULL", u"[ProjID]=[Client ID]", u"NOT [ProjID]=0", u"[Date]=#1/1/2005#"}) {
        EXPECT_EQ(Truth::kUnknown, row.truth(text)) << jet::to_utf8(text);
        EXPECT_FALSE(row.meets(text));
    }
}

TEST(ThreeValues, and_or_follow_the_tables) {
    Row row;
    row.set(u"Small", std::uint8_t{1});
    EXPECT_EQ(Truth::kTrue, row.truth(u"[Small]=1 OR [ProjID]=0"));
    EXPECT_EQ(Truth::kTrue, row.truth(u"[ProjID]=0 OR [Small]=1"));
    EXPECT_EQ(Truth::kUnknown, row.truth(u"[ProjID]=0 OR [Small]=2"));
    EXPECT_EQ(Truth::kFalse, row.truth(u"[ProjID]=0 AND [Small]=2"));
    EXPECT_EQ(Truth::kFalse, row.truth(u"[Small]=2 AND [ProjID]=0"));
    EXPECT_EQ(Truth::kUnknown, row.truth(u"[ProjID]=0 AND [Small]=1"));
    EXPECT_EQ(Truth::kUnknown, row.truth(u"NOT ([ProjID]=0 AND [Small]=1)"));
    EXPECT_EQ(Truth::kTrue, row.truth(u"NOT ([ProjID]=0 AND [Small]=2)"));
}

TEST(ThreeValues, is_null_is_never_unknown) {
    Row row;
    row.set(u"Name", std::u16string());
    EXPECT_EQ(Truth::kTrue, row.truth(u"[ProjID] IS NULL"));
    EXPECT_EQ(Truth::kFalse, row.truth(u"[ProjID] IS NOT NULL"));
    EXPECT_EQ(Truth::kFalse, row.truth(u"[Name] IS NULL"));
    EXPECT_EQ(Truth::kTrue, row.truth(u"[Name] IS NOT NULL"));
    EXPECT_EQ(Truth::kTrue, row.truth(u"NULL IS NULL"));
    EXPECT_EQ(Truth::kFalse, row.truth(u"5 IS NULL"));
}

TEST(Comparison, operands_may_stand_on_either_side) {
    Row row;
    row.set(u"ProjID", std::int32_t{5});
    EXPECT_TRUE(row.meets(u"5=[ProjID]"));
    EXPECT_TRUE(row.meets(u"4<[ProjID]"));
    EXPECT_TRUE(row.meets(u"6>=[ProjID]"));
    EXPECT_FALSE(row.meets(u"5<>[ProjID]"));
}

TEST(Comparison, every_operator) {
    Row row;
    row.set(u"ProjID", std::int32_t{5});
    for (const auto& [text, expected] : std::map<std::u16string, bool>{{u"[ProjID]=5", true},
                                                                       {u"[ProjID]<>5", false},
                                                                       {u"[ProjID]<5", false},
                                                                       {u"[ProjID]>5", false},
                                                                       {u"[ProjID]<=5", true},
                                                                       {u"[ProjID]>=5", true},
                                                                       {u"[ProjID]<6", true},
                                                                       {u"[ProjID]>4", true},
                                                                       {u"[ProjID]<=4", false},
                                                                       {u"[ProjID]>=6", false},
                                                                       {u"[ProjID]<>6", true},
                                                                       {u"[ProjID]=6", false}}) {
        EXPECT_EQ(expected, row.meets(text)) << jet::to_utf8(text);
    }
}

TEST(Comparison, text_ignores_case_and_trailing_blanks_but_not_accents) {
    Row row;
    row.set(u"Name", std::u16string(u"Dan "));
    EXPECT_TRUE(row.meets(u"[Name]=\"DAN\""));
    EXPECT_TRUE(row.meets(u"[Name]=\"dan   \""));
    EXPECT_FALSE(row.meets(u"[Name]=\" Dan\""));
    EXPECT_FALSE(row.meets(u"[Name] LIKE \"Dan\""));
    EXPECT_TRUE(row.meets(u"[Name] LIKE \"dan \""));
    row.set(u"Name", std::u16string(u"caf\u00E9"));
    EXPECT_TRUE(row.meets(u"[Name]=\"CAF\u00C9\""));
    EXPECT_FALSE(row.meets(u"[Name]=\"cafe\""));
    EXPECT_TRUE(row.meets(u"[Name]>\"cafe\""));
    row.set(u"Name", std::u16string(u"a  b"));
    EXPECT_FALSE(row.meets(u"[Name]=\"a b\""));
}

TEST(Comparison, numbers_of_all_types_compare_by_value) {
    Row row;
    row.set(u"ProjID", std::int32_t{12}).set(u"Price", jet::Currency{125000}).set(u"Rate", 12.5F).set(u"Weight", 12.5);
    row.set(u"Small", std::uint8_t{12})
        .set(u"Short", std::int16_t{-12})
        .set(u"Flag", true)
        .set(u"Exact", numeric(1250, 2));
    for (const auto* text :
         {u"[Price]=12.5", u"[Rate]=12.5", u"[Weight]=[Rate]", u"[Price]=[Rate]", u"[Price]>[ProjID]",
          u"[ProjID]<[Price]", u"[Small]=[ProjID]", u"[Short]=-12", u"[Flag]=-1", u"[Flag]<>0", u"[Exact]=12.5",
          u"[Exact]=[Price]", u"[Exact]=[Rate]", u"[Price]=12.50", u"[Price]<12.50001", u"[ProjID]=12.0",
          u"[ProjID]<12.5", u"[Short]>-12.5", u"[Small]>[Short]"}) {
        EXPECT_TRUE(row.meets(text)) << jet::to_utf8(text);
    }
    row.set(u"Price", jet::Currency{-5000});
    EXPECT_TRUE(row.meets(u"[Price]<0"));
    EXPECT_TRUE(row.meets(u"[Price]>-1"));
    EXPECT_TRUE(row.meets(u"0>[Price]"));
    row.set(u"Price", jet::Currency{1000});
    EXPECT_TRUE(row.meets(u"[Price]=0.1"));
    row.set(u"Exact", numeric(1250, 2, true));
    EXPECT_TRUE(row.meets(u"[Exact]=-12.5"));
}

TEST(Comparison, large_amounts_are_compared_exactly) {
    Row row;
    row.set(u"Price", jet::Currency{INT64_MAX});
    EXPECT_TRUE(row.meets(u"[Price]=922337203685477.5807"));
    EXPECT_FALSE(row.meets(u"[Price]=922337203685477.5806"));
    EXPECT_TRUE(row.meets(u"[Price]>922337203685477"));
    EXPECT_TRUE(row.meets(u"[Price]<9223372036854775807"));
}

TEST(Comparison, dates_before_day_zero_compare_by_day_then_time) {
    Row row;
    row.set(u"Date", jet::Date{-1.25});  // 29 December 1899, 06:00
    EXPECT_TRUE(row.meets(u"[Date]>#12/29/1899#"));
    EXPECT_TRUE(row.meets(u"[Date]<#12/30/1899#"));
    row.set(u"Date", jet::Date{-1});
    EXPECT_TRUE(row.meets(u"[Date]=#12/29/1899#"));
}

TEST(Comparison, upper_bound_on_a_day_takes_its_midnight_only) {
    Row row;
    row.set(u"Date", jet::Date{38412});
    EXPECT_TRUE(row.meets(u"[Date]<=#03/01/2005# AND [Date]>=#03/01/2005#"));
    row.set(u"Date", jet::Date{38412.5});
    EXPECT_FALSE(row.meets(u"[Date]<=#03/01/2005#"));
    EXPECT_TRUE(row.meets(u"[Date]>=#03/01/2005#"));
}

TEST(Comparison, dates_and_numbers_compare_by_the_day_count) {
    Row row;
    row.set(u"Date", jet::Date{38412});
    EXPECT_TRUE(row.meets(u"[Date]=38412"));
    EXPECT_TRUE(row.meets(u"[Date]>38411.5"));
}

TEST(LikeCondition, memo_and_text_match_the_whole_value) {
    Row row;
    row.set(u"Notes", std::u16string(u",1,12,")).set(u"Name", std::u16string());
    EXPECT_TRUE(row.meets(u"[Notes] LIKE \"*12*\""));
    EXPECT_FALSE(row.meets(u"[Notes] LIKE \"12\""));
    EXPECT_TRUE(row.meets(u"[Notes] NOT LIKE \"12\""));
    EXPECT_TRUE(row.meets(u"[Name] LIKE \"*\""));
    EXPECT_TRUE(row.meets(u"[Name] LIKE \"\""));
    EXPECT_FALSE(row.meets(u"[Notes] LIKE \"\""));
}

TEST(LikeCondition, numbers_match_by_their_decimal_text) {
    Row row;
    row.set(u"ProjID", std::int32_t{-120}).set(u"Price", jet::Currency{-7500}).set(u"Rate", 1.5F).set(u"Weight", 0.1);
    row.set(u"Exact", numeric(5, 3)).set(u"Flag", true).set(u"Small", std::uint8_t{7});
    EXPECT_TRUE(row.meets(u"[ProjID] LIKE \"-12?\""));
    EXPECT_TRUE(row.meets(u"[ProjID] LIKE -120"));
    EXPECT_TRUE(row.meets(u"[Price] LIKE \"-0.75\""));
    EXPECT_TRUE(row.meets(u"[Rate] LIKE \"1.5\""));
    EXPECT_TRUE(row.meets(u"[Weight] LIKE \"0.1\""));
    EXPECT_TRUE(row.meets(u"[Exact] LIKE \"0.005\""));
    EXPECT_TRUE(row.meets(u"[Flag] LIKE \"-1\""));
    EXPECT_TRUE(row.meets(u"[Small] LIKE \"#\""));
    row.set(u"Price", jet::Currency{12345678901});
    EXPECT_TRUE(row.meets(u"[Price] LIKE \"1234567.8901\""));
    row.set(u"Price", jet::Currency{10000000});
    EXPECT_TRUE(row.meets(u"[Price] LIKE \"1000\""));
    row.set(u"Price", jet::Currency{INT64_MIN});
    EXPECT_TRUE(row.meets(u"[Price] LIKE \"-922337203685477.5808\""));
    row.set(u"Price", jet::Currency{0}).set(u"Exact", numeric(0, 2));
    EXPECT_TRUE(row.meets(u"[Price] LIKE \"0\" AND [Exact] LIKE \"0\""));
    row.set(u"Weight", 1e20);
    EXPECT_TRUE(row.meets(u"[Weight] LIKE \"1E+20\""));
}

TEST(LikeCondition, pattern_may_come_from_a_column) {
    Row row;
    row.set(u"Name", std::u16string(u"My Love")).set(u"Notes", std::u16string(u"*love"));
    EXPECT_TRUE(row.meets(u"[Name] LIKE [Notes]"));
    EXPECT_TRUE(row.meets(u"\"x love\" LIKE [Notes]"));
    row.set(u"Notes", std::u16string(u"[z-a]"));
    EXPECT_EQ(Truth::kUnknown, row.truth(u"[Name] LIKE [Notes]"));
}

TEST(Evaluation, only_columns_of_the_condition_are_read) {
    Row row;
    row.set(u"ProjID", std::int32_t{1}).set(u"Name", std::u16string(u"a"));
    EXPECT_FALSE(row.meets(u"[ProjID]=2 AND [Name]=\"a\""));
    EXPECT_EQ(1u, row.reads().size());
    EXPECT_EQ(1, row.reads().at(0));
}

TEST(OrderOfValues, null_first_then_by_value) {
    const auto before = [](const Value& a, const Value& b) {
        return compare_for_order(a, b) < 0 && compare_for_order(b, a) > 0;
    };
    EXPECT_TRUE(before(Value(), std::int32_t{INT32_MIN}));
    EXPECT_TRUE(before(std::int32_t{1}, std::int32_t{2}));
    EXPECT_TRUE(before(jet::Date{-1}, jet::Date{-1.25}));
    EXPECT_TRUE(before(std::u16string(u"a"), std::u16string(u"B")));
    EXPECT_TRUE(before(std::vector<std::uint8_t>{1}, std::vector<std::uint8_t>{1, 0}));
    EXPECT_TRUE(before(true, false));
    EXPECT_TRUE(compare_for_order(Value(), Value()) == 0);
    EXPECT_TRUE(compare_for_order(std::u16string(u"a"), std::u16string(u"A")) == 0);
}

}  // namespace
