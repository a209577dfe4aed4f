// Columns that carry the compression flag: what is stored, what comes back, and what the definition says.
#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"
#include "tests/support/temp_folder.h"

namespace jet {
namespace {

using testing_support::TempFolder;

NewColumn flagged(std::u16string name, ColumnType type) {
    NewColumn column = new_column(std::move(name), type);
    column.compressed = true;
    return column;
}

// Two texts and two memos, the second of each without the flag.
class CompressedColumns : public ::testing::Test {
protected:
    CompressedColumns() : database_(Database::create(folder_.file("a.mdb"), {})) {
        const NewColumn columns[] = {flagged(u"Short", ColumnType::kText), new_column(u"Plain", ColumnType::kText),
                                     flagged(u"ShortMemo", ColumnType::kMemo),
                                     new_column(u"PlainMemo", ColumnType::kMemo)};
        database_->create_table(u"Texts", columns);
    }
    Table& texts() { return *database_->find_table(u"Texts"); }
    RowId add(const std::u16string& text) { return texts().insert({text, text, text, text}); }
    // Bytes of a text in its row, or of a memo wherever it lies.
    std::size_t stored_bytes(RowId row, std::size_t position) {
        RowView view;
        EXPECT_TRUE(texts().read(row, view));
        const auto stored = view.stored(position);
        if (!stored) return 0;
        if (!texts().def().columns[position].is_long()) return stored->size();
        return load_u32(*stored, 0) & jet4::long_value::kLengthMask;
    }

    TempFolder folder_;
    std::unique_ptr<Database> database_;
};

TEST_F(CompressedColumns, definition_and_properties_carry_the_flag) {
    database_->close();
    database_ = Database::open(folder_.file("a.mdb"), {});
    const Catalog catalog(*database_->table_by_page(jet4::kObjectsPage), *database_->table_by_page(jet4::kAcesPage));
    const PropertySet properties = catalog.properties(*catalog.find(u"Texts"));
    for (std::size_t i = 0; i < 4; ++i) {
        const ColumnDef& column = texts().def().columns[i];
        EXPECT_EQ(column.is_compressed(), i % 2 == 0) << i;
        EXPECT_EQ(properties.column_flag(column.name, u"UnicodeCompression", false), i % 2 == 0) << i;
    }
}

TEST_F(CompressedColumns, narrow_characters_take_one_byte_each) {
    const RowId row = add(std::u16string(200, u'\u00e4'));
    EXPECT_EQ(stored_bytes(row, 0), 202u);
    EXPECT_EQ(stored_bytes(row, 1), 400u);
    EXPECT_EQ(stored_bytes(row, 2), 202u);
    EXPECT_EQ(stored_bytes(row, 3), 400u);
    const RowId wide = add(std::u16string(200, u'\u4e01'));
    for (const std::size_t position : {0u, 1u, 2u, 3u}) EXPECT_EQ(stored_bytes(wide, position), 400u);
}

TEST_F(CompressedColumns, memos_are_compressed_up_to_1024_characters) {
    for (const auto& [length, bytes] : {std::pair{32u, 34u}, {33u, 35u}, {1024u, 1026u}, {1025u, 2050u}}) {
        const RowId row = texts().insert({Null{}, Null{}, std::u16string(length, u'x'), Null{}});
        EXPECT_EQ(stored_bytes(row, 2), bytes);
    }
}

TEST_F(CompressedColumns, text_beginning_like_the_mark_comes_back_from_every_column) {
    for (const std::u16string& text :
         {std::u16string(u"\uFEFF"), std::u16string(u"\uFEFFabc"), std::u16string(u"\uFEFF\u4e01\u00e4x\u4e02yz"),
          u"\uFEFF" + std::u16string(254, u'\u4e01'), u"\uFEFF" + std::u16string(254, u'x')}) {
        const std::vector<Value> values(4, text);
        const RowId row = add(text);
        EXPECT_EQ(row_values(texts(), row), values) << to_utf8(text);
    }
    const std::u16string longer = u"\uFEFF" + std::u16string(9000, u'x');
    EXPECT_EQ(row_values(texts(), texts().insert({Null{}, Null{}, longer, longer})),
              (std::vector<Value>{Null{}, Null{}, longer, longer}));
    expect_sound(*database_);
}

TEST_F(CompressedColumns, text_that_the_format_cannot_say_is_refused_and_nothing_is_stored) {
    const std::u16string text = u"\uFEFFblank \u3000";
    for (std::size_t position = 0; position < 4; ++position) {
        std::vector<Value> values(4, Null{});
        values[position] = text;
        EXPECT_EQ(error_number([&] { texts().insert(values); }), errors::kBadConversion) << position;
    }
    EXPECT_EQ(texts().def().row_count, 0u);
    EXPECT_FALSE(texts().next_row({}));
    expect_sound(*database_);
}

TEST_F(CompressedColumns, added_column_carries_the_flag_and_the_others_keep_theirs) {
    const RowId row = add(u"abc");
    database_->add_column(u"Texts", flagged(u"Later", ColumnType::kText));
    const ColumnChange changes[] = {{1, std::u16string(u"plain")}, {4, std::u16string(u"short")}};
    texts().update(row, changes);
    EXPECT_EQ(stored_bytes(row, 1), 10u);
    EXPECT_EQ(stored_bytes(row, 4), 7u);
    EXPECT_FALSE(texts().def().columns[1].is_compressed());
    EXPECT_EQ(row_values(texts(), row),
              (std::vector<Value>{std::u16string(u"abc"), std::u16string(u"plain"), std::u16string(u"abc"),
                                  std::u16string(u"abc"), std::u16string(u"short")}));
    expect_sound(*database_);
}

}  // namespace
}  // namespace jet
