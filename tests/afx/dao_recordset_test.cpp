// Opening, moving, reading.
#include "afx/dao_recordset.h"

#include <fstream>

#include "tests/afx/dao_test_support.h"

namespace {

constexpr char kAllItems[] = "SELECT * FROM [Items]";

class DaoRecordset : public ItemsTest {
protected:
    int open_error(const char* sql) {
        CDaoRecordset rows(&database_);
        const int number = error_of([&] { rows.Open(dbOpenDynaset, sql, 260); });
        EXPECT_EQ(rows.IsOpen(), number == 0);
        return number;
    }
};

TEST_F(DaoRecordset, open_with_rows_stands_on_the_first) {
    add("one");
    add("two");
    CDaoRecordset rows(&database_);
    EXPECT_FALSE(rows.IsOpen());
    rows.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_TRUE(rows.IsOpen());
    EXPECT_NE(rows.m_pDAORecordset, nullptr);
    EXPECT_FALSE(rows.IsBOF());
    EXPECT_FALSE(rows.IsEOF());
    EXPECT_EQ(text(rows, "Name"), "one");
}

TEST_F(DaoRecordset, open_without_rows_has_both_flags) {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    EXPECT_TRUE(rows.IsBOF());
    EXPECT_TRUE(rows.IsEOF());
    EXPECT_EQ(rows.GetRecordCount(), 0);
    EXPECT_EQ(error_of([&] { rows.MoveNext(); }), 3021);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Name"); }), 3021);
    CDaoRecordset scrollable(&database_);
    scrollable.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_EQ(error_of([&] { scrollable.MoveFirst(); }), 3021);
}

TEST_F(DaoRecordset, statement_errors_surface_at_open) {
    EXPECT_EQ(open_error(""), 3078);
    EXPECT_EQ(open_error("SELECT * FROM [Nothing]"), 3078);
    EXPECT_EQ(open_error("Nothing"), 3078);
    EXPECT_EQ(open_error("SELECT * FROM [Items] WHERE [Parent]=4[ID]=7"), 3075);
    EXPECT_EQ(open_error("SELECT * FROM [Items] WHERE [Name]=\"a\"b\""), 3075);
    EXPECT_EQ(open_error("SELECT * FROM [Items] WHERE [Nowhere]=1"), 3061);
    EXPECT_EQ(open_error("SELECT * FROM [Items] WHERE [Parent]=\"a\""), 3464);
    EXPECT_EQ(open_error("SELECT * FROM [Items] ORDER BY [Note]"), 3117);
    EXPECT_EQ(open_error("items"), 0);  // a table by its name
    EXPECT_EQ(open_error(nullptr), 3078);
}

TEST_F(DaoRecordset, open_without_database_throws) {
    CDaoRecordset unbound;
    EXPECT_EQ(error_of([&] { unbound.Open(dbOpenDynaset, kAllItems, 0); }), 3420);
    CDaoDatabase closed;
    CDaoRecordset rows(&closed);
    EXPECT_EQ(error_of([&] { rows.Open(dbOpenDynaset, kAllItems, 0); }), 3420);
    EXPECT_FALSE(rows.IsOpen());
}

TEST_F(DaoRecordset, failed_reopening_leaves_it_closed) {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_EQ(error_of([&] { rows.Open(dbOpenDynaset, "", 0); }), 3078);
    EXPECT_FALSE(rows.IsOpen());
    EXPECT_EQ(error_of([&] { rows.GetRecordCount(); }), 3420);
    rows.Close();
    rows.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_TRUE(rows.IsOpen());
}

TEST_F(DaoRecordset, record_count_is_of_rows_visited) {
    for (const char* name : {"a", "b", "c"}) add(name);
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_EQ(rows.GetRecordCount(), 1);
    rows.MoveNext();
    EXPECT_EQ(rows.GetRecordCount(), 2);
    rows.MoveFirst();
    EXPECT_EQ(rows.GetRecordCount(), 2);
    rows.MoveNext();
    rows.MoveNext();
    rows.MoveNext();
    EXPECT_TRUE(rows.IsEOF());
    EXPECT_EQ(rows.GetRecordCount(), 3);
    rows.MoveFirst();
    rows.Delete();
    EXPECT_EQ(rows.GetRecordCount(), 2);
}

TEST_F(DaoRecordset, moving_past_the_end_throws_only_the_second_time) {
    add("one");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    rows.MoveNext();
    EXPECT_TRUE(rows.IsEOF());
    EXPECT_FALSE(rows.IsBOF());
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Name"); }), 3021);
    EXPECT_EQ(error_of([&] { rows.MoveNext(); }), 3021);
    EXPECT_TRUE(rows.IsEOF());
}

TEST_F(DaoRecordset, forward_only_read_only_set_refuses_the_rest) {
    add("one");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    EXPECT_EQ(error_of([&] { rows.MoveFirst(); }), 3251);
    EXPECT_EQ(error_of([&] { rows.AddNew(); }), 3027);
    EXPECT_EQ(error_of([&] { rows.Edit(); }), 3027);
    EXPECT_EQ(error_of([&] { rows.Delete(); }), 3027);
    EXPECT_EQ(error_of([&] { rows.SetFieldValue("Name", "x"); }), 3020);
    EXPECT_EQ(text(rows, "Name"), "one");
    CDaoRecordset snapshot(&database_);
    snapshot.Open(dbOpenSnapshot, kAllItems);
    EXPECT_EQ(error_of([&] { snapshot.Edit(); }), 3027);
    EXPECT_EQ(error_of([&] { snapshot.MoveFirst(); }), 0);
}

TEST_F(DaoRecordset, values_have_their_variant_types) {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 0);
    rows.AddNew();
    rows.SetFieldValue("Name", "caf\xE9");
    rows.SetFieldValue("Parent", COleVariant(static_cast<long>(-5), VT_I4));
    rows.SetFieldValue("Price", COleVariant(COleCurrency(-1, 2500)));
    rows.SetFieldValue("Weight", COleVariant(0.1f));
    rows.SetFieldValue("Made", COleVariant(COleDateTime(2005, 3, 1, 14, 30, 0)));
    rows.SetFieldValue("Note", "");
    rows.Update();
    rows.MoveFirst();
    COleVariant value;
    rows.GetFieldValue("NAME", value);
    EXPECT_EQ(value.vt, VT_BSTR);
    EXPECT_EQ(afx::variant_text(value), "caf\xE9");
    rows.GetFieldValue("ID", value);
    EXPECT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 1);
    rows.GetFieldValue("Parent", value);
    EXPECT_EQ(value.lVal, -5);
    rows.GetFieldValue("Price", value);
    EXPECT_EQ(value.vt, VT_CY);
    EXPECT_EQ(value.cyVal.int64, -7500);
    rows.GetFieldValue("Weight", value);
    EXPECT_EQ(value.vt, VT_R4);
    EXPECT_EQ(value.fltVal, 0.1f);
    rows.GetFieldValue("Made", value);
    EXPECT_EQ(value.vt, VT_DATE);
    EXPECT_EQ(value.date, COleDateTime(2005, 3, 1, 14, 30, 0).m_dt);
    rows.GetFieldValue("Note", value);
    EXPECT_EQ(value.vt, VT_BSTR);
    EXPECT_EQ(afx::variant_text(value), "");
    rows.GetFieldValue("Code", value);
    EXPECT_EQ(value.vt, VT_NULL);
    EXPECT_EQ(value.llVal, 0);
    EXPECT_EQ(rows.GetFieldValue(0).lVal, 1);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Nowhere"); }), 3265);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue(8); }), 3265);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue(-1); }), 3265);
}

TEST_F(DaoRecordset, sum_always_has_one_row) {
    CDaoRecordset rows(&database_);
    constexpr char kSum[] = "SELECT SUM(Parent) AS [total] FROM [Items] WHERE [Name]=\"x\"";
    rows.Open(dbOpenDynaset, kSum, 0);
    EXPECT_EQ(rows.GetRecordCount(), 1);
    EXPECT_FALSE(rows.IsEOF());
    EXPECT_EQ(rows.GetFieldValue("Total").vt, VT_NULL);
    EXPECT_EQ(rows.GetFieldValue("total").dblVal, 0.0);
    EXPECT_EQ(error_of([&] { rows.AddNew(); }), 3027);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Parent"); }), 3265);
    add("x", 40);
    add("x", 2);
    add("y", 1);
    rows.Open(dbOpenDynaset, kSum, 0);
    EXPECT_EQ(rows.GetFieldValue("total").vt, VT_R8);
    EXPECT_EQ(rows.GetFieldValue("total").dblVal, 42.0);
    rows.MoveNext();
    EXPECT_TRUE(rows.IsEOF());
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("total"); }), 3021);
    rows.MoveFirst();
    EXPECT_EQ(rows.GetFieldValue("total").dblVal, 42.0);
}

TEST_F(DaoRecordset, order_by_and_conditions_select) {
    add("b", 1);
    add("a", 2);
    add("c", 1);
    EXPECT_EQ(names("SELECT * FROM [Items] WHERE [Parent]=1"), "b c ");
    EXPECT_EQ(names("SELECT * FROM [Items] WHERE [Name] LIKE \"*A*\""), "a ");
}

// ---- Changes while a set is open

TEST_F(DaoRecordset, rows_added_later_are_not_delivered) {
    add("a");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    add("b");
    rows.MoveNext();
    EXPECT_TRUE(rows.IsEOF());
    EXPECT_EQ(names(), "a b ");
}

TEST_F(DaoRecordset, rows_deleted_later_are_passed_over) {
    add("a");
    const LONG b = add("b");
    add("c");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    remove(b);
    rows.MoveNext();
    EXPECT_EQ(text(rows, "Name"), "c");
}

TEST_F(DaoRecordset, rows_changed_later_are_delivered_as_they_are) {
    add("a", 1);
    const LONG b = add("b", 1);
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items] WHERE [Parent]=1", 260);
    CDaoRecordset other(&database_);
    other.Open(dbOpenDynaset, ("SELECT * FROM [Items] WHERE [ID]=" + std::to_string(b)).c_str(), 0);
    other.Edit();
    other.SetFieldValue("Parent", COleVariant(2));
    other.SetFieldValue("Name", "B");
    other.Update();
    rows.MoveNext();
    EXPECT_EQ(text(rows, "Name"), "B");
    other.Edit();
    other.SetFieldValue("Name", "BB");
    other.Update();
    EXPECT_EQ(text(rows, "Name"), "BB");  // also while the cursor stands on it
}

TEST_F(DaoRecordset, row_deleted_under_the_cursor_reads_3167_and_moving_on_works) {
    const LONG a = add("a");
    add("b");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    EXPECT_EQ(text(rows, "Name"), "a");
    remove(a);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Name"); }), 3167);
    rows.MoveNext();
    EXPECT_EQ(text(rows, "Name"), "b");
}

TEST_F(DaoRecordset, place_of_a_deleted_row_taken_by_a_new_one_is_not_the_old_row) {
    const LONG a = add("a");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_EQ(text(rows, "Name"), "a");
    remove(a);
    for (int i = 0; i < 300; ++i) add("new");
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Name"); }), 3167);
    EXPECT_EQ(error_of([&] { rows.Edit(); }), 3167);
    EXPECT_EQ(error_of([&] { rows.Delete(); }), 3167);
    rows.MoveNext();
    EXPECT_TRUE(rows.IsEOF());
}

TEST_F(DaoRecordset, all_rows_behind_the_cursor_deleted_reaches_the_end) {
    add("a");
    const LONG b = add("b");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 260);
    remove(b);
    rows.MoveNext();
    EXPECT_TRUE(rows.IsEOF());
}

TEST_F(DaoRecordset, two_sets_on_one_table_do_not_disturb_each_other) {
    for (const char* name : {"a", "b", "c"}) add(name);
    CDaoRecordset one(&database_);
    CDaoRecordset two(&database_);
    one.Open(dbOpenDynaset, kAllItems, 260);
    two.Open(dbOpenDynaset, kAllItems, 260);
    one.MoveNext();
    one.MoveNext();
    two.MoveNext();
    EXPECT_EQ(text(one, "Name"), "c");
    EXPECT_EQ(text(two, "Name"), "b");
}

// A memo whose stated length leads out of its row.
TEST_F(DaoRecordset, damaged_memo_is_an_error_only_for_who_reads_it) {
    {
        CDaoRecordset rows(&database_);
        rows.Open(dbOpenDynaset, kAllItems, 0);
        rows.AddNew();
        rows.SetFieldValue("Name", "sound");
        rows.SetFieldValue("Note", "hurt");
        rows.Update();
    }
    database_.Close();
    std::fstream file(path("items.mdb"), std::ios::in | std::ios::out | std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    const std::size_t note = bytes.find("\xFF\xFEhurt");
    ASSERT_NE(note, std::string::npos);
    file.seekp(static_cast<std::streamoff>(note) - 12);
    file.put('\x60');
    file.close();
    database_.Open(path("items.mdb").c_str());
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, kAllItems, 0);
    EXPECT_EQ(text(rows, "Name"), "sound");
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Note"); }), 3049);
    EXPECT_EQ(text(rows, "Name"), "sound");
}

}  // namespace
