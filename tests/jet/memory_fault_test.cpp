// Changes of rows for which memory runs out: at every single request, each is either done or has left no trace, and
// what is kept in memory says the same as the table.
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <vector>

#include "jet/tables/database.h"
#include "tests/jet/allocation_meter.h"
#include "tests/jet/engine_fixture.h"
#include "tests/support/figures.h"

namespace jet {
namespace {

class MemoryFault : public ::testing::Test {
protected:
    static constexpr std::size_t kCount = 2;
    static constexpr int kRows = 700;

    MemoryFault() : disk_(std::make_unique<MemoryDisk>()) {
        CreateOptions options;
        options.creation_date = 42329.5;
        database_ = Database::create("d/memory.mdb", options);
        const NewColumn columns[] = {new_column(u"Id", ColumnType::kLong, true),
                                     new_column(u"Notes", ColumnType::kMemo), new_column(u"Count", ColumnType::kLong)};
        database_->create_table(u"Things", columns);
        database_->close();
        OpenOptions opening;
        opening.pager.sync_interval = std::chrono::hours(24);  // what a sync asks of the disk in memory is not ours
        database_ = Database::open("d/memory.mdb", opening);
        for (int i = 0; i < kRows; ++i) rows_.push_back(things().insert(values_of(i)));
    }

    static std::vector<Value> values_of(int i) {
        return {Null{}, std::u16string(static_cast<std::size_t>(i % 90), u'n'), std::int32_t{i * 7 % 101}};
    }
    Table& things() { return *database_->find_table(u"Things"); }

    using Content = std::map<RowId, std::vector<Value>>;
    Content content() {
        Content rows;
        for (auto row = things().next_row({}); row; row = things().next_row(*row)) {
            rows[*row] = row_values(things(), *row);
        }
        return rows;
    }

    void expect_maps_to_agree(const Content& rows) {
        for (const std::size_t position : {std::size_t{0}, kCount}) {
            std::vector<ColumnMap::Entry> expected;
            for (const auto& [row, values] : rows) {
                expected.push_back({*ColumnMap::key_of(values[position]), row.pack()});
            }
            std::sort(expected.begin(), expected.end());
            const ColumnMap& map = *things().column_map(position);
            ASSERT_EQ(map.size(), expected.size());
            ColumnMap::Entry from;
            for (const ColumnMap::Entry& entry : expected) {
                ASSERT_EQ(map.lower_bound(from), entry);
                from = {entry.key, entry.row + 1};
            }
        }
    }

    // `change(n)` makes a change that none of the numbers before has made.
    template <class Change>
    void expect_all_or_nothing(const Change& change) {
        int refusals = 0;
        int n = 0;
        for (int granted = 0;; ++granted) {
            expect_maps_to_agree(content());  // builds them when they are gone
            const Content before = content();
            bool done = false;
            bool refused = false;
            {
                const RefusedAllocation refusal(granted);
                try {
                    change(n);
                    done = true;
                } catch (const std::bad_alloc&) {
                }
                refused = refusal.refused();
            }
            const Content after = content();
            ASSERT_EQ(after != before, done) << "after " << granted << " requests";
            expect_maps_to_agree(after);
            n += done;
            refusals += refused;
            if (refused) testing_support::count_tried(testing_support::Figure::kFaults);
            if (!refused) break;
        }
        EXPECT_GT(refusals, 3);  // a deletion asks for little, and for less where pointers are short
        expect_sound(*database_);
    }

    std::unique_ptr<MemoryDisk> disk_;
    std::unique_ptr<Database> database_;
    std::vector<RowId> rows_;
};

TEST_F(MemoryFault, row_is_added_or_not) {
    expect_all_or_nothing([&](int n) { things().insert(values_of(kRows + n)); });
}

TEST_F(MemoryFault, row_is_changed_or_not) {
    expect_all_or_nothing([&](int n) {
        const ColumnChange changes[] = {{1, std::u16string(100, u'x')}, {kCount, std::int32_t{1000 + n}}};
        things().update(rows_[static_cast<std::size_t>(n)], changes);
    });
}

TEST_F(MemoryFault, row_is_deleted_or_not) {
    expect_all_or_nothing([&](int n) { things().erase(rows_[static_cast<std::size_t>(n)]); });
}

// What closing could not store for lack of memory, nobody tries to store again once the file is closed.
TEST_F(MemoryFault, closing_without_memory_lets_go_of_a_whole_file) {
    const std::size_t rows = content().size();
    database_->close();
    int refusals = 0;
    for (int granted = 0, refused = 1; refused != 0; ++granted) {
        database_ = Database::open("d/memory.mdb", {});  // with no room kept from earlier changes
        things().take_autonumber();                      // of a row that was never added: stored at closing
        {
            const RefusedAllocation refusal(granted);
            try {
                database_->close();
            } catch (const std::bad_alloc&) {
            } catch (const Error&) {
            }
            refused = refusal.refused();
        }
        database_.reset();
        refusals += refused;
        const auto again = Database::open("d/memory.mdb", {});
        expect_sound(*again);
        ASSERT_EQ(again->find_table(u"Things")->def().row_count, rows) << "after " << granted << " requests";
    }
    EXPECT_GT(refusals, 3);
}

}  // namespace
}  // namespace jet
