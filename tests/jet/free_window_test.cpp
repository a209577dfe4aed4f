// A file that another program has grown, as a whole: its map of free pages is a window that does not begin at page 0.
// Changes that need pages succeed, in both formats.
#include <gtest/gtest.h>

#include <random>

#include "jet/storage/data_page.h"
#include "jet/storage/usage_map.h"
#include "support/temp_folder.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

namespace usage = jet4::usage;

class FreeWindow : public ::testing::TestWithParam<const Format*> {
protected:
    std::size_t pick(std::size_t below) { return static_cast<std::size_t>(random_() % below); }

    Value text() { return std::u16string(20 + pick(230), static_cast<char16_t>(u'a' + pick(26))); }

    void insert(Database& database, std::size_t rows) {
        Table& table = *database.find_table(u"Texts");
        Transaction transaction(database.pager());
        for (std::size_t i = 0; i < rows; ++i) {
            const std::vector<Value> values{Null{}, text(), text()};
            const RowId id = table.insert(values);
            model_[id] = row_values(table, id);
        }
        transaction.commit();
    }

    void erase(Database& database, std::size_t rows) {
        Table& table = *database.find_table(u"Texts");
        Transaction transaction(database.pager());
        for (auto row = model_.begin(); rows > 0 && row != model_.end(); --rows) {
            table.erase(row->first);
            row = model_.erase(row);
        }
        transaction.commit();
    }

    // Of several hundred pages, some of which are free.
    std::unique_ptr<Database> make_file(const std::string& path) {
        CreateOptions options;
        options.format = GetParam();
        options.creation_date = 42329.5;
        auto database = Database::create(path, options);
        database->create_table(
            u"Texts", std::vector{new_column(u"Id", ColumnType::kLong, true), new_column(u"a", ColumnType::kText),
                                  new_column(u"b", ColumnType::kMemo)});
        model_.clear();
        insert(*database, 1000 + pick(6000));
        erase(*database, pick(model_.size() / 2));
        return database;
    }

    // What the window leaves out is in use from now on.
    void make_window(Database& database) {
        Pager& pager = database.pager();
        const auto pages = static_cast<PageNumber>(pager.page_count());
        const auto start = static_cast<PageNumber>(8 * (1 + pick(pages / 8)));
        const std::size_t bytes = GetParam()->usage.default_row - usage::kBitmap + 4 * pick(20);
        ByteVector row(usage::kBitmap + bytes);
        store_u32(row, usage::kStart, start);
        const PageAllocator allocator(pager);
        for (PageNumber page = start; page < start + 8 * bytes; ++page) {
            if (page < pages && !allocator.is_free(page)) continue;
            row[usage::kBitmap + (page - start) / 8] |= static_cast<std::uint8_t>(1u << (page % 8));
        }
        Transaction transaction(pager);
        {
            const MutablePage page = pager.modify(jet4::kGlobalMapPage);
            replace_row(page.bytes(), jet4::kGlobalMapPage, 0, row);
        }
        transaction.commit();
    }

    // Pages that the window left out belong to nobody; nothing else is wrong.
    static void expect_no_damage(Database& database) {
        for (const Violation& violation : check_structure(database)) {
            EXPECT_EQ(violation.rule, "page-leaked") << violation.page << ": " << violation.detail;
        }
    }

    void expect_model(Database& database) const {
        const Table& table = *database.find_table(u"Texts");
        std::size_t rows = 0;
        for (auto id = table.next_row({}); id; id = table.next_row(*id), ++rows) {
            const auto known = model_.find(*id);
            ASSERT_NE(known, model_.end());
            EXPECT_EQ(row_values(table, *id), known->second);
        }
        EXPECT_EQ(rows, model_.size());
    }

    std::mt19937 random_{31};
    std::map<RowId, std::vector<Value>> model_;
    testing_support::TempFolder folder_;
};

TEST_P(FreeWindow, file_with_the_window_at_a_random_place_takes_every_change) {
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        const std::string path = folder_.file(std::to_string(round) + ".mdb");
        make_file(path)->close();
        {
            auto database = Database::open(path, {});
            make_window(*database);
            database->close();
        }
        auto database = Database::open(path, {});
        expect_no_damage(*database);
        insert(*database, 500 + pick(3000));
        erase(*database, model_.size() / 3);
        const NewColumn columns[] = {new_column(u"n", ColumnType::kLong)};
        database->create_table(u"Second", columns);
        database->add_column(u"Texts", new_column(u"c", ColumnType::kMemo));
        database->delete_column(u"Texts", u"c");
        insert(*database, 500);
        expect_no_damage(*database);
        expect_model(*database);
        database->close();
        database = Database::open(path, {});
        expect_no_damage(*database);
        expect_model(*database);
        database->close();
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, FreeWindow, ::testing::Values(&kJet3, &kJet4),
                         [](const auto& format) { return format.param->is_jet3() ? "jet3" : "jet4"; });

}  // namespace
}  // namespace jet
