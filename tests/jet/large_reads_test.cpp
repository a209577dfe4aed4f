// Pages read in runs, and past the cache, are those of the file's own format: its page size, and decoded.
#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"
#include "tests/support/temp_folder.h"

namespace jet {
namespace {

constexpr std::int32_t kRows = 600;

struct Kind {
    const Format* format;
    std::uint32_t key;
};

class LargeReads : public ::testing::TestWithParam<Kind> {
protected:
    LargeReads() {
        CreateOptions options;
        options.format = GetParam().format;
        options.encryption_key = GetParam().key;
        auto database = Database::create(folder_.file("a.mdb"), options);
        const NewColumn columns[] = {new_column(u"Number", ColumnType::kLong), new_column(u"Text", ColumnType::kText)};
        database->create_table(u"Rows", columns);
        Transaction transaction(database->pager());
        for (std::int32_t i = 0; i < kRows; ++i) {
            database->find_table(u"Rows")->insert({i, std::u16string(250, static_cast<char16_t>(u'a' + i % 26))});
        }
        transaction.commit();
        database->close();
        database_ = Database::open(folder_.file("a.mdb"), {});
    }
    Table& rows() { return *database_->find_table(u"Rows"); }

    testing_support::TempFolder folder_;
    std::unique_ptr<Database> database_;
};

TEST_P(LargeReads, enumeration_gives_every_row) {
    std::int32_t number = 0;
    for (auto row = rows().next_row({}); row; row = rows().next_row(*row), ++number) {
        const std::u16string text(250, static_cast<char16_t>(u'a' + number % 26));
        ASSERT_EQ(row_values(rows(), *row), (std::vector<Value>{number, text}));
    }
    EXPECT_EQ(number, kRows);
    EXPECT_GT(database_->pager().page_count(), 60u) << "too few pages for long runs";
}

TEST_P(LargeReads, map_of_a_column_finds_every_row) {
    const ColumnMap* const map = rows().column_map(0);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(map->size(), static_cast<std::size_t>(kRows));
    for (std::int32_t number = 0; number < kRows; ++number) {
        const auto row = rows().next_row_of_key(0, ColumnMap::key_of_long(number), {});
        ASSERT_TRUE(row) << number;
        EXPECT_EQ(row_values(rows(), *row)[0], Value(number));
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, LargeReads,
                         ::testing::Values(Kind{&kJet4, 0}, Kind{&kJet3, 0}, Kind{&kJet4, 0x1234567},
                                           Kind{&kJet3, 0x1234567}));

}  // namespace
}  // namespace jet
