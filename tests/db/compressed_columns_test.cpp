// Which columns carry the format's compression flag: those that the component has made, and no others.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "db/schema.h"
#include "jet/tables/database.h"
#include "os/system.h"
#include "tests/db/upgrade/upgrade_fixture.h"

using namespace testing_support;

namespace {

bool is_text(const jet::ColumnDef& column) {
    return column.type == jet::ColumnType::kText || column.type == jet::ColumnType::kMemo;
}

class CompressedSchema : public UpgradeTest {
protected:
    // "Table.Column" of every text and memo of a file that has the flag, or of those that have it not.
    static std::set<std::string> texts(const std::string& file, bool compressed) {
        jet::OpenOptions options;
        options.ignore_password = true;
        options.read_only = true;
        const auto database = jet::Database::open(file, options);
        std::set<std::string> names;
        for (const std::u16string& table : database->table_names()) {
            for (const jet::ColumnDef& column : database->find_table(table)->def().columns) {
                if (!is_text(column) || column.is_compressed() != compressed) continue;
                names.insert(jet::to_utf8(table) + "." + jet::to_utf8(column.name));
            }
        }
        return names;
    }
};

TEST_F(CompressedSchema, created_tables_have_it_on_every_text_and_memo) {
    CDaoDatabase database;
    database.Create(path("new.mdb").c_str());
    db::create_tables(database, db::studio_tables());
    database.Close();
    std::size_t expected = 0;
    for (const db::TableSchema& table : db::studio_tables()) {
        for (const db::FieldSchema& field : table.fields) {
            expected += field.kind == db::FieldKind::kText || field.kind == db::FieldKind::kShortText ||
                        field.kind == db::FieldKind::kTextNotEmpty || field.kind == db::FieldKind::kMemo;
        }
    }
    EXPECT_EQ(texts(path("new.mdb"), true).size(), expected);
    EXPECT_EQ(texts(path("new.mdb"), false), std::set<std::string>());
}

TEST_F(CompressedSchema, upgraded_file_has_it_on_the_new_columns_only) {
    make_filled_studio(100005);
    const std::set<std::string> before = texts(studio(), false);
    EXPECT_EQ(texts(studio(), true), std::set<std::string>());
    ASSERT_EQ(upgrade_studio(), 1);
    std::set<std::string> kept = before;
    kept.erase("Sessions.Date");  // taken away by the upgrade
    kept.erase("Equipment.Date");
    EXPECT_EQ(texts(studio(), false), kept);
    const std::set<std::string> added = texts(studio(), true);
    for (const char* const name : {"Clients.CatIDs", "Clients.Company", "LibGroups.Name", "Bookings.Notes",
                                   "Messages.Details", "GearRepairs.Description"}) {
        EXPECT_TRUE(added.contains(name)) << name;
    }
}

TEST_F(CompressedSchema, upgraded_invoice_file_has_it_on_the_new_columns_only) {
    make_invoices(200000).close();
    const std::set<std::string> before = texts(invoices(), false);
    ASSERT_EQ(upgrade_invoices(), 1);
    EXPECT_EQ(texts(invoices(), false), before);
    EXPECT_EQ(texts(invoices(), true),
              (std::set<std::string>{"InvoiceParams.Details", "InvoiceParams.TaxIDs", "Invoices.InvTaxIDs"}));
}

TEST_F(CompressedSchema, row_too_large_says_so_in_words) {
    CDaoDatabase database;
    database.Create(path("new.mdb").c_str());
    db::create_tables(database, db::studio_tables());
    CDaoRecordset rows(&database);
    rows.Open(dbOpenDynaset, "Clients", 0);
    rows.AddNew();
    std::string wide;
    for (int i = 0; i < 255; ++i) wide += os::narrow(u"\u20ac");
    for (const char* const field : {"Name", "LastName", "Company", "Title", "Address", "Country", "State", "City"}) {
        rows.SetFieldValue(field, wide.c_str());
    }
    try {
        rows.Update();
        FAIL() << "a row of " << 8 * wide.size() << " bytes has been stored";
    } catch (CDaoException* e) {
        EXPECT_EQ(e->m_pErrorInfo->m_lErrorCode, 3047);
        const std::string text(e->m_pErrorInfo->m_strDescription);
        EXPECT_NE(text.find("Clients"), std::string::npos) << text;
        EXPECT_NE(text.find("too large"), std::string::npos) << text;
        e->Delete();
    }
}

}  // namespace
