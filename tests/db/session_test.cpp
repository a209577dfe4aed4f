#include "db/session.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <utility>

#include "db/content.h"
#include "db/create_files.h"
#include "db/database_files.h"
#include "db/schema.h"
#include "db/upgrade/upgrade.h"
#include "db/values.h"
#include "os/file.h"
#include "os/system.h"
#include "tests/afx/dao_test_support.h"
#include "tests/db/session_fixture.h"

namespace {

TEST_F(Session, attach_makes_both_files_and_points_the_gate_at_them) {
    EXPECT_FALSE(db::main_file_exists());
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_TRUE(db::main_file_exists());
    EXPECT_TRUE(std::filesystem::exists(path("kvinvdb.mdb")));
    ASSERT_NE(gate_.main, nullptr);
    ASSERT_NE(gate_.invoice, nullptr);
    EXPECT_NE(gate_.main, gate_.invoice);
    EXPECT_TRUE(gate_.main->IsOpen());
    EXPECT_TRUE(gate_.invoice->IsOpen());
    db::GateDatabases other;
    EXPECT_EQ(db::attach(other), S_OK);
    EXPECT_EQ(other.main, gate_.main);
    EXPECT_EQ(other.invoice, gate_.invoice);
}

TEST_F(Session, opening_that_makes_nothing_raises_an_error_for_a_missing_file) {
    db::set_opening(db::Opening::kAsTheyAre);
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3024);
    EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3024);
    EXPECT_EQ(files(), 0u);
}

TEST_F(Session, opening_that_upgrades_nothing_serves_files_of_other_versions_as_they_stand) {
    const auto set_version = [&](LONG version) {
        db::set_opening(db::Opening::kMakeAndUpgrade);
        db::attach(gate_);
        for (CDaoDatabase* const database : {gate_.main, gate_.invoice}) {
            CDaoRecordset rows(database);
            rows.Open(dbOpenDynaset, "SELECT * FROM [DBHeader]");
            rows.Edit();
            rows.SetFieldValue("DBversion", COleVariant(version, VT_I4));
            rows.Update();
        }
        db::close(db::kCloseAll);
    };
    for (const LONG version : {100006, 220000}) {
        set_version(version);
        const std::string before = file_bytes("sldb.mdb") + file_bytes("kvinvdb.mdb");
        db::set_opening(db::Opening::kAsTheyAre);
        EXPECT_EQ(db::open(gate_), S_OK);
        LONG found = 0;
        EXPECT_EQ(db::get_version(gate_, &found), S_OK);
        EXPECT_EQ(found, version);
        db::close(db::kCloseAll);
        EXPECT_EQ(file_bytes("sldb.mdb") + file_bytes("kvinvdb.mdb"), before);
    }
}

TEST_F(Session, new_files_hold_their_tables_and_first_rows) {
    db::attach(gate_);
    for (const db::TableSchema& table : db::studio_tables()) {
        const std::string name = table.name;
        EXPECT_EQ(row_count(gate_.main, table.name), name == "DBHeader" || name == "Def_Invoice" ? 1 : 0) << name;
    }
    CDaoRecordset engineers(gate_.main);
    EXPECT_EQ(error_of([&] { engineers.Open(dbOpenDynaset, "SELECT * FROM [Def_Engineers]", 260); }), 3078);
    EXPECT_EQ(field(gate_.main, "DBHeader", "DBversion"), "210000");
    EXPECT_EQ(field(gate_.main, "DBHeader", "Color1"), "(null)");
    EXPECT_EQ(field(gate_.main, "DBHeader", "Color2"), "1");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "StudioName"), "Your Studio Name");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "StudioDetails"), "Your Studio Details");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "BaseCounter"), "1");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "LastUsedCounter"), "0");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "VAT1"), "0");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "VAT2"), "0");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "Tax"), "0");
    EXPECT_EQ(field(gate_.main, "Def_Invoice", "ExData"), "0");

    EXPECT_EQ(row_count(gate_.invoice, "DBHeader"), 1);
    EXPECT_EQ(row_count(gate_.invoice, "Invoices"), 0);
    EXPECT_EQ(row_count(gate_.invoice, "InvoiceParams"), 0);
    EXPECT_EQ(field(gate_.invoice, "DBHeader", "DBversion"), "210000");
    EXPECT_EQ(field(gate_.invoice, "DBHeader", "CreateDate"), "(null)");
}

TEST_F(Session, open_on_an_empty_folder_leaves_no_sample_equipment) {
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_TRUE(gate_.main->IsOpen());
    EXPECT_TRUE(gate_.invoice->IsOpen());
    // The first step creates the file, so the later one finds it.
    EXPECT_EQ(row_count(gate_.main, "Equipment"), 0);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    EXPECT_EQ(row_count(gate_.main, "Def_Invoice"), 1);
}

#ifndef _WIN32  // an open file cannot be removed there
TEST_F(Session, open_that_itself_finds_no_main_file_writes_sample_equipment) {
    db::attach(gate_);
    take_main_file_away();
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    ASSERT_EQ(row_count(gate_.main, "Equipment"), 2);
    CDaoRecordset rows(gate_.main);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Equipment]", 260);
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Name")), "S3200 - AKAI");
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Action")), "New gear");
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Cost")), "$ 800");
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Notes")), "second hand. 127MB RAM");
    const double today = std::floor(os::local_time_as_ole_date());
    EXPECT_NEAR(rows.GetFieldValue("ActDate").date, today, 1);  // midnight may pass
    EXPECT_EQ(rows.GetFieldValue("ActDate").date, std::floor(rows.GetFieldValue("ActDate").date));
    EXPECT_EQ(rows.GetFieldValue("ExData").vt, VT_NULL);
    rows.MoveNext();
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Name")), "TR-Rack KORG");
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Action")), "Repair");
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Cost")), "$ 40");
    EXPECT_EQ(db::value_to_text(rows.GetFieldValue("Notes")), "Distorted output sound");
}
#endif

TEST_F(Session, open_closes_and_opens_the_main_file_but_keeps_its_rows) {
    db::attach(gate_);
    CDaoRecordset rows(gate_.main);
    rows.Open(dbOpenDynaset, "Projects", 0);
    rows.AddNew();
    rows.SetFieldValue("Name", "kept");
    rows.Update();
    db::open(gate_);
    EXPECT_FALSE(rows.IsOpen());  // closed with its database
    EXPECT_EQ(field(gate_.main, "Projects", "Name"), "kept");
}

struct CloseCase {
    unsigned flags;
    bool closes_main;
    bool closes_invoice;
};

class SessionClose : public Session, public testing::WithParamInterface<CloseCase> {};

TEST_P(SessionClose, flags_say_what_is_closed) {
    db::attach(gate_);
    db::close(GetParam().flags);
    EXPECT_EQ(gate_.main->IsOpen(), !GetParam().closes_main);
    EXPECT_EQ(gate_.invoice->IsOpen(), !GetParam().closes_invoice);
    db::close(GetParam().flags);  // closing twice does nothing
}

INSTANTIATE_TEST_SUITE_P(Flags, SessionClose,
                         testing::Values(CloseCase{0, true, true}, CloseCase{8, true, true}, CloseCase{16, false, true},
                                         CloseCase{32, true, false}, CloseCase{1, false, false},
                                         CloseCase{24, false, false}, CloseCase{64, false, false}));

TEST_F(Session, closed_files_are_released_and_opened_again) {
    db::open(gate_);
    db::close(0);
    {
        CDaoDatabase other;
        other.Open(path("sldb.mdb").c_str(), TRUE, FALSE, db::connect_text(db::DatabaseFile::kMain).c_str());
    }
    LONG version = -1;
    EXPECT_EQ(db::get_version(gate_, &version), E_FAIL);
    EXPECT_EQ(version, -1);
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_EQ(db::get_version(gate_, &version), S_OK);
    EXPECT_EQ(version, 210000);
    EXPECT_EQ(files(), 2u);  // no journals, no drafts
}

TEST_F(Session, reopen_closes_first) {
    CDaoDatabase& main = db::obtain_main(false);
    const DAODatabase* before = main.m_pDAODatabase;
    EXPECT_EQ(db::obtain_main(false).m_pDAODatabase, before);
    CDaoRecordset rows(&main);
    rows.Open(dbOpenDynaset, "Projects", 260);
    db::obtain_main(true);
    EXPECT_FALSE(rows.IsOpen());
    EXPECT_TRUE(main.IsOpen());
    db::obtain_invoice(true);
    db::obtain_invoice(true);
    EXPECT_TRUE(db::obtain_invoice(false).IsOpen());
}

TEST_F(Session, file_that_cannot_be_opened_raises_out_of_attach_and_open) {
    std::ofstream(path("sldb.mdb")) << std::string(8192, 'x');
    EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3343);
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3343);
    EXPECT_EQ(gate_.main, nullptr);
    std::filesystem::remove(path("sldb.mdb"));
    CDaoDatabase foreign;
    foreign.Create(path("sldb.mdb").c_str(), ";PWD=other");
    foreign.Close();
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3031);
    foreign.Open(path("sldb.mdb").c_str(), TRUE, FALSE, ";PWD=other");
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3045);
}

TEST_F(Session, two_files_have_two_passwords) {
    db::attach(gate_);
    db::close(0);
    const std::string main = db::connect_text(db::DatabaseFile::kMain);
    const std::string invoice = db::connect_text(db::DatabaseFile::kInvoice);
    EXPECT_NE(main, invoice);
    EXPECT_EQ(main.substr(0, 5), ";PWD=");
    EXPECT_EQ(invoice.substr(0, 5), ";PWD=");
    CDaoDatabase other;
    EXPECT_EQ(error_of([&] { other.Open(path("sldb.mdb").c_str(), TRUE, FALSE, invoice.c_str()); }), 3031);
    EXPECT_EQ(error_of([&] { other.Open(path("sldb.mdb").c_str(), TRUE); }), 3031);
    EXPECT_EQ(error_of([&] { other.Open(path("kvinvdb.mdb").c_str(), TRUE, FALSE, main.c_str()); }), 3031);
}

TEST_F(Session, head_is_read_and_only_the_colours_are_written) {
    db::open(gate_);
    HeadInfo head{-1, -1, -1};
    EXPECT_EQ(db::get_head(gate_, &head), S_OK);
    EXPECT_EQ(head.DBversion, 210000);
    EXPECT_EQ(head.Color1, 0);  // Null reads as 0
    EXPECT_EQ(head.Color2, 1);
    const HeadInfo wanted{5, 0x00FF00, -7};
    EXPECT_EQ(db::set_head(gate_, &wanted), S_OK);
    db::open(gate_);
    EXPECT_EQ(db::get_head(gate_, &head), S_OK);
    EXPECT_EQ(head.DBversion, 210000);
    EXPECT_EQ(head.Color1, 0x00FF00);
    EXPECT_EQ(head.Color2, -7);
}

TEST_F(Session, header_without_a_row_fails_and_leaves_the_record) {
    db::attach(gate_);
    CDaoRecordset rows(gate_.main);
    rows.Open(dbOpenDynaset, "DBHeader", 0);
    rows.Delete();
    rows.Close();
    LONG version = -5;
    HeadInfo head{-1, -2, -3};
    EXPECT_EQ(db::get_version(gate_, &version), E_FAIL);
    EXPECT_EQ(version, -5);
    EXPECT_EQ(db::get_head(gate_, &head), E_FAIL);
    EXPECT_EQ(head.Color1, -2);
    EXPECT_EQ(db::set_head(gate_, &head), E_FAIL);
    EXPECT_EQ(db::stored_version(*gate_.main), 0);
    EXPECT_EQ(db::open(gate_), S_OK);  // used unchanged
}

TEST_F(Session, gate_that_never_attached_fails) {
    LONG version = -5;
    HeadInfo head;
    EXPECT_EQ(db::get_version(gate_, &version), E_FAIL);
    EXPECT_EQ(db::get_head(gate_, &head), E_FAIL);
    EXPECT_EQ(db::set_head(gate_, &head), E_FAIL);
    db::attach(gate_);
    EXPECT_EQ(db::get_version(gate_, nullptr), E_FAIL);
    EXPECT_EQ(db::get_head(gate_, nullptr), E_FAIL);
    EXPECT_EQ(db::set_head(gate_, nullptr), E_FAIL);
}

TEST_F(Session, missing_folder_raises) {
    db::set_database_folder(path("nowhere"));
    EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3044);
    EXPECT_FALSE(db::main_file_exists());
}

TEST_F(Session, content_on_a_closed_database_fails) {
    CDaoDatabase closed;
    EXPECT_NE(error_of([&] { db::write_main_content(closed); }), 0);
    EXPECT_NE(error_of([&] { db::write_invoice_content(closed); }), 0);
    EXPECT_NE(error_of([&] { db::add_sample_equipment(closed); }), 0);
    EXPECT_NE(error_of([&] { db::add_demo_project(closed); }), 0);
    EXPECT_NE(error_of([&] { db::write_media_library(closed); }), 0);
    EXPECT_NE(error_of([&] { db::write_contact_categories(closed); }), 0);
}

TEST_F(Session, shutting_down_closes_once_and_opening_again_works) {
    db::attach(gate_);
    db::shut_down_engine();
    EXPECT_FALSE(gate_.main->IsOpen());
    EXPECT_EQ(db::attach(gate_), S_OK);
    db::shut_down_engine();  // once per process
    EXPECT_TRUE(gate_.main->IsOpen());
}

TEST(DatabaseFolder, is_the_module_folder_without_separator) {
    const std::string folder = db::database_folder();
    EXPECT_EQ(folder, os::folder_of(os::module_path()));
    EXPECT_NE(folder.back(), '/');
    EXPECT_NE(folder.back(), '\\');
    const std::string file = db::file_path(db::DatabaseFile::kMain);
    EXPECT_EQ(file.size(), folder.size() + 1 + std::strlen("sldb.mdb"));
}

TEST(DatabaseFolder, is_worked_out_at_every_use_and_never_cut) {
    db::set_database_folder("/first");
    EXPECT_EQ(db::database_folder(), "/first");
    db::set_database_folder(std::string(400, 'x'));
    EXPECT_EQ(db::database_folder().size(), 400u);
    db::set_database_folder("");
    EXPECT_EQ(db::database_folder(), os::folder_of(os::module_path()));
}

}  // namespace
