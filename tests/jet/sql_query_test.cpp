// Statements against a database: tables, errors of preparing, spans, sums.
#include "jet/sql/query.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "jet/indexes/collation.h"
#include "jet/sql/candidates.h"
#include "support/temp_folder.h"

namespace {

using jet::ColumnMap;
using jet::ColumnType;
using jet::RowId;
using jet::Value;
using jet::sql::Query;
using testing_support::TempFolder;

class QueryTest : public ::testing::Test {
protected:
    QueryTest() : database_(jet::Database::create(folder_.file("a.mdb"), {})) {
        const auto column = [](const char16_t* name, ColumnType type, bool autonumber = false) {
            jet::NewColumn made;
            made.name = name;
            made.type = type;
            made.autonumber = autonumber;
            made.allow_zero_length = type == ColumnType::kText || type == ColumnType::kMemo;
            return made;
        };
        const jet::NewColumn columns[] = {
            column(u"RecID", ColumnType::kLong, true), column(u"ProjID", ColumnType::kLong),
            column(u"Name", ColumnType::kText),        column(u"Date", ColumnType::kDate),
            column(u"Notes", ColumnType::kMemo),       column(u"Price", ColumnType::kCurrency),
            column(u"Quantity", ColumnType::kDouble),  column(u"Rate", ColumnType::kSingle),
        };
        database_->create_table(u"Songs", columns);
        database_->create_table(u"Two Words", std::span(columns, 2));
    }

    RowId add(Value project, Value name = {}, Value date = {}, Value price = {}, Value quantity = {}, Value rate = {}) {
        return songs().insert({Value(), std::move(project), name, date, name, price, quantity, rate});
    }

    jet::Table& songs() { return *database_->find_table(u"Songs"); }

    Query prepare(std::u16string_view statement) { return Query::prepare(*database_, statement); }

    int error_of(std::u16string_view statement) {
        try {
            prepare(statement);
        } catch (const jet::Error& error) {
            EXPECT_STRNE("", error.what());
            return error.number();
        }
        return 0;
    }

    // Key numbers of the rows that meet the condition, in scan order.
    std::vector<std::int32_t> rows_where(std::u16string_view condition) {
        const Query query = prepare(u"SELECT * FROM [Songs] WHERE " + std::u16string(condition));
        std::vector<std::int32_t> ids;
        jet::RowView row;
        for (auto id = songs().next_row({}); id; id = songs().next_row(*id)) {
            if (songs().read(*id, row) && query.matches(row)) ids.push_back(std::get<std::int32_t>(row.value(0)));
        }
        return ids;
    }

    std::optional<jet::sql::MapSpan> span_of(std::u16string_view condition) {
        return prepare(u"SELECT * FROM [Songs] WHERE " + std::u16string(condition)).span();
    }

    TempFolder folder_;
    std::unique_ptr<jet::Database> database_;
};

using Ids = std::vector<std::int32_t>;

// Texts are compared in the form that they are stored in where that suffices.
TEST_F(QueryTest, texts_compare_in_every_stored_form_as_the_order_does) {
    const std::u16string texts[] = {
        u"Album", u"ALBUM ", u"album-1",         u"alb\u00FCm", u"\u4E00Album",   u"",
        u" ",     u"ab",     u"Gr\u00F6\u00DFe", u"GROSSE",     u"Album\u4E00zz", std::u16string(255, u'a')};
    for (const std::u16string& text : texts) add(1, text);
    add(1, Value());
    constexpr std::pair<const char16_t*, bool (*)(int)> kComparisons[] = {
        {u"=", [](int order) { return order == 0; }},  {u"<>", [](int order) { return order != 0; }},
        {u"<", [](int order) { return order < 0; }},   {u">", [](int order) { return order > 0; }},
        {u"<=", [](int order) { return order <= 0; }}, {u">=", [](int order) { return order >= 0; }},
    };
    for (const std::u16string& literal : texts) {
        for (const auto& [sign, holds] : kComparisons) {
            std::vector<std::int32_t> expected;
            for (std::size_t i = 0; i < std::size(texts); ++i) {
                if (holds(jet::compare_text(texts[i], literal))) expected.push_back(static_cast<std::int32_t>(i) + 1);
            }
            EXPECT_EQ(rows_where(std::u16string(u"Name") + sign + u"\"" + literal + u"\""), expected)
                << jet::to_utf8(std::u16string(sign) + literal);
        }
    }
}

TEST_F(QueryTest, star_delivers_every_column_of_the_table) {
    const Query query = prepare(u"SELECT * FROM [songs]");
    EXPECT_EQ(&songs(), &query.table());
    ASSERT_EQ(8u, query.columns().size());
    EXPECT_EQ(u"RecID", query.columns()[0].name);
    EXPECT_EQ(ColumnType::kText, query.columns()[2].type);
    EXPECT_EQ(510, query.columns()[2].length_bytes);
    EXPECT_EQ(7u, query.columns()[7].position);
    EXPECT_FALSE(query.is_aggregate());
    EXPECT_FALSE(query.has_condition());
    EXPECT_TRUE(query.order().empty());
}

TEST_F(QueryTest, unknown_table_is_3078) {
    EXPECT_EQ(3078, error_of(u"SELECT * FROM [Nope]"));
    EXPECT_EQ(3078, error_of(u"SELECT * FROM [Nope] WHERE [Also nope]=\"x\""));
    EXPECT_EQ(3078, error_of(u"SELECT SUM(a) FROM [Nope]"));
}

TEST_F(QueryTest, empty_statement_is_3078) {
    EXPECT_EQ(3078, error_of(u""));
    EXPECT_EQ(3078, error_of(u" \t\r\n"));
    EXPECT_EQ(3078, error_of(u";"));
}

TEST_F(QueryTest, other_text_is_3129_with_blanks_and_3078_as_one_word) {
    EXPECT_EQ(3129, error_of(u"SELEC * FROM [Songs]"));
    EXPECT_EQ(3129, error_of(u"DELETE FROM [Songs]"));
    EXPECT_EQ(3129, error_of(u"(SELECT * FROM [Songs])"));
    EXPECT_EQ(3129, error_of(u"\"Songs of old"));
    EXPECT_EQ(3078, error_of(u"SELEC"));
    EXPECT_EQ(3078, error_of(u"[No such table]"));
    EXPECT_EQ(3078, error_of(u"17"));
}

TEST_F(QueryTest, name_of_a_table_stands_for_all_of_it) {
    EXPECT_EQ(&songs(), &prepare(u"Songs").table());
    EXPECT_EQ(&songs(), &prepare(u" [SONGS] ;").table());
    EXPECT_EQ(u"Two Words", prepare(u" Two Words ").table().def().name);
    EXPECT_EQ(u"Two Words", prepare(u"[Two Words]").table().def().name);
    EXPECT_FALSE(prepare(u"Songs").has_condition());
}

TEST_F(QueryTest, errors_come_from_preparing_an_empty_table) {
    EXPECT_EQ(3061, error_of(u"SELECT * FROM [Songs] WHERE [Nope]=1"));
    EXPECT_EQ(3075, error_of(u"SELECT * FROM [Songs] WHERE [ProjID]=4[RecID]=7"));
    EXPECT_EQ(3075, error_of(u"SELECT * FROM [Songs] WHERE [Name]=\"a\"b\""));
    EXPECT_EQ(3075, error_of(u"SELECT * FROM [Songs] WHERE [Name] LIKE \"[z-a]\""));
    EXPECT_EQ(3117, error_of(u"SELECT * FROM [Songs] ORDER BY [Notes]"));
    EXPECT_EQ(3122, error_of(u"SELECT [Name], SUM(Quantity) FROM [Songs]"));
    EXPECT_EQ(3131, error_of(u"SELECT * FROM"));
    EXPECT_EQ(3138, error_of(u"SELECT * FROM [Songs] ORDER BY"));
    EXPECT_EQ(3141, error_of(u"SELECT * FORM [Songs]"));
    EXPECT_EQ(3142, error_of(u"SELECT * FROM [Songs]; SELECT"));
    EXPECT_EQ(3145, error_of(u"SELECT * FROM [Songs] WHERE"));
    EXPECT_EQ(3464, error_of(u"SELECT * FROM [Songs] WHERE [ProjID]=\"4\""));
}

TEST_F(QueryTest, stored_rows_meet_conditions) {
    add(std::int32_t{7}, std::u16string(u"My Love"), jet::Date{38412});
    add(std::int32_t{7}, std::u16string(u"Dan "), jet::Date{38412.5});
    add(Value(), std::u16string());
    add(std::int32_t{0}, std::u16string(u"CAF\u00C9"), Value(), jet::Currency{125000}, 12.5, 12.5F);
    EXPECT_EQ((Ids{1}), rows_where(u"[ProjID]=7 AND [Name] LIKE \"*love*\""));
    EXPECT_EQ((Ids{2}), rows_where(u"[Name]=\"dan\""));
    EXPECT_EQ((Ids{}), rows_where(u"[Name] LIKE \"dan\""));
    EXPECT_EQ((Ids{4}), rows_where(u"[ProjID]=0"));
    EXPECT_EQ((Ids{3}), rows_where(u"[ProjID] IS NULL"));
    EXPECT_EQ((Ids{1, 2, 3, 4}), rows_where(u"[Name] LIKE \"*\""));
    EXPECT_EQ((Ids{3}), rows_where(u"[Notes] LIKE \"\""));
    EXPECT_EQ((Ids{4}), rows_where(u"[Notes]=\"caf\u00E9\""));
    EXPECT_EQ((Ids{1}), rows_where(u"[Date]>=#03/01/2005# AND [Date]<=#03/01/2005#"));
    EXPECT_EQ((Ids{4}), rows_where(u"[Price]=12.5 AND [Quantity]=12.5 AND [Rate]=12.5"));
    EXPECT_EQ((Ids{2}), rows_where(u"[RecID] LIKE \"2\""));
}

TEST_F(QueryTest, order_keys_are_positions) {
    const Query query = prepare(u"SELECT * FROM [Songs] ORDER BY [Date] DESC, [Name]");
    ASSERT_EQ(2u, query.order().size());
    EXPECT_EQ(3u, query.order()[0].position);
    EXPECT_TRUE(query.order()[0].descending);
    EXPECT_EQ(2u, query.order()[1].position);
    EXPECT_FALSE(query.order()[1].descending);
}

TEST_F(QueryTest, sum_has_one_column_named_by_its_alias) {
    const Query named = prepare(u"SELECT SUM(Quantity) AS [total] FROM [Songs]");
    ASSERT_EQ(1u, named.columns().size());
    EXPECT_EQ(u"total", named.columns()[0].name);
    EXPECT_EQ(ColumnType::kDouble, named.columns()[0].type);
    EXPECT_TRUE(named.is_aggregate());
    EXPECT_EQ(u"total", prepare(u"SELECT Sum([Quantity]) AS total FROM [Songs]").columns()[0].name);
    EXPECT_EQ(u"Expr1000", prepare(u"SELECT SUM(Quantity) FROM [Songs]").columns()[0].name);
    EXPECT_EQ(ColumnType::kCurrency, prepare(u"SELECT SUM(Price) FROM [Songs]").columns()[0].type);
}

TEST_F(QueryTest, sum_over_nothing_or_nulls_is_null) {
    const std::u16string statement = u"SELECT SUM(Quantity) AS [total] FROM [Songs] WHERE [ProjID]=1";
    EXPECT_EQ(Value(), prepare(statement).aggregate());
    add(std::int32_t{1});
    EXPECT_EQ(Value(), prepare(statement).aggregate());
    EXPECT_EQ(Value(), prepare(u"SELECT SUM(Quantity) FROM [Songs]").aggregate());
}

TEST_F(QueryTest, sum_adds_matching_rows_without_nulls) {
    add(std::int32_t{1}, {}, {}, jet::Currency{1}, 1.5, 0.25F);
    add(std::int32_t{2}, {}, {}, jet::Currency{20000}, 100.0, 4.0F);
    add(std::int32_t{1});
    add(std::int32_t{1}, {}, {}, jet::Currency{-30000}, -4.0, 1.0F);
    EXPECT_EQ(Value(-2.5), prepare(u"SELECT SUM(Quantity) FROM [Songs] WHERE [ProjID]=1").aggregate());
    EXPECT_EQ(Value(97.5), prepare(u"SELECT SUM(Quantity) FROM [Songs]").aggregate());
    EXPECT_EQ(Value(jet::Currency{-9999}), prepare(u"SELECT SUM(Price) FROM [Songs]").aggregate());
    EXPECT_EQ(Value(5.25), prepare(u"SELECT SUM(Rate) FROM [Songs]").aggregate());
    EXPECT_EQ(Value(10.0), prepare(u"SELECT SUM(RecID) FROM [Songs]").aggregate());
}

TEST_F(QueryTest, sum_of_longs_does_not_overflow) {
    for (int i = 0; i < 3; ++i) add(INT32_MAX);
    EXPECT_EQ(Value(3.0 * INT32_MAX), prepare(u"SELECT SUM(ProjID) FROM [Songs]").aggregate());
}

TEST_F(QueryTest, sum_of_amounts_beyond_their_range_is_an_error) {
    for (int i = 0; i < 2; ++i) add(Value(), {}, {}, jet::Currency{INT64_MAX});
    EXPECT_THROW(prepare(u"SELECT SUM(Price) FROM [Songs]").aggregate(), jet::Error);
}

TEST_F(QueryTest, equality_of_a_long_gives_a_span_of_one_key) {
    for (const auto* text : {u"[ProjID]=7", u"7=[ProjID]", u"[Name] LIKE \"*x*\" AND [ProjID]=7",
                             u"([Name]=\"x\" AND ([ProjID]=7)) AND [RecID]=3", u"[Date]=#1/1/2005# AND [ProjID]=7"}) {
        const auto span = span_of(text);
        ASSERT_TRUE(span);
        EXPECT_EQ(1u, span->position);
        EXPECT_EQ(ColumnMap::key_of_long(7), span->first_key);
        EXPECT_EQ(ColumnMap::key_of_long(7), span->last_key);
    }
}

TEST_F(QueryTest, other_conditions_give_no_span) {
    for (const auto* text : {u"[ProjID]=7 OR [ProjID]=8", u"NOT [ProjID]=7", u"[ProjID]>7", u"[ProjID]=7.5",
                             u"[ProjID]=[RecID]", u"[Name]=\"x\"", u"[ProjID]=NULL", u"[Price]=7",
                             u"[Date]<>#1/1/2005#", u"[ProjID] LIKE \"7\"", u"[ProjID] IS NULL", u"7=7"}) {
        EXPECT_FALSE(span_of(text)) << jet::to_utf8(text);
    }
    EXPECT_FALSE(prepare(u"SELECT * FROM [Songs]").span());
}

TEST_F(QueryTest, integer_beyond_the_column_gives_an_empty_span) {
    const auto span = span_of(u"[ProjID]=2147483648");
    ASSERT_TRUE(span);
    EXPECT_GT(span->first_key, span->last_key);
    const auto lowest = span_of(u"[ProjID]=-2147483648");
    ASSERT_TRUE(lowest);
    EXPECT_EQ(0u, lowest->first_key);
}

TEST_F(QueryTest, date_conditions_narrow_one_span) {
    const auto key = [](double days) { return ColumnMap::key_of_date(days); };
    const auto both = span_of(u"[Date]>=#03/01/2005# AND [Date]<#03/31/2005# AND [Name]=\"x\"");
    ASSERT_TRUE(both);
    EXPECT_EQ(3u, both->position);
    EXPECT_EQ(key(38412), both->first_key);
    EXPECT_EQ(key(38442), both->last_key);
    const auto open = span_of(u"#03/01/2005#<[Date]");
    ASSERT_TRUE(open);
    EXPECT_EQ(key(38412), open->first_key);
    EXPECT_EQ(UINT64_MAX, open->last_key);
    const auto day = span_of(u"[Date]=#03/01/2005#");
    ASSERT_TRUE(day);
    EXPECT_EQ(day->first_key, day->last_key);
    const auto tighter = span_of(u"[Date]>#03/01/2005# AND [Date]>=#03/05/2005# AND [Date]<=#03/06/2005#");
    ASSERT_TRUE(tighter);
    EXPECT_EQ(key(38416), tighter->first_key);
    EXPECT_EQ(key(38417), tighter->last_key);
}

TEST_F(QueryTest, spans_hold_every_row_that_meets_the_condition) {
    for (int i = 0; i < 300; ++i) {
        const double day = 38400 + i % 40 + (i % 3 == 0 ? 0.5 : 0);
        add(std::int32_t{i % 7}, std::u16string(u"x"),
            i % 11 == 0 ? Value() : Value(jet::Date{i % 13 == 0 ? -day : day}));
    }
    for (const auto* condition :
         {u"[ProjID]=3", u"[ProjID]=99", u"[Date]=#03/01/2005#", u"[Date]>#03/01/2005# AND [Date]<=#03/09/2005#",
          u"[Date]<#03/01/2005#", u"[Date]>=#03/01/2005# AND [ProjID]>2"}) {
        const Query query = prepare(u"SELECT * FROM [Songs] WHERE " + std::u16string(condition));
        ASSERT_TRUE(query.span());
        Ids found;
        jet::RowView row;
        jet::sql::visit_candidates(songs(), query.span(), [&](RowId id) {
            ASSERT_TRUE(songs().read(id, row));
            if (query.matches(row)) found.push_back(std::get<std::int32_t>(row.value(0)));
        });
        std::sort(found.begin(), found.end());
        EXPECT_EQ(rows_where(condition), found) << jet::to_utf8(condition);
    }
}

TEST_F(QueryTest, column_added_later_is_found_by_a_cached_statement) {
    EXPECT_EQ(3061, error_of(u"SELECT * FROM [Songs] WHERE [Later]=1"));
    jet::NewColumn later;
    later.name = u"Later";
    database_->add_column(u"Songs", later);
    EXPECT_EQ(0, error_of(u"SELECT * FROM [Songs] WHERE [Later]=1"));
    database_->delete_column(u"Songs", u"Price");
    add(std::int32_t{1}, std::u16string(u"x"));
    EXPECT_EQ((Ids{}), rows_where(u"[Later]=1"));
    EXPECT_EQ((Ids{1}), rows_where(u"[Later] IS NULL"));
}

}  // namespace
