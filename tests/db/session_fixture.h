// The two databases of a process in the test's own folder.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "db/database_files.h"
#include "db/session.h"
#include "db/values.h"
#include "tests/afx/dao_test_support.h"

class Session : public FolderTest {
protected:
    Session() { db::set_database_folder(folder_.string()); }
    ~Session() override {
        db::close(db::kCloseAll);
        db::set_opening(db::Opening::kMakeAndUpgrade);
        db::set_database_folder("");
    }

    int row_count(CDaoDatabase* database, const char* table) {
        CDaoRecordset rows(database);
        rows.Open(dbOpenDynaset, table, 260);
        int count = 0;
        for (; !rows.IsEOF(); rows.MoveNext()) ++count;
        return count;
    }
    std::string field(CDaoDatabase* database, const char* table, const char* name) {
        CDaoRecordset rows(database);
        rows.Open(dbOpenDynaset, table, 260);
        const COleVariant value = rows.GetFieldValue(name);
        return value.vt == VT_NULL ? "(null)" : std::string(db::value_to_text(value));
    }
    // Removes the main file under the open database, if the host allows it.
    void take_main_file_away() { std::filesystem::remove(path("sldb.mdb")); }
    std::string file_bytes(const char* name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
    }

    db::GateDatabases gate_;
};
