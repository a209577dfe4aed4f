// Indexes in the General order, version 1: proved before their first change, then kept right.
#include <gtest/gtest.h>

#include "jet/indexes/index.h"
#include "jet/indexes/index_key.h"
#include "support/temp_folder.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

class OrderVersion1 : public ::testing::Test {
protected:
    OrderVersion1() {
        database_ = Database::create(path_, {});
        make_table(u"First");
    }
    void make_table(std::u16string_view name) {
        const NewColumn columns[] = {new_column(u"n", ColumnType::kLong)};
        database_->create_table(name, columns);
    }
    Table& objects() { return *database_->table_by_page(jet4::kObjectsPage); }

    // Makes the names of the catalogue sorted by version 1, with entries of `order`.
    void sort_names_by_version_1(TextOrder order) {
        const TableDef def = objects().def();
        {
            Transaction transaction(database_->pager());
            const MutablePage page = database_->pager().modify(jet4::kObjectsPage);
            for (std::size_t i = 0; i < def.columns.size(); ++i) {
                const std::size_t record = jet4::tdef::kFixedHeader +
                                           def.real_indexes.size() * jet4::tdef::kIndexStatistics +
                                           i * jet4::tdef::kColumnRecord;
                if (load_u16(page.bytes(), record + jet4::tdef::column::kNumber) == kNameNumber) {
                    store_u8(page.bytes(), record + jet4::tdef::column::kSortVersion, 1);
                }
            }
            transaction.commit();
        }
        database_->close();
        database_ = Database::open(path_, {});
        Transaction transaction(database_->pager());
        const TableDef changed = objects().def();
        for (const RealIndex& real : changed.real_indexes) {
            if (!has_text(real, changed)) continue;
            Index index(database_->pager(), database_->allocator(), changed.page, real.root, real.map);
            std::vector<std::pair<ByteVector, RowId>> old;
            index.visit([&](ByteSpan key, RowId row) {
                old.emplace_back(ByteVector(key.begin(), key.end()), row);
                return true;
            });
            for (const auto& [key, row] : old) index.erase(key, row);
            for (const auto& [key, row] : old) index.insert(key_of(row, order), row);
        }
        transaction.commit();
    }
    // Of the index over parent and name.
    ByteVector key_of(RowId row, TextOrder order) {
        const TableDef& def = objects().def();
        const std::vector<Value> values = row_values(objects(), row);
        ByteVector key{0x7F};
        append_be(
            key,
            static_cast<std::uint32_t>(std::get<std::int32_t>(values[*def.find_column(u"ParentId")])) ^ 0x80000000u, 4);
        key.push_back(0x7F);
        append_sort_key(key, std::get<std::u16string>(values[*def.find_column(u"Name")]), order);
        return key;
    }

    static constexpr std::uint16_t kNameNumber = 2;
    testing_support::TempFolder folder_;
    const std::string path_ = folder_.file("a.mdb");
    std::unique_ptr<Database> database_;
};

TEST_F(OrderVersion1, index_with_the_entries_it_should_have_is_kept_right) {
    sort_names_by_version_1(TextOrder::kGeneral1);
    expect_sound(*database_);
    for (int i = 0; i < 60; ++i) make_table(from_utf8("Table-" + std::to_string(i * 37 % 60) + " \u00E9"));
    expect_sound(*database_);
    database_->close();
    database_ = Database::open(path_, {});
    expect_sound(*database_);
    EXPECT_NE(database_->find_table(u"table-7 \u00E9"), nullptr);
}

TEST_F(OrderVersion1, index_with_other_entries_is_refused_with_the_reason) {
    sort_names_by_version_1(TextOrder::kGeneral);
    try {
        make_table(u"Second");
        FAIL() << "a table was made";
    } catch (const Error& error) {
        EXPECT_EQ(error.number(), errors::kCannotMaintainIndex);
        EXPECT_NE(std::string(error.what()).find("version 1"), std::string::npos) << error.what();
    }
    EXPECT_NE(database_->find_table(u"First"), nullptr);
}

TEST_F(OrderVersion1, index_in_an_unknown_order_names_the_order) {
    ColumnDef column;
    column.name = u"Name";
    column.type = ColumnType::kText;
    column.lcid = 0x0407;
    RowShape shape;
    shape.columns.push_back(column);
    RealIndex index;
    index.columns.push_back({0, true});
    const auto reason = why_not_maintainable(index, shape);
    ASSERT_TRUE(reason);
    EXPECT_NE(reason->find("order 1031, version 0"), std::string::npos) << *reason;
}

}  // namespace
}  // namespace jet
