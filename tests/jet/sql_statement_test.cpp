// Statements without a database: tokens, grammar, error numbers, conditions over a made-up row.
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "jet/error.h"
#include "jet/sql/condition.h"
#include "jet/sql/parser.h"
#include "jet/sql/scalar.h"

namespace {

using jet::ColumnType;
using jet::Value;
using namespace jet::sql;

jet::TableDef songs() {
    jet::TableDef def;
    def.name = u"Songs";
    const auto add = [&def](const char16_t* name, ColumnType type) {
        jet::ColumnDef column;
        column.name = name;
        column.type = type;
        column.number = static_cast<std::uint16_t>(def.columns.size());
        def.columns.push_back(column);
    };
    add(u"ProjID", ColumnType::kLong);
    add(u"Name", ColumnType::kText);
    add(u"Date", ColumnType::kDate);
    add(u"Notes", ColumnType::kMemo);
    add(u"Price", ColumnType::kCurrency);
    add(u"Rate", ColumnType::kSingle);
    add(u"Weight", ColumnType::kDouble);
    add(u"Small", ColumnType::kByte);
    add(u"Short", ColumnType::kInteger);
    add(u"Flag", ColumnType::kBoolean);
    add(u"Exact", ColumnType::kNumeric);
    add(u"Key", ColumnType::kGuid);
    add(u"Raw", ColumnType::kBinary);
    add(u"Object", ColumnType::kOle);
    add(u"Client ID", ColumnType::kLong);
    return def;
}

class Row final : public ValueSource {
public:
    Row() : def_(songs()) {}

    Row& set(std::u16string_view column, Value value) {
        values_[*def_.find_column(column)] = std::move(value);
        return *this;
    }

    Value value(std::size_t position) const override {
        ++reads_[position];
        const auto found = values_.find(position);
        return found == values_.end() ? Value() : found->second;
    }
    bool is_null(std::size_t position) const override { return jet::is_null(value(position)); }

    Truth truth(std::u16string_view condition) const {
        const std::u16string text = u"SELECT * FROM [Songs] WHERE " + std::u16string(condition);
        Lexed lexed = lex(text);
        const auto statement = parse(lexed);
        return evaluate(*statement, bind_statement(*statement, def_, std::move(lexed.literals)), *this);
    }

    bool meets(std::u16string_view condition) const { return truth(condition) == Truth::kTrue; }
    const std::map<std::size_t, int>& reads() const { return reads_; }

private:
    jet::TableDef def_;
    std::map<std::size_t, Value> values_;
    mutable std::map<std::size_t, int> reads_;
};

int error_of(std::u16string_view text) {
    try {
        const jet::TableDef def = songs();
        Lexed lexed = lex(text);
        const auto statement = parse(lexed);
        bind_statement(*statement, def, std::move(lexed.literals));
        return 0;
    } catch (const jet::Error& error) {
        EXPECT_STRNE("", error.what());
        return error.number();
    }
}

int condition_error(std::u16string_view condition) {
    return error_of(u"SELECT * FROM [Songs] WHERE " + std::u16string(condition));
}

jet::Numeric numeric(std::uint32_t magnitude, std::uint8_t scale, bool negative = false) {
    jet::Numeric value;
    value.scale = scale;
    value.bytes[0] = negative ? 0x80 : 0;
    for (std::size_t i = 0; i < 4; ++i) value.bytes[13 + i] = static_cast<std::uint8_t>(magnitude >> (8 * i));
    return value;
}

TEST(Grammar, statements_in_use_are_accepted) {
    for (const auto* text : {
             u"SELECT * FROM [Songs]",
             u"SELECT * FROM [Songs] WHERE [ProjID]=7 AND [Name] LIKE \"*love*\"",
             u"SELECT * FROM [Songs] WHERE [Date]>=#03/01/2005# AND [Date]<=#03/31/2005# ORDER BY [Date] DESC",
             u"SELECT SUM(Weight) AS [total] FROM [Songs] WHERE [ProjID]=4",
             u"SELECT SUM([Weight]) FROM [Songs]",
             u"SELECT * FROM [Songs] WHERE ([Notes] LIKE \"*1*\" OR [Notes] LIKE \"*2*\") AND [ProjID]=-1",
             u"SELECT * FROM Songs WHERE ProjID=7 ORDER BY ProjID, [Name] ASC, Date DESC;",
             u"select * from songs where projid is not null or not (name = 'x')",
             u"SELECT*FROM[Songs]WHERE[ProjID]=5AND[Name]LIKE\"x\"OR[Date]=#1/1/2005#ORDER BY[Name]",
             u"\tSELECT\r\n*\nFROM [Songs] ; \r\n",
             u"SELECT * FROM [Songs] WHERE 5=[ProjID] AND NULL=[Name] AND NOT NOT [ProjID]=1",
             u"SELECT * FROM [Songs] WHERE [Name] NOT LIKE 'a'",
         }) {
        EXPECT_EQ(0, error_of(text)) << jet::to_utf8(text);
    }
}

TEST(Grammar, errors_of_the_select_part_are_3141) {
    for (const auto* text : {
             u"SELECT",
             u"SELECT;",
             u"SELECT *",
             u"SELECT FROM [Songs]",
             u"SELECT * FORM [Songs]",
             u"SELECT * [Songs]",
             u"SELECT * * FROM [Songs]",
             u"SELECT *, FROM [Songs]",
             u"SELECT SUM Weight FROM [Songs]",
             u"SELECT SUM() FROM [Songs]",
             u"SELECT SUM(*) FROM [Songs]",
             u"SELECT SUM(Weight FROM [Songs]",
             u"SELECT SUM(Weight) AS FROM [Songs]",
             u"SELECT SUM(Weight) total FROM [Songs]",
             u"SELECT COUNT(*) FROM [Songs]",
             u"SELECT [SUM](Weight) FROM [Songs]",
             u"SELECT [Name] FROM [Songs]",
             u"SELECT 1",
             u"SELECT SUM(Weight), SUM(Rate) FROM [Songs]",
         }) {
        EXPECT_EQ(3141, error_of(text)) << jet::to_utf8(text);
    }
}

TEST(Grammar, sum_beside_other_columns_is_3122) {
    EXPECT_EQ(3122, error_of(u"SELECT [Name], SUM(Weight) FROM [Songs]"));
    EXPECT_EQ(3122, error_of(u"SELECT SUM(Weight) AS [total], [Name] FROM [Songs]"));
    EXPECT_EQ(3122, error_of(u"SELECT *, SUM(Weight) FROM [Songs]"));
    EXPECT_EQ(3122, error_of(u"SELECT SUM(Weight) FROM [Songs] ORDER BY [Name]"));
}

TEST(Grammar, errors_of_the_from_part_are_3131) {
    for (const auto* text : {u"SELECT * FROM", u"SELECT * FROM ;", u"SELECT * FROM WHERE [ProjID]=1", u"SELECT * FROM 5",
                             u"SELECT * FROM \"Songs\"", u"SELECT * FROM [Songs], [Tracks]", u"SELECT * FROM [Songs] [S]",
                             u"SELECT * FROM [Songs] WHER [ProjID]=4", u"SELECT * FROM [Songs] = 4"}) {
        EXPECT_EQ(3131, error_of(text)) << jet::to_utf8(text);
    }
}

TEST(Grammar, where_without_expression_is_3145) {
    EXPECT_EQ(3145, error_of(u"SELECT * FROM [Songs] WHERE"));
    EXPECT_EQ(3145, error_of(u"SELECT * FROM [Songs] WHERE ;"));
    EXPECT_EQ(3145, error_of(u"SELECT * FROM [Songs] WHERE ORDER BY [Name]"));
}

TEST(Grammar, errors_of_expressions_are_3075) {
    for (const auto* text : {
             u"[ProjID]=4[Client ID]=7",
             u"[ProjID]=4 [Client ID]=7",
             u"[ProjID]=4 AND",
             u"[ProjID]=4 AND AND [ProjID]=5",
             u"[ProjID]=",
             u"=4",
             u"[ProjID]",
             u"[ProjID] 4",
             u"[ProjID]==4",
             u"[ProjID]=>4",
             u"([ProjID]=4",
             u"[ProjID]=4)",
             u"()",
             u"[ProjID] LIKE",
             u"[Name] NOT \"x\"",
             u"[Name] IS 5",
             u"[Name] IS NOT",
             u"NOT",
             u"[ProjID] BETWEEN 1 AND 2",
             u"[ProjID] IN (1, 2)",
             u"[ProjID]=4 GROUP BY [Name]",
             u"[ProjID]=4 ORDR BY [Name]",
             u"[ProjID]=4 WHERE [ProjID]=4",
             u"Len([Name])=4",
             u"[ProjID]=4+3",
             u"[ProjID]=4-3",
             u"[ProjID]=-",
             u"[ProjID]=- x",
             u"[ProjID]=*",
             u"[Songs].[ProjID]=4",
             u"[Name]=\"a\" \"b\"",
             u"[ProjID]=4 ?",
         }) {
        EXPECT_EQ(3075, condition_error(text)) << jet::to_utf8(text);
    }
}

TEST(Grammar, unbalanced_quotes_and_brackets_are_3075) {
    for (const auto* text : {u"[Name]=\"abc", u"[Name]='abc", u"[Name]=\"a\"b\"", u"[Name]=\"\"\"", u"[Name=\"x\"",
                             u"[Na[me]=4", u"[Name", u"[]=4", u"[Date]=#1/1/2005", u"[Name]]=4"}) {
        EXPECT_EQ(3075, condition_error(text)) << jet::to_utf8(text);
    }
    EXPECT_EQ(3075, error_of(u"SELECT * FROM [Songs"));
    EXPECT_EQ(3075, error_of(u"SELECT \"x FROM [Songs]"));
}

TEST(Grammar, malformed_date_literals_are_3075) {
    for (const auto* text : {u"[Date]=##", u"[Date]=#x#", u"[Date]=#2/30/2005#", u"[Date]=#13/13/2005#", u"[Date]=#1/1#"}) {
        EXPECT_EQ(3075, condition_error(text)) << jet::to_utf8(text);
    }
}

TEST(Grammar, errors_of_order_by_are_3138) {
    for (const auto* text : {u"ORDER", u"ORDER BY", u"ORDER [Name]", u"ORDER BY ;", u"ORDER BY 1", u"ORDER BY [Name],",
                             u"ORDER BY [Name] [Date]", u"ORDER BY [Name] DESC ASC", u"ORDER BY DESC",
                             u"ORDER BY [Name] WHERE [ProjID]=1"}) {
        EXPECT_EQ(3138, error_of(u"SELECT * FROM [Songs] " + std::u16string(text))) << jet::to_utf8(text);
    }
}

TEST(Grammar, text_after_the_semicolon_is_3142) {
    EXPECT_EQ(3142, error_of(u"SELECT * FROM [Songs]; x"));
    EXPECT_EQ(3142, error_of(u"SELECT * FROM [Songs] WHERE [ProjID]=1;;"));
    EXPECT_EQ(3142, error_of(u"SELECT * FROM [Songs] ORDER BY [Name]; \"open"));
}

TEST(Grammar, deep_parentheses_are_an_error_and_no_crash) {
    const auto nested = [](std::size_t depth) {
        return std::u16string(depth, u'(') + u"[ProjID]=1" + std::u16string(depth, u')');
    };
    EXPECT_EQ(0, condition_error(nested(200)));
    EXPECT_EQ(3075, condition_error(nested(100000)));
    std::u16string nots;
    for (int i = 0; i < 100000; ++i) nots += u"NOT ";
    EXPECT_EQ(3075, condition_error(nots + u"[ProjID]=1"));
}

TEST(Grammar, number_of_conditions_has_no_limit) {
    std::u16string condition = u"[Notes] LIKE \"*0*\"";
    for (int i = 1; i < 2000; ++i) condition += u" OR [Notes] LIKE \"*0*\"";
    EXPECT_EQ(0, condition_error(condition));
}

TEST(Binder, unknown_columns_are_3061) {
    EXPECT_EQ(3061, condition_error(u"[Nope]=4"));
    EXPECT_EQ(3061, condition_error(u"4=Nope"));
    EXPECT_EQ(3061, condition_error(u"[ProjID]=ClientID"));
    EXPECT_EQ(3061, error_of(u"SELECT * FROM [Songs] ORDER BY [Nope]"));
    EXPECT_EQ(3061, error_of(u"SELECT SUM(Nope) FROM [Songs]"));
    EXPECT_EQ(3061, condition_error(u"[Nope] IS NULL"));
    EXPECT_EQ(3061, condition_error(u"[ ProjID]=4"));
}

TEST(Binder, values_of_different_types_are_3464) {
    for (const auto* text : {u"[ProjID]=\"4\"", u"[Name]=4", u"4=[Name]", u"[Name]=[ProjID]", u"[Date]=\"1/1/2005\"",
                             u"[Name]=#1/1/2005#", u"[Notes]=5", u"[Flag]=\"yes\"", u"[Price]=\"1\"", u"[Name]<>4",
                             u"[Name]<4", u"\"a\"=1", u"[Raw]=1", u"[Object]=\"x\"", u"[Key]=\"x\"",
                             u"[Date] LIKE \"*\"", u"[Object] LIKE \"*\"", u"[Name] LIKE #1/1/2005#"}) {
        EXPECT_EQ(3464, condition_error(text)) << jet::to_utf8(text);
    }
    EXPECT_EQ(3464, error_of(u"SELECT SUM([Name]) FROM [Songs]"));
    EXPECT_EQ(3464, error_of(u"SELECT SUM([Notes]) FROM [Songs]"));
}

TEST(Binder, comparable_values_of_different_types_are_accepted) {
    for (const auto* text : {u"[ProjID]=4.5", u"[Price]=4", u"[Date]=38412", u"[Flag]=-1", u"[Name]=[Notes]", u"[Name]=NULL",
                             u"[Object]=NULL", u"[Object] IS NULL", u"[ProjID] LIKE \"1*\"", u"[Name] LIKE 5",
                             u"[Name] LIKE [Notes]", u"[Name] LIKE NULL", u"[Price]>[Rate]"}) {
        EXPECT_EQ(0, condition_error(text)) << jet::to_utf8(text);
    }
}

TEST(Binder, memo_and_object_sort_keys_are_3117) {
    EXPECT_EQ(3117, error_of(u"SELECT * FROM [Songs] ORDER BY [Notes]"));
    EXPECT_EQ(3117, error_of(u"SELECT * FROM [Songs] ORDER BY [Name], [Object] DESC"));
}

TEST(Binder, bad_like_pattern_is_3075_before_any_row_is_read) {
    EXPECT_EQ(3075, condition_error(u"[Name] LIKE \"[z-a]\""));
    EXPECT_EQ(3075, condition_error(u"[Name] LIKE \"abc[\""));
    EXPECT_EQ(3075, condition_error(u"[ProjID]=1 AND [Name] NOT LIKE '[!b-a]'"));
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

TEST(Shape, literals_do_not_count_and_names_do) {
    const auto shape = [](std::u16string_view text) { return shape_of(lex(text)); };
    EXPECT_EQ(shape(u"SELECT * FROM [T] WHERE [a]=1"), shape(u"SELECT  * FROM [T] WHERE [a]=-99.5"));
    EXPECT_EQ(shape(u"SELECT * FROM [T] WHERE [a]=\"x\""), shape(u"select * from [T] where [a]='yy'"));
    EXPECT_NE(shape(u"SELECT * FROM [T] WHERE [a]=1"), shape(u"SELECT * FROM [T] WHERE [b]=1"));
    EXPECT_NE(shape(u"SELECT * FROM [T] WHERE [a]=1"), shape(u"SELECT * FROM [T] WHERE [a]<1"));
    EXPECT_NE(shape(u"SELECT SUM(a) FROM [T]"), shape(u"SELECT [SUM](a) FROM [T]"));
}

TEST(StatementCache, statements_of_one_shape_are_parsed_once) {
    const auto statement = [](std::u16string_view text) { return parse_cached(lex(text)); };
    EXPECT_EQ(statement(u"SELECT * FROM [Cache] WHERE [a]=1"), statement(u"SELECT * FROM [Cache] WHERE [a]=2"));
    EXPECT_NE(statement(u"SELECT * FROM [Cache] WHERE [a]=1"), statement(u"SELECT * FROM [Cache] WHERE [b]=1"));
}

TEST(StatementCache, errors_come_again_each_time) {
    for (int i = 0; i < 2; ++i) EXPECT_THROW(parse_cached(lex(u"SELECT * FROM")), jet::Error);
}

TEST(StatementCache, many_shapes_do_not_pile_up) {
    const auto kept = parse_cached(lex(u"SELECT * FROM [Kept]"));
    for (int i = 0; i < 2000; ++i) {
        const std::string text = "SELECT * FROM [T" + std::to_string(i) + "]";
        parse_cached(lex(jet::from_utf8(text)));
    }
    EXPECT_EQ(u"Kept", kept->table);
    EXPECT_EQ(u"Kept", parse_cached(lex(u"SELECT * FROM [Kept]"))->table);
}

TEST(StatementCache, one_statement_serves_tables_with_other_columns) {
    jet::TableDef first = songs();
    jet::TableDef second = songs();
    std::swap(second.columns[0], second.columns[14]);
    for (int i = 0; i < 2; ++i) {
        for (const auto& [def, position] : {std::pair(&first, 0u), std::pair(&second, 14u)}) {
            Lexed lexed = lex(u"SELECT * FROM [Songs] WHERE [ProjID]=1");
            const auto statement = parse_cached(lexed);
            EXPECT_EQ(position, bind_statement(*statement, *def, std::move(lexed.literals)).positions[0]);
        }
    }
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
    for (const auto& [text, expected] : std::map<std::u16string, bool>{
             {u"[ProjID]=5", true}, {u"[ProjID]<>5", false}, {u"[ProjID]<5", false}, {u"[ProjID]>5", false},
             {u"[ProjID]<=5", true}, {u"[ProjID]>=5", true}, {u"[ProjID]<6", true}, {u"[ProjID]>4", true},
             {u"[ProjID]<=4", false}, {u"[ProjID]>=6", false}, {u"[ProjID]<>6", true}, {u"[ProjID]=6", false}}) {
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
    row.set(u"Small", std::uint8_t{12}).set(u"Short", std::int16_t{-12}).set(u"Flag", true).set(u"Exact", numeric(1250, 2));
    for (const auto* text : {u"[Price]=12.5", u"[Rate]=12.5", u"[Weight]=[Rate]", u"[Price]=[Rate]", u"[Price]>[ProjID]",
                             u"[ProjID]<[Price]", u"[Small]=[ProjID]", u"[Short]=-12", u"[Flag]=-1", u"[Flag]<>0",
                             u"[Exact]=12.5", u"[Exact]=[Price]", u"[Exact]=[Rate]", u"[Price]=12.50", u"[Price]<12.50001",
                             u"[ProjID]=12.0", u"[ProjID]<12.5", u"[Short]>-12.5", u"[Small]>[Short]"}) {
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
