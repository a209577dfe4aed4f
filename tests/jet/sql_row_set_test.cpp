// Membership of open sets while their table changes.
#include "jet/sql/row_set.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "support/temp_folder.h"

namespace {

using jet::ColumnType;
using jet::RowId;
using jet::Value;
using jet::sql::Query;
using jet::sql::RowSet;
using testing_support::TempFolder;
using Ids = std::vector<std::int32_t>;

constexpr std::size_t kProject = 1;
constexpr std::size_t kDate = 2;
constexpr std::size_t kName = 3;

void append(RowSet& set, RowId row) {
    set.additions().begin();
    set.additions().store(row);
}

class RowSetTest : public ::testing::Test {
protected:
    RowSetTest() : database_(jet::Database::create(folder_.file("a.mdb"), {})) {
        jet::NewColumn columns[4];
        columns[0].name = u"RecID";
        columns[0].autonumber = true;
        columns[1].name = u"ProjID";
        columns[2].name = u"Date";
        columns[2].type = ColumnType::kDate;
        columns[3].name = u"Name";
        columns[3].type = ColumnType::kText;
        database_->create_table(u"Songs", columns);
    }

    jet::Table& songs() { return *database_->find_table(u"Songs"); }

    RowId add(std::int32_t project, Value date = {}, std::u16string name = u"x") {
        return songs().insert({Value(), project, std::move(date), std::move(name)});
    }

    void change(RowId row, std::size_t position, Value value) {
        const jet::ColumnChange changed{position, std::move(value)};
        songs().update(row, std::span(&changed, 1));
    }

    std::unique_ptr<RowSet> open(std::u16string_view rest = u"") {
        return std::make_unique<RowSet>(Query::prepare(*database_, u"SELECT * FROM [Songs] " + std::u16string(rest)));
    }

    std::int32_t id_of(RowId row) {
        jet::RowView view;
        EXPECT_TRUE(songs().read(row, view));
        return std::get<std::int32_t>(view.value(0));
    }

    Ids all(RowSet& set) {
        Ids ids;
        for (auto row = set.first(); row; row = set.next()) ids.push_back(id_of(*row));
        return ids;
    }

    Ids rest(RowSet& set) {
        Ids ids;
        while (const auto row = set.next()) ids.push_back(id_of(*row));
        return ids;
    }

    TempFolder folder_;
    std::unique_ptr<jet::Database> database_;
};

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

TEST_F(RowSetTest, statement_as_used_to_find_and_update_a_row) {
    for (int i = 0; i < 10; ++i) add(1);
    auto set = open(u"WHERE [RecID]=4");
    const auto row = set->first();
    ASSERT_TRUE(row);
    change(*row, kName, std::u16string(u"new"));
    EXPECT_EQ(4, id_of(*row));
    EXPECT_FALSE(set->next());
}

// What a set must deliver, by key numbers: rows move in and out of their addresses, numbers never repeat.
class Model {
public:
    Model(std::unique_ptr<RowSet> set, Ids members) : set_(std::move(set)), members_(std::move(members)) {}

    RowSet& set() { return *set_; }
    void append(std::int32_t id) { members_.push_back(id); }
    void restart() { at_ = 0; }

    std::optional<std::int32_t> next(const std::set<std::int32_t>& alive) {
        while (at_ < members_.size()) {
            const std::int32_t id = members_[at_++];
            if (alive.contains(id)) return id;
        }
        return std::nullopt;
    }

    // Makes a live row delivered before the current one; none when there is none.
    std::optional<std::int32_t> go_back(std::size_t steps, const std::set<std::int32_t>& alive) {
        if (at_ < steps + 1 || !alive.contains(members_[at_ - 1 - steps])) return std::nullopt;
        at_ -= steps;
        return members_[at_ - 1];
    }

private:
    std::unique_ptr<RowSet> set_;
    Ids members_;
    std::size_t at_ = 0;
};

TEST_F(RowSetTest, random_changes_under_open_sets_keep_their_membership) {
    const std::u16string statements[] = {u"",
                                         u"WHERE [ProjID]=1",
                                         u"WHERE [ProjID]=2 AND [RecID]>5",
                                         u"WHERE [ProjID]<2",
                                         u"WHERE [Date]>=#07/06/2009# AND [Date]<=#07/12/2009#",
                                         u"WHERE [Date]=#07/08/2009#",
                                         u"ORDER BY [Date]",
                                         u"WHERE [ProjID]=1 ORDER BY [Date] DESC",
                                         u"WHERE [Date]>#07/06/2009# ORDER BY [ProjID] DESC, [Date]"};
    for (std::uint32_t seed = 1; seed <= 4; ++seed) {
        std::mt19937 random(seed);
        const auto any = [&random](std::size_t below) { return static_cast<std::size_t>(random() % below); };
        const auto any_project = [&] { return static_cast<std::int32_t>(any(4)); };
        const auto any_date = [&] {
            return any(5) == 0 ? Value() : Value(jet::Date{40000.0 + static_cast<double>(any(10))});
        };
        std::map<std::int32_t, RowId> rows;
        std::set<std::int32_t> alive;
        for (auto row = songs().next_row({}); row; row = songs().next_row({})) songs().erase(*row);
        const auto insert = [&] {
            const RowId row = add(any_project(), any_date(), std::u16string(100 + any(150), u'n'));
            const std::int32_t id = id_of(row);
            rows[id] = row;
            alive.insert(id);
            return id;
        };
        const auto any_alive = [&] {
            return *std::next(alive.begin(), static_cast<std::ptrdiff_t>(any(alive.size())));
        };
        for (int i = 0; i < 40; ++i) insert();
        std::vector<Model> models;
        for (int step = 0; step < 4000; ++step) {
            const std::size_t action = any(100);
            // Long phases of deleting empty whole pages, whose addresses are then taken again.
            const bool shrinking = (step / 400) % 2 == 1;
            if (action < 6) {
                if (models.size() == 6) models.erase(models.begin() + static_cast<std::ptrdiff_t>(any(6)));
                const std::u16string& statement = statements[any(std::size(statements))];
                const Ids members = all(*open(statement));
                models.emplace_back(open(statement), members);
            } else if (action < (shrinking ? 14u : 34u)) {
                const std::int32_t id = insert();
                if (any(3) == 0 && !models.empty()) {
                    Model& owner = models[any(models.size())];
                    owner.append(id);
                    append(owner.set(), rows[id]);
                }
            } else if (action < 40 && !alive.empty()) {
                const std::int32_t id = any_alive();
                songs().erase(rows[id]);
                alive.erase(id);
                rows.erase(id);
            } else if (action < 60 && !alive.empty()) {
                const RowId row = rows[any_alive()];
                switch (any(3)) {
                    case 0: change(row, kProject, any_project()); break;
                    case 1: change(row, kDate, any_date()); break;
                    default: change(row, kName, std::u16string(1 + any(255), u'm')); break;
                }
            } else if (!models.empty()) {
                Model& model = models[any(models.size())];
                const std::size_t move = any(20);
                if (move == 0) model.restart();
                const auto back = move == 1 ? model.go_back(any(3), alive) : std::nullopt;
                if (back) {
                    ASSERT_TRUE(model.set().delivered(rows[*back])) << "seed " << seed << " step " << step;
                    model.set().move_to(rows[*back]);
                }
                const auto expected = model.next(alive);
                const auto delivered = move == 0 ? model.set().first() : model.set().next();
                ASSERT_EQ(expected.has_value(), delivered.has_value()) << "seed " << seed << " step " << step;
                if (expected) {
                    ASSERT_EQ(*expected, id_of(*delivered)) << "seed " << seed << " step " << step;
                    ASSERT_TRUE(model.set().delivered(*delivered));
                }
            }
        }
    }
}

}  // namespace
