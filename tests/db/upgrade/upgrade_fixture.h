// Opens, upgrades and closes old files, for the tests of upgrades.
#pragma once

#include <string>

#include "afx/dao_database.h"
#include "db/database_files.h"
#include "db/upgrade/upgrade.h"
#include "tests/afx/dao_test_support.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"

namespace testing_support {

class UpgradeTest : public FolderTest {
protected:
    UpgradeTest() { os::set_date_format_for_test("/", os::DateOrder::kMonthDayYear); }
    ~UpgradeTest() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }

    std::string studio() const { return path("sldb.mdb"); }
    std::string invoices() const { return path("kvinvdb.mdb"); }

    OldFile make_studio(std::int32_t version, const Oddities& oddities = {}) const {
        return OldFile(studio(), OldFile::Kind::kStudio, version, oddities);
    }
    OldFile make_invoices(std::int32_t version, const Oddities& oddities = {}) const {
        return OldFile(invoices(), OldFile::Kind::kInvoice, version, oddities);
    }
    // Full of rows.
    void make_filled_studio(std::int32_t version, const Oddities& oddities = {}) const {
        OldFile file = make_studio(version, oddities);
        fill_studio(file);
        file.close();
    }

    // The upgrade's result; the file is closed afterwards.
    int upgrade_studio() const {
        CDaoDatabase database;
        database.Open(studio().c_str(), TRUE, FALSE, (";PWD=" + password_in(studio())).c_str());
        const int result = db::upgrade_main_file(database);
        EXPECT_TRUE(database.IsOpen());  // for every result
        database.Close();
        return result;
    }
    int upgrade_invoices() const {
        CDaoDatabase database;
        database.Open(invoices().c_str(), TRUE, FALSE, (";PWD=" + password_in(invoices())).c_str());
        const int result = db::upgrade_invoice_file(database, db::stored_version(database));
        EXPECT_TRUE(database.IsOpen());
        database.Close();
        return result;
    }
};

// Values of one column, row by row, each followed by a blank.
inline std::string column(const Content& content, const std::string& table, const std::string& name) {
    std::string all;
    const auto found = content.find(table);
    if (found == content.end()) return "no table " + table;
    for (const ContentRow& row : found->second.rows) {
        const auto value = row.find(name);
        all += (value == row.end() ? "(no " + name + ")" : value->second) + " ";
    }
    return all;
}

inline std::size_t rows_in(const Content& content, const std::string& table) {
    const auto found = content.find(table);
    return found == content.end() ? 0 : found->second.rows.size();
}

inline bool has_column(const Content& content, const std::string& table, const std::string& name) {
    const auto found = content.find(table);
    return found != content.end() && found->second.columns.contains(name);
}

}  // namespace testing_support
