// Membership of open sets while their table changes.
#include "jet/sql/row_set.h"

#include <gtest/gtest.h>

#include "tests/jet/sql_row_set_fixture.h"

namespace row_set_tests {
namespace {

// The same rows through each kind of source.
const char16_t* const kEverySource[] = {u"",
                                        u"WHERE [Name]=\"x\"",
                                        u"WHERE [ProjID]=1",
                                        u"WHERE [Date]>=#1/1/2000#",
                                        u"ORDER BY [RecID]",
                                        u"WHERE [ProjID]=1 ORDER BY [Date]"};

TEST_F(RowSetTest, rows_come_in_scan_order) {
    for (int i = 0; i < 5; ++i) add(1, jet::Date{40000});
    for (const auto* rest_of_statement : kEverySource) {
        auto set = open(rest_of_statement);
        EXPECT_EQ((Ids{1, 2, 3, 4, 5}), all(*set)) << jet::to_utf8(rest_of_statement);
        EXPECT_EQ((Ids{1, 2, 3, 4, 5}), all(*set));
        EXPECT_FALSE(set->next());
    }
}

TEST_F(RowSetTest, empty_set_has_no_first_row) {
    for (const auto* rest_of_statement : kEverySource) {
        auto set = open(rest_of_statement);
        EXPECT_FALSE(set->first());
        EXPECT_FALSE(set->next());
    }
    add(2, jet::Date{1}, u"y");
    EXPECT_FALSE(open(u"WHERE [ProjID]=1")->first());
    EXPECT_FALSE(open(u"WHERE [ProjID]=99999999999")->first());
    EXPECT_FALSE(open(u"WHERE [Date]>#1/1/2000# AND [Date]<#1/1/1999#")->first());
}

TEST_F(RowSetTest, rows_added_after_opening_are_no_members) {
    for (const auto* rest_of_statement : kEverySource) {
        const auto before = all(*open(rest_of_statement));
        add(1, jet::Date{40000});
        auto set = open(rest_of_statement);
        auto unread = open(rest_of_statement);
        ASSERT_TRUE(set->first());
        add(1, jet::Date{40000});
        EXPECT_EQ(before.size(), rest(*set).size());
        EXPECT_EQ(before.size() + 1, all(*set).size());
        EXPECT_EQ(before.size() + 1, all(*unread).size());
        EXPECT_EQ(before.size() + 2, all(*open(rest_of_statement)).size());
    }
}

TEST_F(RowSetTest, many_additions_are_no_members_either) {
    add(1, jet::Date{40000});
    for (const auto* rest_of_statement : kEverySource) {
        const std::size_t count = all(*open(rest_of_statement)).size();
        auto set = open(rest_of_statement);
        for (int i = 0; i < 100; ++i) add(1, jet::Date{40000});
        EXPECT_EQ(count, all(*set).size()) << jet::to_utf8(rest_of_statement);
    }
}

TEST_F(RowSetTest, row_that_no_longer_matches_is_still_delivered_with_its_new_values) {
    std::vector<RowId> rows;
    for (int i = 0; i < 4; ++i) rows.push_back(add(1, jet::Date{40000}));
    for (const auto* rest_of_statement :
         {u"WHERE [ProjID]=1", u"WHERE [ProjID]<5", u"WHERE [ProjID]=1 ORDER BY [RecID]",
          u"WHERE [Date]>=#1/1/2000# AND [ProjID]=1", u"WHERE [Date]>#1/1/2000#"}) {
        auto unread = open(rest_of_statement);
        auto set = open(rest_of_statement);
        ASSERT_TRUE(set->first());
        change(rows[2], kProject, std::int32_t{9});
        change(rows[2], kDate, Value());
        change(rows[0], kProject, std::int32_t{9});
        change(rows[0], kDate, Value());
        EXPECT_EQ((Ids{2, 3, 4}), rest(*set)) << jet::to_utf8(rest_of_statement);
        EXPECT_EQ((Ids{1, 2, 3, 4}), all(*set)) << jet::to_utf8(rest_of_statement);
        EXPECT_EQ((Ids{1, 2, 3, 4}), all(*unread)) << jet::to_utf8(rest_of_statement);
        EXPECT_EQ((Ids{2, 4}), all(*open(rest_of_statement)));
        for (const RowId row : {rows[0], rows[2]}) {
            change(row, kProject, std::int32_t{1});
            change(row, kDate, jet::Date{40000});
        }
    }
}

TEST_F(RowSetTest, row_that_begins_to_match_is_no_member) {
    add(1, jet::Date{40000});
    const RowId other = add(2, jet::Date{1});
    add(1, jet::Date{40000});
    for (const auto* rest_of_statement :
         {u"WHERE [ProjID]=1", u"WHERE [ProjID]<2", u"WHERE [Date]>#1/1/2000#", u"WHERE [ProjID]=1 ORDER BY [Date]"}) {
        auto set = open(rest_of_statement);
        ASSERT_TRUE(set->first());
        change(other, kProject, std::int32_t{1});
        change(other, kDate, jet::Date{40000});
        EXPECT_EQ((Ids{3}), rest(*set)) << jet::to_utf8(rest_of_statement);
        EXPECT_EQ((Ids{1, 3}), all(*set));
        change(other, kProject, std::int32_t{2});
        change(other, kDate, jet::Date{1});
    }
}

TEST_F(RowSetTest, deleted_rows_are_skipped) {
    for (const auto* rest_of_statement : kEverySource) {
        std::vector<RowId> rows;
        for (int i = 0; i < 5; ++i) rows.push_back(add(1, jet::Date{40000}));
        auto set = open(rest_of_statement);
        const Ids ids = all(*open(rest_of_statement));
        ASSERT_EQ(5u, ids.size()) << jet::to_utf8(rest_of_statement);
        ASSERT_TRUE(set->first());
        songs().erase(rows[1]);
        songs().erase(rows[2]);
        EXPECT_EQ((Ids{ids[3], ids[4]}), rest(*set)) << jet::to_utf8(rest_of_statement);
        songs().erase(rows[0]);
        EXPECT_EQ((Ids{ids[3], ids[4]}), all(*set));
        songs().erase(rows[3]);
        songs().erase(rows[4]);
        EXPECT_FALSE(set->first());
    }
}

TEST_F(RowSetTest, deleting_the_current_row_leads_to_its_successor) {
    for (const auto* rest_of_statement : kEverySource) {
        for (int i = 0; i < 4; ++i) add(1, jet::Date{40000});
        auto set = open(rest_of_statement);
        int deleted = 0;
        for (auto row = set->first(); row; row = set->next()) {
            songs().erase(*row);
            ++deleted;
        }
        EXPECT_EQ(4, deleted) << jet::to_utf8(rest_of_statement);
        EXPECT_FALSE(songs().next_row({}));
    }
}

TEST_F(RowSetTest, own_additions_join_at_the_end) {
    for (const auto* rest_of_statement : kEverySource) {
        auto set = open(rest_of_statement);
        const Ids before = all(*set);
        const RowId first = add(7, jet::Date{1}, u"other");
        append(*set, first);
        EXPECT_TRUE(set->delivered(first));
        const RowId second = add(7, jet::Date{1}, u"other");
        append(*set, second);
        EXPECT_EQ((Ids{id_of(first), id_of(second)}), rest(*set));
        Ids expected = before;
        expected.push_back(id_of(first));
        expected.push_back(id_of(second));
        EXPECT_EQ(expected, all(*set));
        set->move_to(first);
        EXPECT_EQ((Ids{id_of(second)}), rest(*set));
        songs().erase(first);
        songs().erase(second);
    }
}

TEST_F(RowSetTest, unread_set_takes_additions_and_reads_them_after_its_members) {
    add(1);
    auto set = open();
    const RowId own = add(2);
    append(*set, own);
    EXPECT_TRUE(set->delivered(own));
    EXPECT_EQ((Ids{1, 2}), all(*set));
}

TEST_F(RowSetTest, row_in_the_place_of_a_deleted_addition_is_no_member) {
    auto set = open();
    const RowId own = add(1);
    append(*set, own);
    songs().erase(own);
    EXPECT_EQ(own, add(2));  // an empty page is given back and taken again
    EXPECT_FALSE(set->delivered(own));
    EXPECT_FALSE(set->first());
}

TEST_F(RowSetTest, addition_replaced_behind_the_cursor_does_not_move_it) {
    const std::u16string large(255, u'n');
    auto set = open();
    const RowId own = add(1, {}, large);
    append(*set, own);
    std::vector<RowId> same_page{own};
    RowId other = add(2, {}, large);
    for (; other.page == own.page; other = add(2, {}, large)) same_page.push_back(other);
    append(*set, other);
    const RowId last = add(3, {}, large);
    append(*set, last);
    ASSERT_EQ(own, set->first());
    ASSERT_EQ(other, set->next());
    for (const RowId row : same_page) songs().erase(row);
    RowId reused = add(4, {}, large);
    for (int i = 0; i < 100 && reused != own; ++i) reused = add(4, {}, large);
    ASSERT_EQ(own, reused);
    EXPECT_EQ(last, set->next());
    EXPECT_FALSE(set->next());
}

TEST_F(RowSetTest, only_rows_looked_at_are_delivered) {
    std::vector<RowId> rows;
    for (int i = 0; i < 3; ++i) rows.push_back(add(1, jet::Date{40000}));
    const RowId other = add(2, jet::Date{1}, u"y");
    for (const auto* rest_of_statement : {u"WHERE [Name]=\"x\"", u"WHERE [ProjID]=1"}) {
        auto set = open(rest_of_statement);
        EXPECT_FALSE(set->delivered(rows[0]));
        set->first();
        EXPECT_TRUE(set->delivered(rows[0]));
        EXPECT_FALSE(set->delivered(rows[1]));
        set->next();
        EXPECT_TRUE(set->delivered(rows[1]));
        rest(*set);
        EXPECT_TRUE(set->delivered(rows[2]));
        EXPECT_FALSE(set->delivered(other));
        set->first();
        EXPECT_TRUE(set->delivered(rows[2]));
    }
    for (const auto* rest_of_statement : {u"WHERE [Date]>#1/1/2000#", u"WHERE [ProjID]=1 ORDER BY [Date]"}) {
        auto set = open(rest_of_statement);
        set->first();
        EXPECT_TRUE(set->delivered(rows[2]));
        EXPECT_FALSE(set->delivered(other));
    }
}

TEST_F(RowSetTest, changed_and_deleted_members_stay_delivered) {
    for (const auto* rest_of_statement :
         {u"WHERE [ProjID]=1", u"WHERE [ProjID]<2", u"WHERE [ProjID]=1 ORDER BY [Date]"}) {
        const RowId row = add(1, jet::Date{40000});
        auto set = open(rest_of_statement);
        ASSERT_TRUE(set->first());
        change(row, kProject, std::int32_t{3});
        EXPECT_TRUE(set->delivered(row)) << jet::to_utf8(rest_of_statement);
        songs().erase(row);
        EXPECT_TRUE(set->delivered(row)) << jet::to_utf8(rest_of_statement);
        EXPECT_FALSE(set->next());
    }
}

TEST_F(RowSetTest, next_continues_after_the_row_moved_to) {
    for (int i = 0; i < 5; ++i) add(1, jet::Date{40000});
    for (const auto* rest_of_statement : kEverySource) {
        auto set = open(rest_of_statement);
        const RowId first = *set->first();
        const RowId second = *set->next();
        rest(*set);
        set->move_to(first);
        EXPECT_EQ((Ids{2, 3, 4, 5}), rest(*set));
        set->move_to(second);
        EXPECT_EQ((Ids{3, 4, 5}), rest(*set));
    }
}

TEST_F(RowSetTest, order_is_kept_by_key_null_first_and_ties_in_scan_order) {
    add(1, jet::Date{40002});
    add(1);
    add(1, jet::Date{40001});
    add(1, jet::Date{40002});
    add(1);
    add(1, jet::Date{-1.25});
    add(1, jet::Date{-1});
    EXPECT_EQ((Ids{2, 5, 7, 6, 3, 1, 4}), all(*open(u"ORDER BY [Date]")));
    EXPECT_EQ((Ids{1, 4, 3, 6, 7, 2, 5}), all(*open(u"ORDER BY [Date] DESC")));
    EXPECT_EQ((Ids{4, 1, 3, 6, 7, 5, 2}), all(*open(u"ORDER BY [Date] DESC, [RecID] DESC")));
    EXPECT_EQ((Ids{3, 1, 4}), all(*open(u"WHERE [Date]>=#1/1/2000# ORDER BY [Date]")));
    EXPECT_EQ((Ids{1, 4, 3}), all(*open(u"WHERE [Date]>=#1/1/2000# AND [Date]<=#1/1/2020# ORDER BY [Date] DESC")));
    EXPECT_EQ((Ids{1, 3, 4}), all(*open(u"WHERE [Date]>=#1/1/2000#")));
}

TEST_F(RowSetTest, text_order_follows_the_letters) {
    add(1, {}, u"b");
    add(1, {}, u"A");
    add(1, {}, u"a ");
    add(1, {}, u"\u00E4");
    EXPECT_EQ((Ids{2, 3, 4, 1}), all(*open(u"ORDER BY [Name]")));
    EXPECT_EQ((Ids{1, 4, 2, 3}), all(*open(u"ORDER BY [Name] DESC")));
}

TEST_F(RowSetTest, table_is_watched_as_long_as_a_set_is_open) {
    EXPECT_FALSE(songs().watched());
    auto set = open();
    EXPECT_TRUE(songs().watched());
    auto other = open();
    set.reset();
    EXPECT_TRUE(songs().watched());
    other.reset();
    EXPECT_FALSE(songs().watched());
}

TEST_F(RowSetTest, member_that_changed_its_key_is_delivered_again_after_a_restart) {
    std::vector<RowId> rows;
    for (int i = 0; i < 3; ++i) rows.push_back(add(1));
    auto set = open(u"WHERE [ProjID]=1");
    EXPECT_EQ(all(*set), (Ids{1, 2, 3}));
    change(rows[1], kProject, std::int32_t{2});
    EXPECT_EQ(all(*set), (Ids{1, 2, 3}));
}

TEST_F(RowSetTest, member_that_changed_its_key_is_delivered_again_after_going_back) {
    std::vector<RowId> rows;
    for (int i = 0; i < 4; ++i) rows.push_back(add(1));
    auto set = open(u"WHERE [ProjID]=1");
    for (int i = 0; i < 3; ++i) (i == 0 ? set->first() : set->next());
    change(rows[1], kProject, std::int32_t{2});
    set->move_to(rows[0]);
    EXPECT_EQ(rest(*set), (Ids{2, 3, 4}));
}

TEST_F(RowSetTest, statement_as_used_to_find_and_update_a_row) {
    for (int i = 0; i < 10; ++i) add(1);
    auto set = open(u"WHERE [RecID]=4");
    const auto row = set->first();
    ASSERT_TRUE(row);
    change(*row, kName, std::u16string(u"new"));
    EXPECT_EQ(4, id_of(*row));
    EXPECT_FALSE(set->next());
}

}  // namespace
}  // namespace row_set_tests
