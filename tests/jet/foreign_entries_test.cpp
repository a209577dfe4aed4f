// Rows and index entries as older programs have left them.
#include <gtest/gtest.h>

#include "jet/check/check.h"
#include "jet/indexes/index.h"
#include "jet/indexes/index_key.h"
#include "jet/storage/data_page.h"
#include "support/temp_folder.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/new_column.h"

namespace jet {
namespace {

class ForeignEntries : public ::testing::Test {
protected:
    ForeignEntries() {
        database_ = Database::create(folder_.file("a.mdb"), {});
        NewColumn number;
        number.name = u"n";
        NewColumn text;
        text.name = u"t";
        text.type = ColumnType::kText;
        const NewColumn columns[] = {number, text};
        database_->create_table(u"Nu\u00DF-Nougat", columns);
    }
    // The entry of the table's own row in the catalogue's index of names, and where it is.
    struct Entry {
        ByteVector key;
        RowId row;
    };
    Table& objects() { return *database_->table_by_page(jet4::kObjectsPage); }
    const RealIndex& index_of_names() {
        for (const RealIndex& index : objects().def().real_indexes) {
            if (has_text(index, objects().def())) return index;
        }
        throw std::runtime_error("no index of names");
    }
    Index names() {
        const RealIndex& index = index_of_names();
        return {database_->pager(), database_->allocator(), jet4::kObjectsPage, index.root, index.map};
    }
    Entry last_entry() {
        Entry found;
        names().visit([&](ByteSpan key, RowId row) {
            if (row.pack() > found.row.pack()) found = {ByteVector(key.begin(), key.end()), row};
            return true;
        });
        return found;
    }
    // As another rule would have made it.
    void move_entry(const Entry& entry) {
        Transaction transaction(database_->pager());
        names().erase(entry.key, entry.row);
        ByteVector other = entry.key;
        other[other.size() - 3] ^= 0x10;
        names().insert(other, entry.row);
        transaction.commit();
    }

    // Replaces the entry of the last row, whose name is `name`, by that of a former rule.
    void enter_by(KeyRule rule, const std::u16string& name) {
        const Entry entry = last_entry();
        const std::vector<Value> values = row_values(objects(), entry.row);
        ASSERT_EQ(values[*objects().def().find_column(u"Name")], Value(name));
        const ByteVector key = make_index_key(index_of_names(), objects().def(), values, rule);
        ASSERT_NE(key, entry.key);
        Transaction transaction(database_->pager());
        names().erase(entry.key, entry.row);
        names().insert(key, entry.row);
        transaction.commit();
    }

    testing_support::TempFolder folder_;
    std::unique_ptr<Database> database_;
};

TEST_F(ForeignEntries, row_with_an_entry_of_another_rule_is_changed) {
    const Entry entry = last_entry();
    move_entry(entry);
    const auto position = *objects().def().find_column(u"Name");
    const ColumnChange change[] = {{position, std::u16string(u"Nu\u00DF")}};
    objects().update(entry.row, change);
    EXPECT_TRUE(check_structure(*database_).empty());
}

TEST_F(ForeignEntries, row_with_an_entry_of_another_rule_is_deleted) {
    const Entry entry = last_entry();
    move_entry(entry);
    objects().erase(entry.row);
    names().visit([&](ByteSpan, RowId row) {
        EXPECT_NE(row, entry.row);
        return true;
    });
}

// A text that the rules give different keys.
constexpr char16_t kExpanding[] = u"Nu\u00DF\u00E9-\u30E9-1";

TEST_F(ForeignEntries, former_keys_are_recognised_and_take_part_in_uniqueness) {
    for (const KeyRule rule : kFormerKeyRules) {
        const std::u16string name = kExpanding;
        database_ = Database::create(folder_.file(rule == KeyRule::kOnePosition ? "b.mdb" : "c.mdb"), {});
        database_->create_table(name, std::vector{new_column(u"n", ColumnType::kLong)});
        enter_by(rule, name);
        const std::vector<Violation> found = check_structure(*database_);
        ASSERT_EQ(found.size(), 1u) << found.back().rule << ": " << found.back().detail;
        EXPECT_EQ(found[0].rule, "index-key-former") << found[0].detail;
        const std::vector<Value> values = row_values(objects(), last_entry().row);
        EXPECT_EQ(error_number([&] { objects().insert(values); }), errors::kDuplicateKey);
        const RowId row = last_entry().row;
        const ColumnChange change[] = {{*objects().def().find_column(u"Name"), name + u" too"}};
        objects().update(row, change);
        expect_sound(*database_);
        const ColumnChange back[] = {{*objects().def().find_column(u"Name"), name}};
        objects().update(row, back);
        enter_by(rule, name);
        objects().erase(row);
        names().visit([&](ByteSpan, RowId left) {
            EXPECT_NE(left, row);
            return true;
        });
    }
}

TEST_F(ForeignEntries, rules_agree_on_plain_texts) {
    const RealIndex& index = index_of_names();
    std::vector<Value> values = row_values(objects(), last_entry().row);
    const std::size_t name = *objects().def().find_column(u"Name");
    values[name] = std::u16string(u"Nuts and O'Brien-");
    EXPECT_TRUE(former_index_keys(index, objects().def(), values).empty());
    values[name] = std::u16string(u"\u00E9t\u00E9");
    EXPECT_TRUE(former_index_keys(index, objects().def(), values).empty());
    values[name] = std::u16string(u"Nu\u00DF\u00E9");
    EXPECT_EQ(former_index_keys(index, objects().def(), values).size(), 1u);
    values[name] = std::u16string(kExpanding);
    EXPECT_EQ(former_index_keys(index, objects().def(), values).size(), 2u);
}

TEST_F(ForeignEntries, row_without_any_entry_is_damage) {
    const Entry entry = last_entry();
    {
        Transaction transaction(database_->pager());
        names().erase(entry.key, entry.row);
        transaction.commit();
    }
    try {
        objects().erase(entry.row);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.number(), errors::kDamaged);
    }
}

// The fixed area of the row looks like offsets, and like none.
TEST_F(ForeignEntries, row_older_than_the_first_variable_column_is_sound) {
    Table& table = *database_->find_table(u"Nu\u00DF-Nougat");
    for (const std::int32_t value : {0, 1, 0x00020005, 0x7FFFFFFF, -1}) {
        const RowId id = table.insert({value, Null{}});
        ByteVector row;
        append_u16(row, 1);
        append_u32(row, static_cast<std::uint32_t>(value));
        append_u8(row, 1);
        Transaction transaction(database_->pager());
        const MutablePage page = database_->pager().modify(id.page);
        replace_row(page.bytes(), id.page, id.slot, row);
        transaction.commit();
        RowView view;
        ASSERT_TRUE(table.read(id, view));
        EXPECT_EQ(view.value(0), Value(value));
        EXPECT_TRUE(is_null(view.value(1)));
    }
    for (const Violation& violation : check_structure(*database_)) ADD_FAILURE() << violation.rule << violation.detail;
}

}  // namespace
}  // namespace jet
