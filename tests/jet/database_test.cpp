#include "jet/tables/database.h"

#include <gtest/gtest.h>

#include <fstream>

#include "jet/check/check.h"
#include "jet/storage/data_page.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using testing_support::TempFolder;

NewColumn column(const char16_t* name, ColumnType type) {
    NewColumn c;
    c.name = name;
    c.type = type;
    c.allow_zero_length = true;
    return c;
}

NewColumn key_column(const char16_t* name) {
    NewColumn c = column(name, ColumnType::kLong);
    c.autonumber = true;
    return c;
}

// A table with a key, a text, a memo and a number, and rows to work on.
class DatabaseTest : public ::testing::Test {
protected:
    void create() {
        database_ = Database::create(path(), {});
        const NewColumn columns[] = {key_column(u"Id"), column(u"Name", ColumnType::kText),
                                     column(u"Notes", ColumnType::kMemo), column(u"Count", ColumnType::kLong)};
        database_->create_table(u"Things", columns);
    }
    void reopen() {
        database_->close();
        database_ = Database::open(path(), {});
    }
    std::string path() const { return folder_.file("a.mdb"); }
    Table& things() { return *database_->find_table(u"Things"); }
    RowId add(const std::u16string& name, const std::u16string& notes, std::int32_t count) {
        return things().insert({Null{}, name, notes, count});
    }
    std::vector<Value> values(RowId row) {
        RowView view;
        EXPECT_TRUE(things().read(row, view));
        std::vector<Value> result;
        for (std::size_t i = 0; i < things().def().columns.size(); ++i) result.push_back(view.value(i));
        return result;
    }
    std::size_t count_rows() {
        std::size_t n = 0;
        for (auto row = things().next_row({}); row; row = things().next_row(*row)) ++n;
        return n;
    }
    void expect_sound() {
        for (const Violation& violation : check_structure(*database_)) {
            ADD_FAILURE() << "page " << violation.page << " row " << violation.row << ": " << violation.rule << ": "
                          << violation.detail;
        }
    }

    TempFolder folder_;
    std::unique_ptr<Database> database_;
};

TEST_F(DatabaseTest, new_file_has_no_user_table_and_is_sound) {
    database_ = Database::create(path(), {});
    EXPECT_TRUE(database_->table_names().empty());
    expect_sound();
}

TEST_F(DatabaseTest, rows_survive_reopening_with_every_value) {
    create();
    const RowId row = add(u"\u00dcml\u00e4ut", u"notes", -7);
    const RowId empty = things().insert({Null{}, std::u16string(), std::u16string(), Null{}});
    reopen();
    EXPECT_EQ(values(row), (std::vector<Value>{std::int32_t{1}, std::u16string(u"\u00dcml\u00e4ut"),
                                               std::u16string(u"notes"), std::int32_t{-7}}));
    EXPECT_EQ(values(empty), (std::vector<Value>{std::int32_t{2}, std::u16string(), std::u16string(), Null{}}));
    EXPECT_EQ(things().def().row_count, 2u);
    expect_sound();
}

TEST_F(DatabaseTest, memos_of_every_length_survive_and_their_pages_come_back) {
    create();
    const RowId row = add(u"x", u"", 0);
    expect_sound();
    const std::uint32_t pages_before = database_->pager().page_count();
    for (const std::size_t length : {0, 1, 32, 33, 64, 65, 2038, 2039, 4000, 100000, 1000000}) {
        const std::u16string text(length, u'\u00e4');
        const ColumnChange change{2, text};
        things().update(row, {&change, 1});
        EXPECT_EQ(std::get<std::u16string>(values(row)[2]), text) << length;
        expect_sound();
    }
    const ColumnChange change{2, Null{}};
    things().update(row, {&change, 1});
    std::uint32_t used = 0;
    for (PageNumber page = 0; page < database_->pager().page_count(); ++page)
        used += database_->allocator().is_free(page) ? 0 : 1;
    // Growing past 512 pages put the maps of the column and of free pages on bitmap pages.
    EXPECT_LE(used, pages_before + 2);
    expect_sound();
}

TEST_F(DatabaseTest, growing_rows_move_and_keep_their_address) {
    create();
    std::vector<RowId> rows;
    for (int i = 0; i < 200; ++i) rows.push_back(add(u"n", u"", i));
    for (int i = 0; i < 200; ++i) {
        const ColumnChange change{1, std::u16string(static_cast<std::size_t>(i), u'\u4e00')};
        things().update(rows[static_cast<std::size_t>(i)], {&change, 1});
    }
    expect_sound();
    for (int i = 199; i >= 0; --i) {
        const ColumnChange change{1, std::u16string(static_cast<std::size_t>(255 - i), u'\u4e00')};
        things().update(rows[static_cast<std::size_t>(i)], {&change, 1});
    }
    reopen();
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(values(rows[static_cast<std::size_t>(i)])[1],
                  Value(std::u16string(static_cast<std::size_t>(255 - i), u'\u4e00')));
    }
    EXPECT_EQ(count_rows(), 200u);
    expect_sound();
    for (RowId row : rows) things().erase(row);
    EXPECT_EQ(count_rows(), 0u);
    expect_sound();
}

TEST_F(DatabaseTest, freed_space_is_used_again) {
    create();
    std::vector<RowId> rows;
    for (int i = 0; i < 2000; ++i) rows.push_back(add(u"some name of a thing", u"", i));
    const std::uint32_t pages = database_->pager().page_count();
    for (int round = 0; round < 3; ++round) {
        for (RowId row : rows) things().erase(row);
        rows.clear();
        for (int i = 0; i < 2000; ++i) rows.push_back(add(u"some name of a thing", u"", i));
    }
    EXPECT_LE(database_->pager().page_count(), pages + 1);
    expect_sound();
}

// Pages that were full are not looked at again until something on them becomes free.
TEST_F(DatabaseTest, room_of_rows_that_shrank_takes_new_rows) {
    create();
    std::vector<RowId> rows;
    for (int i = 0; i < 200; ++i) rows.push_back(add(std::u16string(250, u'x'), u"", i));
    const std::uint32_t pages = database_->pager().page_count();
    for (const RowId row : rows) {
        const ColumnChange change{1, std::u16string(u"x")};
        things().update(row, {&change, 1});
    }
    for (int i = 0; i < 180; ++i) add(std::u16string(220, u'y'), u"", i);
    EXPECT_EQ(database_->pager().page_count(), pages);
    EXPECT_EQ(count_rows(), 380u);
    expect_sound();
}

// This engine moves a row once; others leave a pointer that leads to another one.
TEST_F(DatabaseTest, row_moved_twice_by_another_writer_goes_with_all_its_places) {
    create();
    const RowId row = add(u"x", u"", 1);
    for (int i = 0; i < 7; ++i) add(std::u16string(250, u'f'), u"", i);  // the page is full
    const ColumnChange longer{1, std::u16string(250, u'x')};
    things().update(row, {&longer, 1});
    const auto pointed_at = [&](RowId pointer) {
        const Page page = database_->pager().read(pointer.page);
        const DataPage data(page.bytes(), pointer.page);
        return RowId::unpack(load_u32(data.row(data.slot(pointer.slot)), 0));
    };
    const RowId middle = pointed_at(row);
    RowId last;
    {
        Transaction transaction(database_->pager());
        const MutablePage page = database_->pager().modify(middle.page);
        const ByteSpan bytes =
            DataPage(page.bytes(), middle.page).row(DataPage(page.bytes(), middle.page).slot(middle.slot));
        const ByteVector body(bytes.begin(), bytes.end());
        ByteVector pointer;
        replace_row(page.bytes(), middle.page, middle.slot, ByteVector(4));
        last = {middle.page, add_row(page.bytes(), middle.page, body, jet4::data::kBodyFlag)};
        append_u32(pointer, last.pack());
        replace_row(page.bytes(), middle.page, middle.slot, pointer);
        set_slot_flags(page.bytes(), middle.page, middle.slot, jet4::data::kMovedFlag);
        transaction.commit();
    }
    EXPECT_EQ(values(row)[1], Value(std::u16string(250, u'x')));
    things().erase(row);
    for (const RowId place : {row, middle, last}) {
        const Page page = database_->pager().read(place.page);
        const bool is_free = database_->allocator().is_free(place.page);
        EXPECT_TRUE(is_free || DataPage(page.bytes(), place.page).slot(place.slot).is_deleted()) << place.page;
    }
    EXPECT_EQ(count_rows(), 7u);
    expect_sound();
}

TEST_F(DatabaseTest, files_past_the_inline_limit_of_maps_stay_sound) {
    create();
    for (int i = 0; i < 700; ++i) add(u"n", std::u16string(2000, u'm'), i);
    EXPECT_GT(database_->pager().page_count(), 512u);
    expect_sound();
    reopen();
    EXPECT_EQ(count_rows(), 700u);
    expect_sound();
}

TEST_F(DatabaseTest, autonumber_counts_on_and_is_not_handed_out_twice) {
    create();
    EXPECT_EQ(things().take_autonumber(), 1);
    const RowId row = add(u"a", u"", 0);
    EXPECT_EQ(values(row)[0], Value(std::int32_t{2}));
    EXPECT_EQ(things().take_autonumber(), 3);  // never stored with a row
    reopen();
    EXPECT_EQ(values(add(u"b", u"", 0))[0], Value(std::int32_t{4}));
}

TEST_F(DatabaseTest, added_columns_read_null_and_added_autonumber_numbers_the_rows) {
    database_ = Database::create(path(), {});
    const NewColumn columns[] = {column(u"Count", ColumnType::kLong)};
    database_->create_table(u"Things", columns);
    std::vector<RowId> rows;
    for (int i = 0; i < 500; ++i) rows.push_back(things().insert({std::int32_t{i}}));
    database_->add_column(u"Things", column(u"Name", ColumnType::kText));  // the first variable column
    expect_sound();
    EXPECT_EQ(values(rows[3]), (std::vector<Value>{std::int32_t{3}, Null{}}));
    for (int i = 0; i < 12; ++i) {
        const std::u16string name = u"More" + std::u16string(1, static_cast<char16_t>(u'A' + i));
        database_->add_column(u"Things", column(name.c_str(), i % 2 ? ColumnType::kMemo : ColumnType::kDate));
    }
    database_->add_column(u"Things", key_column(u"RecID"));
    expect_sound();
    const std::size_t last = things().def().columns.size() - 1;
    for (int i = 0; i < 500; ++i)
        EXPECT_EQ(values(rows[static_cast<std::size_t>(i)])[last], Value(std::int32_t{i + 1}));
    reopen();
    std::vector<Value> fresh(last + 1);
    EXPECT_EQ(values(things().insert(fresh))[last], Value(std::int32_t{501}));
    database_->delete_column(u"Things", u"MoreB");
    database_->delete_column(u"Things", u"count");
    EXPECT_EQ(things().def().columns.size(), last - 1);
    EXPECT_EQ(values(rows[7])[0], Value(Null{}));
    expect_sound();
}

TEST_F(DatabaseTest, schema_errors_have_their_numbers_and_store_nothing) {
    create();
    const NewColumn one[] = {column(u"A", ColumnType::kLong)};
    const NewColumn twice[] = {column(u"A", ColumnType::kLong), column(u"a", ColumnType::kText)};
    EXPECT_EQ(error_number([&] { database_->create_table(u"things", one); }), 3010);
    EXPECT_EQ(error_number([&] { database_->create_table(u"", one); }), 3125);
    EXPECT_EQ(error_number([&] { database_->create_table(u"Empty", {}); }), 3264);
    EXPECT_EQ(error_number([&] { database_->create_table(u"Twice", twice); }), 3191);
    EXPECT_EQ(error_number([&] { database_->add_column(u"Things", column(u"NAME", ColumnType::kLong)); }), 3191);
    EXPECT_EQ(error_number([&] { database_->add_column(u"Nothing", column(u"A", ColumnType::kLong)); }), 3265);
    EXPECT_EQ(error_number([&] { database_->delete_column(u"Things", u"Nothing"); }), 3265);
    EXPECT_EQ(database_->table_names().size(), 1u);
    expect_sound();
}

TEST_F(DatabaseTest, row_too_large_fails_and_leaves_the_file_as_it_was) {
    database_ = Database::create(path(), {});
    std::vector<NewColumn> columns;
    for (char16_t c = u'A'; c < u'Q'; ++c) columns.push_back(column(std::u16string(1, c).c_str(), ColumnType::kText));
    database_->create_table(u"Things", columns);
    EXPECT_EQ(error_number([&] { things().insert(std::vector<Value>(columns.size(), std::u16string(255, u'x'))); }),
              3047);
    EXPECT_EQ(count_rows(), 0u);
    EXPECT_EQ(things().def().row_count, 0u);
    expect_sound();
}

TEST_F(DatabaseTest, text_limits_are_checked) {
    create();
    const auto assign = [&](std::size_t position, Value value) {
        return error_number([&] { things().coerce(position, value); });
    };
    EXPECT_EQ(assign(1, std::u16string(255, u'x')), 0);
    EXPECT_EQ(assign(1, std::u16string(256, u'x')), 3163);
    EXPECT_EQ(assign(0, std::int32_t{5}), 3164);
    EXPECT_EQ(assign(3, std::u16string(u"no number")), 3421);
    EXPECT_EQ(assign(3, 3e9), 3421);
    EXPECT_EQ(things().coerce(3, 2.5), Value(std::int32_t{2}));
    EXPECT_EQ(things().coerce(3, std::u16string(u" 17 ")), Value(std::int32_t{17}));
}

TEST_F(DatabaseTest, password_guards_opening_and_changes) {
    CreateOptions options;
    options.password = u"secret1";
    database_ = Database::create(path(), options);
    const NewColumn one[] = {column(u"A", ColumnType::kLong)};
    database_->create_table(u"Things", one);
    database_->close();
    OpenOptions wrong;
    EXPECT_EQ(error_number([&] { Database::open(path(), wrong); }), 3031);
    wrong.password = u"Secret1";
    EXPECT_EQ(error_number([&] { Database::open(path(), wrong); }), 3031);
    OpenOptions right;
    right.password = u"secret1";
    database_ = Database::open(path(), right);
    EXPECT_EQ(error_number([&] { database_->change_password(u"other", u"x"); }), 3031);
    database_->change_password(u"secret1", u"new");
    database_->create_table(u"More", one);
    expect_sound();
    database_->close();
    EXPECT_EQ(error_number([&] { Database::open(path(), right); }), 3031);
    right.password = u"new";
    database_ = Database::open(path(), right);
    EXPECT_EQ(database_->table_names().size(), 2u);
}

TEST_F(DatabaseTest, second_opening_in_the_process_is_refused_and_possible_after_close) {
    create();
    EXPECT_EQ(error_number([&] { Database::open(path(), {}); }), 3045);
    database_->close();
    EXPECT_EQ(error_number([&] { database_ = Database::open(path(), {}); }), 0);
}

TEST_F(DatabaseTest, files_that_cannot_be_served_give_their_errors) {
    const auto write = [&](const std::string& name, const std::string& bytes) {
        std::ofstream(folder_.file(name), std::ios::binary) << bytes;
        return folder_.file(name);
    };
    EXPECT_EQ(error_number([&] { Database::open(folder_.file("none.mdb"), {}); }), 3024);
    EXPECT_EQ(error_number([&] { Database::open(folder_.file("none/none.mdb"), {}); }), 3044);
    EXPECT_EQ(error_number([&] { Database::open("", {}); }), 3055);
    EXPECT_EQ(error_number([&] { Database::open(write("empty.mdb", ""), {}); }), 3343);
    EXPECT_EQ(error_number([&] { Database::open(write("text.mdb", std::string(9000, 'x')), {}); }), 3343);
    create();
    EXPECT_EQ(error_number([&] { Database::create(path(), {}); }), 3204);
    database_->close();
    std::ifstream in(path(), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), {});
    EXPECT_EQ(error_number([&] { Database::open(write("cut.mdb", bytes.substr(0, 5 * 4096)), {}); }), 3049);
    EXPECT_EQ(error_number([&] { Database::open(write("torn.mdb", bytes.substr(0, bytes.size() - 100)), {}); }), 3049);
    std::string jet3 = bytes;
    jet3[0x14] = 0;
    EXPECT_EQ(error_number([&] { Database::open(write("jet3.mdb", jet3), {}); }), 3031) << "the mask of its password";
    std::string later = bytes;
    later[0x14] = 2;
    EXPECT_EQ(error_number([&] { Database::open(write("later.mdb", later), {}); }), 3343);
    std::string encrypted = bytes;
    encrypted[0x3E] ^= 1;
    try {
        Database::open(write("encrypted.mdb", encrypted), {});
        FAIL() << "a file with another key than its own was opened";
    } catch (const Error& error) {
        EXPECT_EQ(error.number(), errors::kDamaged);
        EXPECT_NE(std::string(error.what()).find("encoded"), std::string::npos);
    }
}

}  // namespace
}  // namespace jet
