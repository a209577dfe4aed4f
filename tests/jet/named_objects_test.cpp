// Objects of the container of tables that are none: named as what they are.
#include <gtest/gtest.h>

#include "support/temp_folder.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

class NamedObjects : public ::testing::Test {
protected:
    NamedObjects() {
        database_ = Database::create(folder_.file("a.mdb"), {});
        add(u"Linked", kLinkedTable, -5, u"C:\\other.mdb", u"Far");
        add(u"Question", kQueryObject, -6, u"", u"");
        database_->close();
        database_ = Database::open(folder_.file("a.mdb"), {});
    }
    void add(std::u16string name, std::int16_t type, std::int32_t id, std::u16string file, std::u16string table) {
        Table& objects = *database_->table_by_page(jet4::kObjectsPage);
        std::vector<Value> values(objects.def().columns.size());
        const auto set = [&](const char16_t* column, Value value) {
            values[*objects.def().find_column(column)] = std::move(value);
        };
        set(catalog_columns::kName, std::move(name));
        set(catalog_columns::kType, type);
        set(catalog_columns::kId, id);
        set(catalog_columns::kParentId, jet4::kTablesContainer);
        if (!file.empty()) set(catalog_columns::kDatabase, std::move(file));
        if (!table.empty()) set(catalog_columns::kForeignName, std::move(table));
        objects.insert(std::move(values));
    }
    std::string reason_for(std::u16string_view name) {
        EXPECT_EQ(database_->find_table(name), nullptr);
        return database_->why_no_table(name);
    }

    testing_support::TempFolder folder_;
    std::unique_ptr<Database> database_;
};

TEST_F(NamedObjects, linked_table_says_where_it_leads) {
    const std::string reason = reason_for(u"linked");
    EXPECT_NE(reason.find("is linked to 'Far' in C:\\other.mdb"), std::string::npos) << reason;
}

TEST_F(NamedObjects, query_is_called_one) {
    EXPECT_NE(reason_for(u"Question").find("is a query"), std::string::npos);
    EXPECT_EQ(error_number([&] { database_->delete_column(u"Question", u"x"); }), errors::kNotInCollection);
}

TEST_F(NamedObjects, what_is_not_there_is_called_so) {
    EXPECT_NE(reason_for(u"Nothing").find("no table Nothing"), std::string::npos);
}

TEST_F(NamedObjects, replicated_file_is_called_one) {
    EXPECT_FALSE(database_->is_replica());
    const NewColumn columns[] = {new_column(u"n", ColumnType::kLong)};
    database_->create_table(u"MSysReplicas", columns);
    EXPECT_TRUE(database_->is_replica());
}

}  // namespace
}  // namespace jet
