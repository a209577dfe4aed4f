// Adding, editing, deleting, bookmarks.
#include <string>

#include "tests/afx/dao_test_support.h"

namespace {

constexpr char kAll[] = "SELECT * FROM [Items]";

class DaoEdit : public ItemsTest {
protected:
    DaoEdit() : rows_(&database_) {}

    CDaoRecordset rows_;
};

TEST_F(DaoEdit, key_is_there_before_update) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.AddNew();
    EXPECT_EQ(rows_.GetEditMode(), dbEditAdd);
    EXPECT_EQ(rows_.GetFieldValue("ID").lVal, 1);
    EXPECT_EQ(rows_.GetFieldValue("Name").vt, VT_NULL);
    rows_.SetFieldValue("Name", "x");
    EXPECT_EQ(text(rows_, "Name"), "x");
    rows_.Update();
    EXPECT_EQ(rows_.GetEditMode(), dbEditNone);
    EXPECT_EQ(names(), "x ");
}

TEST_F(DaoEdit, character_that_the_code_page_lacks_is_a_question_mark_and_written_back_as_one) {
    os::set_code_page(os::CodePage::kUtf8);
    add("\xE4\xB8\x80 Caf\xC3\xA9");
    os::set_code_page(os::CodePage::kWindows1252);
    rows_.Open(dbOpenDynaset, kAll, 0);
    const std::string read = text(rows_, "Name");
    EXPECT_EQ(read, "? Caf\xE9");
    rows_.Edit();
    rows_.SetFieldValue("Name", read.c_str());
    rows_.Update();
    os::set_code_page(os::CodePage::kUtf8);
    EXPECT_EQ(text(rows_, "Name"), "? Caf\xC3\xA9");
}

TEST_F(DaoEdit, number_of_a_dropped_row_is_not_given_out_again) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.AddNew();
    rows_.AddNew();  // drops the first one
    EXPECT_EQ(rows_.GetFieldValue("ID").lVal, 2);
    rows_.Close();
    EXPECT_EQ(names(), "");
    EXPECT_EQ(add("x"), 3);
    database_.Close();
    database_.Open(path("items.mdb").c_str(), TRUE);
    EXPECT_EQ(add("y"), 4);
}

TEST_F(DaoEdit, writing_order_with_bookmark_between_add_and_fields) {
    add("first");
    rows_.Open(dbOpenDynaset, kAll, 0);
    for (const char* name : {"second", "third"}) {
        rows_.AddNew();
        rows_.SetBookmark(rows_.GetLastModifiedBookmark());
        EXPECT_EQ(rows_.GetEditMode(), dbEditAdd);
        rows_.SetFieldValue("Name", name);
        const LONG id = rows_.GetFieldValue("ID").lVal;
        EXPECT_EQ(id, name == std::string("second") ? 2 : 3);
        rows_.Update();
    }
    EXPECT_EQ(text(rows_, "Name"), "first");  // the new rows are not current
    EXPECT_EQ(names(), "first second third ");
}

TEST_F(DaoEdit, editing_order_with_bookmark_keeps_the_edit) {
    add("old");
    rows_.Open(dbOpenDynaset, "SELECT * FROM [Items] WHERE [Name]=\"old\"", 0);
    EXPECT_EQ(rows_.GetRecordCount(), 1);
    rows_.Edit();
    rows_.SetBookmark(rows_.GetLastModifiedBookmark());
    EXPECT_EQ(rows_.GetEditMode(), dbEditInProgress);
    rows_.SetFieldValue("Name", "new");
    EXPECT_EQ(text(rows_, "Name"), "new");
    EXPECT_EQ(rows_.GetFieldValue("ID").lVal, 1);
    rows_.Update();
    EXPECT_EQ(text(rows_, "Name"), "new");  // still current though it no longer matches
    EXPECT_EQ(names(), "new ");
}

TEST_F(DaoEdit, bookmark_after_update_leads_to_the_stored_row) {
    add("first");
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.AddNew();
    const COleVariant pending = rows_.GetLastModifiedBookmark();
    rows_.SetFieldValue("Name", "second");
    rows_.Update();
    rows_.SetBookmark(rows_.GetLastModifiedBookmark());
    EXPECT_EQ(text(rows_, "Name"), "second");
    rows_.MoveFirst();
    EXPECT_EQ(text(rows_, "Name"), "first");
    const COleVariant first = rows_.GetBookmark();
    rows_.SetBookmark(pending);
    EXPECT_EQ(text(rows_, "Name"), "second");
    rows_.SetBookmark(first);
    EXPECT_EQ(text(rows_, "Name"), "first");
    rows_.MoveNext();
    EXPECT_EQ(text(rows_, "Name"), "second");  // own additions join at the end
    EXPECT_EQ(rows_.GetRecordCount(), 2);
    rows_.MoveNext();
    EXPECT_TRUE(rows_.IsEOF());
}

TEST_F(DaoEdit, bookmark_to_another_row_drops_the_edit) {
    add("a");
    add("b");
    rows_.Open(dbOpenDynaset, kAll, 0);
    const COleVariant a = rows_.GetBookmark();
    rows_.MoveNext();
    rows_.Edit();
    rows_.SetFieldValue("Name", "changed");
    rows_.SetBookmark(a);
    EXPECT_EQ(rows_.GetEditMode(), dbEditNone);
    EXPECT_EQ(error_of([&] { rows_.Update(); }), 3020);
    EXPECT_EQ(names(), "a b ");
}

TEST_F(DaoEdit, bad_bookmarks_are_refused) {
    const LONG a = add("a");
    rows_.Open(dbOpenDynaset, kAll, 0);
    EXPECT_EQ(error_of([&] { rows_.GetLastModifiedBookmark(); }), 3021);
    EXPECT_EQ(error_of([&] { rows_.SetBookmark(COleVariant("nonsense")); }), 3159);
    EXPECT_EQ(error_of([&] { rows_.SetBookmark(COleVariant()); }), 3159);
    const COleVariant mark = rows_.GetBookmark();
    CDaoRecordset other(&database_);
    other.Open(dbOpenDynaset, kAll, 0);
    EXPECT_EQ(error_of([&] { other.SetBookmark(mark); }), 3159);
    remove(a);
    EXPECT_EQ(error_of([&] { rows_.SetBookmark(mark); }), 3167);
    rows_.AddNew();
    const COleVariant dropped = rows_.GetLastModifiedBookmark();
    rows_.AddNew();
    EXPECT_EQ(error_of([&] { rows_.SetBookmark(dropped); }), 3159);
    rows_.Open(dbOpenDynaset, kAll, 0);
    EXPECT_EQ(error_of([&] { rows_.SetBookmark(mark); }), 3159);
}

TEST_F(DaoEdit, add_to_an_empty_set_clears_begin_and_leaves_end) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    EXPECT_TRUE(rows_.IsBOF());
    rows_.AddNew();
    rows_.Update();
    EXPECT_FALSE(rows_.IsBOF());
    EXPECT_TRUE(rows_.IsEOF());
    rows_.MoveFirst();
    EXPECT_EQ(rows_.GetFieldValue("ID").lVal, 1);
    EXPECT_EQ(rows_.GetRecordCount(), 1);
}

TEST_F(DaoEdit, add_before_anything_was_looked_at_gives_the_same_flags) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.AddNew();
    rows_.Update();
    EXPECT_FALSE(rows_.IsBOF());
    EXPECT_TRUE(rows_.IsEOF());
    EXPECT_EQ(rows_.GetRecordCount(), 1);
}

TEST_F(DaoEdit, add_to_a_set_whose_condition_it_does_not_meet) {
    add("other", 5);
    rows_.Open(dbOpenDynaset, "SELECT * FROM [Items] WHERE [Parent]=7", 0);
    rows_.AddNew();
    rows_.SetBookmark(rows_.GetLastModifiedBookmark());
    rows_.SetFieldValue("Name", "new");
    rows_.SetFieldValue("Parent", COleVariant(9));
    rows_.Update();
    rows_.MoveFirst();
    EXPECT_EQ(text(rows_, "Name"), "new");
    EXPECT_EQ(names("SELECT * FROM [Items] WHERE [Parent]=9"), "new ");
}

TEST_F(DaoEdit, assignment_errors_come_at_the_assignment_and_keep_the_buffer) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Name", "x"); }), 3020);
    EXPECT_EQ(error_of([&] { rows_.Update(); }), 3020);
    rows_.AddNew();
    rows_.SetFieldValue("Name", "kept");
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Nowhere", "x"); }), 3265);
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Code", "12345678901"); }), 3163);
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Name", std::string(256, 'n').c_str()); }), 3163);
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Parent", "Fish"); }), 3421);
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Parent", COleVariant(3e9)); }), 3421);
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("ID", COleVariant(7)); }), 3164);
    VARIANT strange;
    VariantInit(&strange);
    strange.vt = VT_ERROR;
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Parent", COleVariant(strange)); }), 3421);
    rows_.Update();
    EXPECT_EQ(names(), "kept ");
}

TEST_F(DaoEdit, length_limit_counts_characters) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.AddNew();
    const std::string longest(255, '\xE9');
    EXPECT_EQ(error_of([&] { rows_.SetFieldValue("Name", longest.c_str()); }), 0);
    rows_.Update();
    EXPECT_EQ(names(), longest + " ");
}

TEST_F(DaoEdit, zero_length_where_disallowed_is_refused_by_update_and_stays_pending) {
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.AddNew();
    rows_.SetFieldValue("Name", "");
    rows_.SetFieldValue("Code", "");
    EXPECT_EQ(error_of([&] { rows_.Update(); }), 3315);
    EXPECT_EQ(rows_.GetEditMode(), dbEditAdd);
    EXPECT_EQ(names(), "");
    rows_.SetFieldValue("Code", "c");
    rows_.Update();
    EXPECT_EQ(names(), " ");
    EXPECT_EQ(add("next"), 2);
}

TEST_F(DaoEdit, null_and_empty_variants_store_null) {
    add("x", 5);
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.Edit();
    COleVariant null;
    null.vt = VT_NULL;
    rows_.SetFieldValue("Parent", null);
    rows_.SetFieldValue("Name", COleVariant());
    rows_.Update();
    EXPECT_EQ(rows_.GetFieldValue("Parent").vt, VT_NULL);
    EXPECT_EQ(rows_.GetFieldValue("Name").vt, VT_NULL);
}

TEST_F(DaoEdit, edit_changes_assigned_columns_only) {
    add("x", 5);
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.Edit();
    rows_.Update();  // nothing assigned
    rows_.Edit();
    rows_.SetFieldValue("Note", "long text");
    rows_.Update();
    EXPECT_EQ(text(rows_, "Name"), "x");
    EXPECT_EQ(rows_.GetFieldValue("Parent").lVal, 5);
    EXPECT_EQ(text(rows_, "Note"), "long text");
}

TEST_F(DaoEdit, moves_drop_a_pending_edit) {
    add("a");
    add("b");
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.Edit();
    rows_.SetFieldValue("Name", "lost");
    rows_.MoveNext();
    EXPECT_EQ(error_of([&] { rows_.Update(); }), 3020);
    EXPECT_EQ(names(), "a b ");
}

TEST_F(DaoEdit, delete_leaves_an_unusable_current_row_and_the_flags) {
    add("a");
    add("b");
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.MoveFirst();
    rows_.Delete();
    EXPECT_FALSE(rows_.IsBOF());
    EXPECT_FALSE(rows_.IsEOF());
    EXPECT_EQ(error_of([&] { rows_.GetFieldValue("Name"); }), 3021);
    EXPECT_EQ(error_of([&] { rows_.Delete(); }), 3021);
    EXPECT_EQ(error_of([&] { rows_.Edit(); }), 3021);
    rows_.MoveNext();
    EXPECT_EQ(text(rows_, "Name"), "b");
    rows_.Delete();
    EXPECT_EQ(names(), "");
    rows_.MoveNext();
    EXPECT_TRUE(rows_.IsEOF());
    EXPECT_EQ(error_of([&] { rows_.MoveFirst(); }), 3021);
}

TEST_F(DaoEdit, update_of_a_row_deleted_by_another_set_is_3167) {
    const LONG a = add("a");
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.Edit();
    rows_.SetFieldValue("Name", "late");
    remove(a);
    EXPECT_EQ(error_of([&] { rows_.Update(); }), 3167);
    EXPECT_EQ(names(), "");
}

TEST_F(DaoEdit, nested_set_on_the_same_table_during_an_edit) {
    add("a", 1);
    add("b", 2);
    rows_.Open(dbOpenDynaset, kAll, 0);
    for (; !rows_.IsEOF(); rows_.MoveNext()) {
        rows_.Edit();
        CDaoRecordset inner(&database_);
        inner.Open(dbOpenDynaset, "SELECT * FROM [Items] WHERE [Parent]=2", 0);
        inner.Edit();
        inner.SetFieldValue("Code", "seen");
        inner.Update();
        inner.Close();
        rows_.SetFieldValue("Note", "done");
        rows_.Update();
    }
    rows_.Open(dbOpenDynaset, "SELECT * FROM [Items] WHERE [Parent]=2", 0);
    EXPECT_EQ(text(rows_, "Code"), "seen");
    EXPECT_EQ(text(rows_, "Note"), "done");
}

TEST_F(DaoEdit, every_update_survives_reopening) {
    add("a");
    rows_.Open(dbOpenDynaset, kAll, 0);
    rows_.Edit();
    rows_.SetFieldValue("Name", "A");
    rows_.Update();
    add("b");
    rows_.Delete();
    database_.Close();
    database_.Open(path("items.mdb").c_str(), TRUE);
    EXPECT_EQ(names(), "b ");
}

TEST_F(DaoEdit, row_too_large_is_refused_by_update) {
    CDaoTableDef table(&database_);
    table.Create("Wide");
    for (int i = 0; i < 12; ++i) table.CreateField(("T" + std::to_string(i)).c_str(), dbText, 255);
    table.Append();
    table.Close();
    rows_.Open(dbOpenDynaset, "SELECT * FROM [Wide]", 0);
    rows_.AddNew();
    const std::string text(255, '\x80');  // the euro sign: two bytes each, 6 KB in all
    for (int i = 0; i < 12; ++i) rows_.SetFieldValue(("T" + std::to_string(i)).c_str(), text.c_str());
    EXPECT_EQ(error_of([&] { rows_.Update(); }), 3047);
    rows_.Close();
    rows_.Open(dbOpenDynaset, "SELECT * FROM [Wide]", 0);
    EXPECT_TRUE(rows_.IsEOF());
}

}  // namespace
