#include "afx/dao_table_def.h"

#include <string>

#include "tests/afx/dao_test_support.h"

namespace {

class DaoTableDef : public ItemsTest {};

TEST_F(DaoTableDef, appended_table_can_be_used_and_described) {
    CDaoTableDef table(&database_);
    table.Open("items");  // any case
    EXPECT_EQ(table.GetFieldCount(), 8);
    CDaoFieldInfo info;
    table.GetFieldInfo("code", info);
    EXPECT_EQ(info.m_strName, "Code");
    EXPECT_EQ(info.m_nType, dbText);
    EXPECT_EQ(info.m_lSize, 10);
    EXPECT_FALSE(info.m_bAllowZeroLength);
    table.GetFieldInfo(0, info);
    EXPECT_EQ(info.m_strName, "ID");
    EXPECT_NE(info.m_lAttributes & dbAutoIncrField, 0);
    table.GetFieldInfo("Name", info);
    EXPECT_TRUE(info.m_bAllowZeroLength);
    table.GetFieldInfo("Note", info);
    EXPECT_EQ(info.m_nType, dbMemo);
    EXPECT_EQ(info.m_lSize, 0);
    EXPECT_EQ(error_of([&] { table.GetFieldInfo("Nothing", info); }), 3265);
    EXPECT_EQ(error_of([&] { table.GetFieldInfo(8, info); }), 3265);
}

TEST_F(DaoTableDef, definition_not_appended_leaves_nothing) {
    CDaoTableDef table(&database_);
    table.Create("Ghost");
    table.CreateField("A", dbLong, 4);
    EXPECT_TRUE(table.IsOpen());
    table.Close();
    EXPECT_FALSE(table.IsOpen());
    EXPECT_EQ(error_of([&] { table.Open("Ghost"); }), 3265);
}

TEST_F(DaoTableDef, append_failures_have_their_numbers) {
    CDaoTableDef table(&database_);
    table.Create("ITEMS");
    table.CreateField("A", dbLong, 4);
    EXPECT_EQ(error_of([&] { table.Append(); }), 3010);
    table.Create("Empty");
    EXPECT_EQ(error_of([&] { table.Append(); }), 3264);
    table.Create("");
    table.CreateField("A", dbLong, 4);
    EXPECT_EQ(error_of([&] { table.Append(); }), 3125);
    EXPECT_EQ(error_of([&] { table.Open("Empty"); }), 3265);
}

TEST_F(DaoTableDef, wrong_fields_have_their_numbers) {
    CDaoTableDef table(&database_);
    table.Create("T");
    table.CreateField("A", dbLong, 4);
    EXPECT_EQ(error_of([&] { table.CreateField("a", dbDate, 8); }), 3191);
    EXPECT_EQ(error_of([&] { table.CreateField("B", dbText, 256); }), 3017);
    EXPECT_EQ(error_of([&] { table.CreateField("B", 99, 4); }), 3259);
    EXPECT_EQ(error_of([&] { table.CreateField("B", dbText, 10, dbAutoIncrField); }), 3259);
    EXPECT_EQ(error_of([&] { table.DeleteField("B"); }), 3265);
    CDaoFieldInfo required;
    required.m_strName = "C";
    required.m_nType = dbLong;
    required.m_bRequired = TRUE;
    EXPECT_EQ(error_of([&] { table.CreateField(required); }), 3001);
    EXPECT_EQ(table.GetFieldCount(), 1);
}

TEST_F(DaoTableDef, more_than_255_fields_are_refused) {
    CDaoTableDef table(&database_);
    table.Create("Wide");
    for (int i = 0; i < 256; ++i) table.CreateField(("F" + std::to_string(i)).c_str(), dbLong, 4);
    EXPECT_EQ(error_of([&] { table.Append(); }), 3190);
    table.DeleteField("F255");
    EXPECT_EQ(error_of([&] { table.Append(); }), 0);
}

TEST_F(DaoTableDef, closed_database_is_reported) {
    CDaoTableDef table(&database_);
    EXPECT_EQ(error_of([&] { table.CreateField("A", dbLong, 4); }), 3420);
    database_.Close();
    EXPECT_EQ(error_of([&] { table.Create("T"); }), 3420);
    EXPECT_EQ(error_of([&] { table.Open("Items"); }), 3420);
    CDaoTableDef unbound(nullptr);
    EXPECT_EQ(error_of([&] { unbound.Create("T"); }), 3420);
}

TEST_F(DaoTableDef, new_column_of_a_stored_table_reads_null) {
    add("one");
    CDaoTableDef table(&database_);
    table.Open("Items");
    table.CreateField("Extra", dbLong, 4);
    EXPECT_EQ(error_of([&] { table.CreateField("extra", dbLong, 4); }), 3191);
    table.Close();
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
    EXPECT_EQ(rows.GetFieldValue("Extra").vt, VT_NULL);
    EXPECT_EQ(text(rows, "Name"), "one");
    rows.Edit();
    rows.SetFieldValue("Extra", COleVariant(5));
    rows.Update();
    EXPECT_EQ(rows.GetFieldValue("Extra").lVal, 5);
}

TEST_F(DaoTableDef, new_auto_number_counts_existing_rows) {
    add("one");
    add("two");
    CDaoTableDef table(&database_);
    table.Create("Plain");
    table.CreateField("Name", dbText, 50);
    table.Append();
    table.Close();
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Plain]", 0);
    for (const char* name : {"a", "b", "c"}) {
        rows.AddNew();
        rows.SetFieldValue("Name", name);
        rows.Update();
    }
    rows.Close();
    table.Open("Plain");
    table.CreateField("RecID", dbLong, 4, dbAutoIncrField);
    table.Close();
    rows.Open(dbOpenDynaset, "SELECT * FROM [Plain]", 0);
    for (int i = 1; i <= 3; ++i, rows.MoveNext()) EXPECT_EQ(rows.GetFieldValue("RecID").lVal, i);
    rows.AddNew();
    EXPECT_EQ(rows.GetFieldValue("RecID").lVal, 4);
}

TEST_F(DaoTableDef, deleted_column_is_gone_and_the_others_stay) {
    add("one", 7);
    CDaoTableDef table(&database_);
    table.Open("Items");
    table.DeleteField("PARENT");
    EXPECT_EQ(error_of([&] { table.DeleteField("Parent"); }), 3265);
    table.Close();
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
    EXPECT_EQ(error_of([&] { rows.GetFieldValue("Parent"); }), 3265);
    EXPECT_EQ(text(rows, "Name"), "one");
}

TEST_F(DaoTableDef, table_in_use_by_a_set_is_locked) {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 260);
    CDaoTableDef table(&database_);
    table.Open("Items");
    EXPECT_EQ(error_of([&] { table.CreateField("Extra", dbLong, 4); }), 3211);
    EXPECT_EQ(error_of([&] { table.DeleteField("Name"); }), 3211);
    rows.Open(dbOpenDynaset, "SELECT SUM(Parent) AS [total] FROM [Items]", 0);
    EXPECT_EQ(error_of([&] { table.DeleteField("Name"); }), 3211);
    rows.Close();
    EXPECT_EQ(error_of([&] { table.CreateField("Extra", dbLong, 4); }), 0);
}

TEST_F(DaoTableDef, delete_by_index) {
    CDaoTableDef table(&database_);
    table.Open("Items");
    table.DeleteField(1);
    CDaoFieldInfo info;
    EXPECT_EQ(error_of([&] { table.GetFieldInfo("Name", info); }), 3265);
    EXPECT_EQ(error_of([&] { table.DeleteField(99); }), 3265);
}

}  // namespace
