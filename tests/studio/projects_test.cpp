// The six operations on projects.
#include "studio/projects.h"

#include <string>

#include "tests/studio/studio_test_support.h"

namespace {

class Projects : public StudioTest {
protected:
    static ProjInfo sample(const char* name) {
        ProjInfo project;
        project.ProjID = -1;
        project.ExData = 7;
        project.Name = name;
        project.Client = "Client & Co";
        project.ClientID = 5;
        project.ProducerID = 6;
        project.DirectorID = 8;
        project.Producer = "Pro";
        project.Director = "Dir";
        project.Folder = "C:\\music";
        project.Type = "Album";
        project.ProjTypeID = 3;
        project.ProjCreateDate = CTime(2005, 3, 1, 14, 35, 10);
        project.DiscountVal = 12.5f;
        project.DiscountType = 2;
        project.Notes = "first line\r\nsecond \"line\"";
        return project;
    }
    LONG add(const char* name) {
        ProjInfo project = sample(name);
        EXPECT_EQ(projects_.Add(&project), S_OK);
        return project.ProjID;
    }

    studio::RecordTable<ProjInfo> projects_{studio::kProjects, database_};
};

TEST_F(Projects, added_record_comes_back_whole_with_the_date_only) {
    ProjInfo project = sample("First");
    ASSERT_EQ(projects_.Add(&project), S_OK);
    EXPECT_EQ(project.ProjID, 1);
    ProjInfo found;
    found.ProjID = project.ProjID;
    ASSERT_EQ(projects_.Find(&found), S_OK);
    EXPECT_EQ(found.ProjID, 1);
    EXPECT_EQ(found.ExData, 7);
    EXPECT_EQ(found.Name, "First");
    EXPECT_EQ(found.Client, "Client & Co");
    EXPECT_EQ(found.ClientID, 5);
    EXPECT_EQ(found.ProducerID, 6);
    EXPECT_EQ(found.DirectorID, 8);
    EXPECT_EQ(found.Producer, "Pro");
    EXPECT_EQ(found.Director, "Dir");
    EXPECT_EQ(found.Folder, "C:\\music");
    EXPECT_EQ(found.Type, "Album");
    EXPECT_EQ(found.ProjTypeID, 3);
    EXPECT_EQ(found.ProjCreateDate, CTime(2005, 3, 1, 0, 0, 0));
    EXPECT_EQ(found.DiscountVal, 12.5f);
    EXPECT_EQ(found.DiscountType, 2);
    EXPECT_EQ(found.Notes, "first line\r\nsecond \"line\"");
    EXPECT_EQ(value("Projects", "DiscountVal").cyVal.int64, 125000);
    EXPECT_EQ(value("Projects", "ProjCreateDate").date, 38412.0);
}

TEST_F(Projects, enumeration_delivers_all_and_then_fails) {
    for (const char* name : {"a", "b", "c"}) add(name);
    ProjInfo record;
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    EXPECT_EQ(record.Name, "a");
    ASSERT_EQ(projects_.EnumNext(&record), S_OK);
    EXPECT_EQ(record.Name, "b");
    ProjInfo other;  // need not be the same record
    ASSERT_EQ(projects_.EnumNext(&other), S_OK);
    EXPECT_EQ(other.Name, "c");
    EXPECT_EQ(projects_.EnumNext(&other), E_FAIL);
    EXPECT_EQ(other.Name, "c");
    EXPECT_EQ(projects_.EnumNext(&other), E_FAIL);
}

TEST_F(Projects, next_before_first_fails) {
    add("a");
    ProjInfo record;
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);
}

TEST_F(Projects, empty_result_leaves_a_cursor_that_next_closes) {
    add("a");
    ProjInfo record;
    record.ClientID = 99;
    EXPECT_EQ(projects_.EnumFirst(&record), E_FAIL);
    EXPECT_EQ(record.ClientID, 99);
    CDaoTableDef table(&file_);
    table.Open("Projects");
    EXPECT_EQ(error_of([&] { table.CreateField("X1", dbLong, 4); }), 3211);  // the cursor is still open
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);
    EXPECT_EQ(error_of([&] { table.CreateField("X1", dbLong, 4); }), 0);
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);
}

TEST_F(Projects, filter_selects_by_whole_text_and_number) {
    add("a");
    ProjInfo other = sample("b");
    other.Type = "Single";
    other.ClientID = 6;
    ASSERT_EQ(projects_.Add(&other), S_OK);
    ProjInfo filter;
    filter.Type = "single";  // case-insensitive
    ASSERT_EQ(projects_.EnumFirst(&filter), S_OK);
    EXPECT_EQ(filter.Name, "b");
    filter = ProjInfo();
    filter.ClientID = 5;
    filter.Type = "Album";
    EXPECT_EQ(studio::kProjects.statement(&filter), "SELECT * FROM [Projects] WHERE [ClientID]=5 AND [Type]=\"Album\"");
    ASSERT_EQ(projects_.EnumFirst(&filter), S_OK);
    EXPECT_EQ(filter.Name, "a");
    EXPECT_EQ(projects_.EnumNext(&filter), E_FAIL);
    filter = ProjInfo();
    filter.Type = "Alb";
    EXPECT_EQ(projects_.EnumFirst(&filter), E_FAIL);
}

TEST_F(Projects, filter_clauses_have_their_order) {
    ProjInfo filter;
    filter.Type = "t";
    filter.Producer = "p";
    filter.Director = "d";
    filter.ClientID = 1;
    filter.ProjID = 9;
    filter.Name = "n";
    EXPECT_EQ(studio::kProjects.statement(&filter),
              "SELECT * FROM [Projects] WHERE [ClientID]=1 AND [Director]=\"d\" AND [Producer]=\"p\" AND [Type]=\"t\"");
    EXPECT_EQ(studio::kProjects.statement(nullptr), "");
}

TEST_F(Projects, quote_in_a_filter_breaks_the_statement) {
    add("a");
    ProjInfo record;
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    record = ProjInfo();
    record.Director = "a\"b";
    EXPECT_EQ(projects_.EnumFirst(&record), E_FAIL);
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);  // the failed opening has closed the cursor
}

TEST_F(Projects, new_enumeration_abandons_the_old_one) {
    for (const char* name : {"a", "b"}) add(name);
    ProjInfo record;
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    ASSERT_EQ(projects_.EnumNext(&record), S_OK);
    record = ProjInfo();
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    EXPECT_EQ(record.Name, "a");
    ASSERT_EQ(projects_.EnumNext(&record), S_OK);
    EXPECT_EQ(record.Name, "b");
}

TEST_F(Projects, other_operations_leave_an_enumeration_alone) {
    const LONG a = add("a");
    const LONG b = add("b");
    add("c");
    ProjInfo record;
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    ProjInfo found;
    found.ProjID = a;
    ASSERT_EQ(projects_.Find(&found), S_OK);
    found.Name = "A";
    ASSERT_EQ(projects_.Update(&found), S_OK);
    ASSERT_EQ(projects_.Delete(b), S_OK);
    add("d");
    ASSERT_EQ(projects_.EnumNext(&record), S_OK);
    EXPECT_EQ(record.Name, "c");                     // the deleted row is skipped
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);  // the added one is not a member
}

TEST_F(Projects, find_of_an_absent_key_leaves_the_record) {
    add("a");
    ProjInfo record = sample("untouched");
    record.ProjID = 77;
    EXPECT_EQ(projects_.Find(&record), E_FAIL);
    EXPECT_EQ(record.Name, "untouched");
    EXPECT_EQ(record.ProjID, 77);
}

TEST_F(Projects, update_changes_the_row_of_its_key) {
    add("a");
    const LONG b = add("b");
    ProjInfo record = sample("B");
    record.ProjID = b;
    record.DiscountVal = -1.25f;
    record.ProjCreateDate = CTime(-1);
    ASSERT_EQ(projects_.Update(&record), S_OK);
    ProjInfo found;
    found.ProjID = b;
    ASSERT_EQ(projects_.Find(&found), S_OK);
    EXPECT_EQ(found.Name, "B");
    EXPECT_EQ(found.DiscountVal, -0.75f);        // the sign of the fraction is lost, deliberately
    EXPECT_EQ(found.ProjCreateDate, CTime(-1));  // no date stays no date
    found.ProjID = 1;
    ASSERT_EQ(projects_.Find(&found), S_OK);
    EXPECT_EQ(found.Name, "a");
    record.ProjID = 77;
    EXPECT_EQ(projects_.Update(&record), E_FAIL);
    EXPECT_EQ(row_count("Projects"), 2);
}

TEST_F(Projects, delete_takes_the_row_of_its_key_only) {
    const LONG a = add("a");
    add("b");
    EXPECT_EQ(projects_.Delete(77), E_FAIL);
    EXPECT_EQ(projects_.Delete(a), S_OK);
    EXPECT_EQ(projects_.Delete(a), E_FAIL);
    EXPECT_EQ(row_count("Projects"), 1);
    EXPECT_EQ(add("c"), 3);  // keys are not reused
}

TEST_F(Projects, failed_mapping_still_saves_what_was_set_before) {
    ProjInfo record = sample("saved");
    record.Producer = std::string(256, 'p').c_str();
    EXPECT_EQ(projects_.Add(&record), E_FAIL);
    EXPECT_EQ(record.ProjID, 1);
    EXPECT_EQ(row_count("Projects"), 1);
    ProjInfo found;
    found.ProjID = 1;
    ASSERT_EQ(projects_.Find(&found), S_OK);
    EXPECT_EQ(found.Name, "saved");
    EXPECT_EQ(found.ProjTypeID, 3);  // before the producer
    EXPECT_EQ(found.Producer, "");
    EXPECT_EQ(found.Director, "");  // after it
    EXPECT_EQ(found.DiscountVal, 0.0f);

    found.Name = "changed";
    found.Producer = record.Producer;
    found.Director = "not reached";
    EXPECT_EQ(projects_.Update(&found), E_FAIL);
    ProjInfo again;
    again.ProjID = 1;
    ASSERT_EQ(projects_.Find(&again), S_OK);
    EXPECT_EQ(again.Name, "changed");
    EXPECT_EQ(again.Director, "");
}

TEST_F(Projects, null_records_fail) {
    add("a");
    ProjInfo record;
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    EXPECT_EQ(projects_.Find(nullptr), E_FAIL);
    EXPECT_EQ(projects_.Add(nullptr), E_FAIL);
    EXPECT_EQ(projects_.Update(nullptr), E_FAIL);
    EXPECT_EQ(projects_.Delete(static_cast<ProjInfo*>(nullptr)), E_FAIL);
    EXPECT_EQ(projects_.EnumNext(nullptr), E_FAIL);
    EXPECT_EQ(projects_.EnumFirst(nullptr), E_FAIL);
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);  // that start has closed the cursor
    EXPECT_EQ(row_count("Projects"), 1);
}

TEST_F(Projects, closed_database_fails_until_it_is_open_again) {
    const LONG a = add("a");
    ProjInfo record;
    ASSERT_EQ(projects_.EnumFirst(&record), S_OK);
    file_.Close();
    EXPECT_EQ(projects_.EnumFirst(&record), E_FAIL);
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);
    EXPECT_EQ(projects_.Find(&record), E_FAIL);
    EXPECT_EQ(projects_.Add(&record), E_FAIL);
    EXPECT_EQ(projects_.Update(&record), E_FAIL);
    EXPECT_EQ(projects_.Delete(a), E_FAIL);
    EXPECT_EQ(projects_.Delete(&record), E_FAIL);
    file_.Open(path("studio.mdb").c_str(), TRUE);
    EXPECT_EQ(projects_.EnumNext(&record), E_FAIL);  // the cursor was closed with the database
    record = ProjInfo();
    EXPECT_EQ(projects_.EnumFirst(&record), S_OK);
    EXPECT_EQ(record.Name, "a");
}

TEST_F(Projects, gate_without_database_fails) {
    CDaoDatabase* none = nullptr;
    studio::RecordTable<ProjInfo> table(studio::kProjects, none);
    ProjInfo record;
    EXPECT_EQ(table.EnumFirst(&record), E_FAIL);
    EXPECT_EQ(table.Add(&record), E_FAIL);
    none = &file_;  // the gate attaches later
    EXPECT_EQ(table.Add(&record), S_OK);
    EXPECT_EQ(table.EnumFirst(&record), S_OK);
    table.ReleaseCursor();
    table.ReleaseCursor();
    EXPECT_EQ(table.EnumNext(&record), E_FAIL);
}

}  // namespace
