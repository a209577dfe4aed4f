// A studio file with its tables, for the tests of record tables.
#pragma once

#include <memory>

#include "db/schema.h"
#include "tests/afx/dao_test_support.h"

class StudioTest : public FolderTest {
protected:
    StudioTest() : database_(&file_) {
        os::set_date_format_for_test("/", os::DateOrder::kMonthDayYear);
        file_.Create(path("studio.mdb").c_str());
        file_.m_pWorkspace->BeginTrans();
        db::create_tables(file_, db::studio_tables());
        file_.m_pWorkspace->CommitTrans();
    }
    ~StudioTest() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }

    int row_count(const char* table) {
        CDaoRecordset rows(&file_);
        rows.Open(dbOpenDynaset, table, 260);
        int count = 0;
        for (; !rows.IsEOF(); rows.MoveNext()) ++count;
        return count;
    }
    // The first row's value.
    COleVariant value(const std::string& statement, const char* field) {
        CDaoRecordset rows(&file_);
        rows.Open(dbOpenDynaset, statement.c_str(), 260);
        return rows.GetFieldValue(field);
    }

    CDaoDatabase file_;
    CDaoDatabase* database_;
};
