// What the data-access tests share: a folder of their own, a small table, and the error number of a call.
#pragma once

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "afx/dao_database.h"
#include "afx/dao_recordset.h"
#include "afx/dao_table_def.h"
#include "os/system.h"

// Number of the CDaoException* that `call` throws; 0 when it throws nothing.
template <class Call>
int error_of(Call&& call) {
    try {
        call();
    } catch (CDaoException* e) {
        const int number = e->m_pErrorInfo->m_lErrorCode;
        EXPECT_EQ(static_cast<std::uint32_t>(e->m_scode), 0x800A0000u + static_cast<std::uint32_t>(number));
        EXPECT_EQ(e->m_pErrorInfo->m_strSource, "KVDB");
        EXPECT_FALSE(e->m_pErrorInfo->m_strDescription.IsEmpty());
        e->Delete();
        return number;
    }
    return 0;
}

// A test with an empty folder that is removed afterwards. Narrow text is Windows-1252.
class FolderTest : public testing::Test {
protected:
    FolderTest() {
        static int count = 0;
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = std::filesystem::temp_directory_path() /
                  ("kvdb_" + std::string(info->test_suite_name()) + "_" + info->name() + "_" +
                   std::to_string(testing::UnitTest::GetInstance()->random_seed()) + "_" + std::to_string(++count) +
                   "_" + std::to_string(std::filesystem::file_time_type::clock::now().time_since_epoch().count()));
        std::filesystem::create_directories(folder_);
        os::set_code_page(os::CodePage::kWindows1252);
    }
    ~FolderTest() override {
        os::set_code_page(os::CodePage::kSystem);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string path(const char* name) const { return (folder_ / name).string(); }

    std::filesystem::path folder_;
};

// A database with one table: Items (ID key, Name text, Code short text of 10, Parent long, Price currency,
// Weight single, Made date, Note memo).
class ItemsTest : public FolderTest {
protected:
    ItemsTest() {
        database_.Create(path("items.mdb").c_str());
        CDaoTableDef table(&database_);
        table.Create("Items");
        table.CreateField("ID", dbLong, 4, dbAutoIncrField);
        CDaoFieldInfo name;
        name.m_strName = "Name";
        name.m_nType = dbText;
        name.m_lSize = 255;
        name.m_lAttributes = dbVariableField | dbUpdatableField;
        name.m_bAllowZeroLength = TRUE;
        table.CreateField(name);
        table.CreateField("Code", dbText, 10, dbVariableField);
        table.CreateField("Parent", dbLong, 4, dbUpdatableField);
        table.CreateField("Price", dbCurrency, 8);
        table.CreateField("Weight", dbSingle, 4);
        table.CreateField("Made", dbDate, 8);
        name.m_strName = "Note";
        name.m_nType = dbMemo;
        table.CreateField(name);
        table.Append();
        table.Close();
    }

    LONG add(const char* name, LONG parent = 0) {
        CDaoRecordset rows(&database_);
        rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
        rows.AddNew();
        rows.SetFieldValue("Name", name);
        rows.SetFieldValue("Parent", COleVariant(parent));
        const LONG id = rows.GetFieldValue("ID").lVal;
        rows.Update();
        return id;
    }
    void remove(LONG id) {
        CDaoRecordset rows(&database_);
        rows.Open(dbOpenDynaset, ("SELECT * FROM [Items] WHERE [ID]=" + std::to_string(id)).c_str(), 0);
        rows.Delete();
    }
    // Names of the rows of a statement, each ended by a blank.
    std::string names(const char* sql = "SELECT * FROM [Items]") {
        CDaoRecordset rows(&database_);
        rows.Open(dbOpenDynaset, sql, dbForwardOnly | dbReadOnly);
        std::string all;
        for (; !rows.IsEOF(); rows.MoveNext()) all += text(rows, "Name") + " ";
        return all;
    }
    static std::string text(CDaoRecordset& rows, const char* field) {
        const COleVariant value = rows.GetFieldValue(field);
        return value.vt == VT_BSTR ? V_BSTRT(&value) : "(" + std::to_string(value.vt) + ")";
    }

    CDaoDatabase database_;
};
