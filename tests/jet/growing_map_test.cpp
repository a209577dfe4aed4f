// Column maps that are built no further than a search needs.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "jet/sql/row_set.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

constexpr std::size_t kNumber = 0;
constexpr std::size_t kNote = 1;

class GrowingMap : public testing::Test {
protected:
    GrowingMap() : database_(Database::create("d/a.mdb", {})) {
        const NewColumn columns[] = {new_column(u"Number", ColumnType::kLong), new_column(u"Note", ColumnType::kText)};
        database_->create_table(u"T", columns);
    }
    void reopen() {
        database_.reset();
        database_ = Database::open("d/a.mdb", {});
    }
    Table& table() { return *database_->find_table(u"T"); }
    void fill(std::int32_t rows, std::int32_t numbers) {
        Transaction transaction(database_->pager());
        for (std::int32_t i = 0; i < rows; ++i) table().insert({i % numbers, std::u16string(100, u'x')});
        transaction.commit();
    }
    static std::uint64_t key(std::int32_t number) { return ColumnMap::key_of_long(number); }

    // What next_row_of_key has to give, by a look at every row.
    std::optional<RowId> next_by_scan(std::int32_t number, RowId after) {
        for (auto row = table().next_row(after); row; row = table().next_row(*row)) {
            if (row_values(table(), *row)[kNumber] == Value(number)) return row;
        }
        return std::nullopt;
    }

    MemoryDisk memory_;
    std::unique_ptr<Database> database_;
};

TEST_F(GrowingMap, first_search_reads_no_further_than_to_its_row) {
    fill(20000, 20000);
    reopen();
    ASSERT_TRUE(table().next_row_of_key(kNumber, key(0), {}));
    const std::uint64_t near = database_->pager().pages_read();
    ASSERT_TRUE(table().next_row_of_key(kNumber, key(19999), {}));
    EXPECT_LT(near, 100u);
    EXPECT_GT(database_->pager().pages_read(), 1000u);
    // All of it is known now.
    const std::uint64_t all = database_->pager().pages_read();
    EXPECT_FALSE(table().next_row_of_key(kNumber, key(20000), {}));
    EXPECT_TRUE(table().next_row_of_key(kNumber, key(777), {}));
    EXPECT_EQ(database_->pager().pages_read(), all);
}

// Changes before and after the place that the map has come to.
TEST_F(GrowingMap, changes_while_it_grows_are_found_once) {
    std::mt19937 engine(3);
    const auto random = [&] { return static_cast<std::uint32_t>(engine()); };
    for (int round = 0; round < 12; ++round) {
        fill(600, 97);
        reopen();
        for (int step = 0; step < 120; ++step) {
            const auto number = static_cast<std::int32_t>(random() % 100);
            RowId after;
            for (std::uint32_t hops = random() % 3; hops > 0; --hops) {
                const auto row = next_by_scan(number, after);
                if (row) after = *row;
            }
            EXPECT_EQ(table().next_row_of_key(kNumber, key(number), after), next_by_scan(number, after));
            const auto victim = table().next_row({4 + random() % 40, 0});
            if (!victim) continue;
            switch (random() % 4) {
                case 0: table().erase(*victim); break;
                case 1: table().insert({number, u"new"}); break;
                case 2: {
                    const ColumnChange change{kNumber, number};
                    table().update(*victim, std::span(&change, 1));
                    break;
                }
                default: {
                    // Long enough to move some rows to other pages.
                    const ColumnChange change{kNote, std::u16string(random() % 255, u'y')};
                    table().update(*victim, std::span(&change, 1));
                    break;
                }
            }
        }
        // And as a whole.
        std::map<std::int32_t, int> by_scan;
        std::size_t rows = 0;
        for (auto row = table().next_row({}); row; row = table().next_row(*row), ++rows) {
            ++by_scan[std::get<std::int32_t>(row_values(table(), *row)[kNumber])];
        }
        const ColumnMap& map = *table().column_map(kNumber);
        EXPECT_EQ(map.size(), rows);
        for (const auto& [number, count] : by_scan) {
            int found = 0;
            RowId after;
            while (const auto row = table().next_row_of_key(kNumber, key(number), after)) after = *row, ++found;
            EXPECT_EQ(found, count) << number;
        }
    }
}

TEST_F(GrowingMap, rollback_makes_it_begin_anew) {
    fill(600, 600);
    reopen();
    ASSERT_TRUE(table().next_row_of_key(kNumber, key(300), {}));
    database_->pager().begin();
    table().insert({-5, u"new"});
    EXPECT_TRUE(table().next_row_of_key(kNumber, key(-5), {}));
    database_->pager().rollback();
    EXPECT_FALSE(table().next_row_of_key(kNumber, key(-5), {}));
    EXPECT_TRUE(table().next_row_of_key(kNumber, key(300), {}));
}

// An enumeration brings the next pages with it; rows are as they would be page by page.
TEST_F(GrowingMap, enumeration_reads_ahead_and_each_page_once) {
    fill(20000, 20000);
    reopen();
    memory_.disk.reset_counts();
    std::int32_t expected = 0;
    for (auto row = table().next_row({}); row; row = table().next_row(*row)) {
        EXPECT_EQ(row_values(table(), *row)[kNumber], Value(expected++));
    }
    EXPECT_EQ(expected, 20000);
    const std::uint64_t readings = memory_.disk.count(testing_support::Operation::kRead);
    EXPECT_GT(database_->pager().pages_read(), 1000u);
    EXPECT_LE(database_->pager().pages_read(), database_->pager().page_count());  // none twice
    EXPECT_LT(readings, 200u);
}

}  // namespace
}  // namespace jet
