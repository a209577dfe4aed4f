#include "db/session.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <utility>

#include "db/content.h"
#include "db/create_files.h"
#include "db/database_files.h"
#include "db/schema.h"
#include "db/upgrade.h"
#include "db/values.h"
#include "os/file.h"
#include "os/system.h"
#include "tests/afx/dao_test_support.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

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
    // Takes the main file away from under the open database, as far as the host allows.
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
    for (const db::Opening opening : {db::Opening::kAsTheyAre, db::Opening::kReadOnly}) {
        db::set_opening(opening);
        EXPECT_EQ(error_of([&] { db::open(gate_); }), 3024);
        EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3024);
        EXPECT_EQ(files(), 0u);
    }
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
        for (const db::Opening opening : {db::Opening::kAsTheyAre, db::Opening::kReadOnly}) {
            db::set_opening(opening);
            EXPECT_EQ(db::open(gate_), S_OK);
            LONG found = 0;
            EXPECT_EQ(db::get_version(gate_, &found), S_OK);
            EXPECT_EQ(found, version);
            db::close(db::kCloseAll);
            EXPECT_EQ(file_bytes("sldb.mdb") + file_bytes("kvinvdb.mdb"), before);
            EXPECT_EQ(files(), 2u);
        }
    }
}

TEST_F(Session, files_that_are_opened_for_reading_refuse_changes) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    db::set_opening(db::Opening::kReadOnly);
    EXPECT_EQ(db::open(gate_), S_OK);
    HeadInfo head;
    EXPECT_EQ(db::get_head(gate_, &head), S_OK);
    EXPECT_EQ(db::set_head(gate_, &head), E_FAIL);
    EXPECT_EQ(files(), 2u);
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
    // The first step makes the file, so the later one finds it present.
    EXPECT_EQ(row_count(gate_.main, "Equipment"), 0);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    EXPECT_EQ(row_count(gate_.main, "Def_Invoice"), 1);
}

#ifndef _WIN32  // an open file cannot be taken away there
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
    db::close(GetParam().flags);  // closing what is closed is nothing
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
    EXPECT_EQ(db::open(gate_), S_OK);  // served as it stands
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

TEST_F(Session, drafts_left_by_a_crash_are_cleared_and_files_of_others_are_not) {
    const std::string left[] = {"sldb.mdb-new-0123456789abcdef", "sldb.mdb-new-0123456789abcdef-journal",
                                "sldb.mdb-new-0123456789abcdef-new-fedcba9876543210"};
    const std::string others[] = {"sldb.mdb-new", "sldb.mdb-new-2", "sldb.mdb-new-0123456789abcdeX", "sldb.mdb-news"};
    for (const std::string& name : left) std::ofstream(path(name.c_str())) << "half a file";
    for (const std::string& name : others) std::ofstream(path(name.c_str())) << "the owner's";
    std::filesystem::create_directory(path("kvinvdb.mdb-new"));
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    for (const std::string& name : left) EXPECT_FALSE(std::filesystem::exists(path(name.c_str()))) << name;
    for (const std::string& name : others) EXPECT_TRUE(std::filesystem::exists(path(name.c_str()))) << name;
    EXPECT_TRUE(std::filesystem::exists(path("kvinvdb.mdb-new")));
}

TEST_F(Session, journal_left_by_a_crash_on_its_way_out_is_cleared) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    std::ofstream(path("sldb.mdb-journal-new-0123456789abcdef")) << "what was a journal";
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_EQ(files(), 2u);
}

TEST_F(Session, draft_somebody_works_on_is_left_alone) {
    CDaoDatabase other;
    const std::string draft = path("sldb.mdb-new-0123456789abcdef");
    other.Create(draft.c_str());
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_TRUE(std::filesystem::exists(draft));
}

#ifndef _WIN32
TEST_F(Session, link_that_leads_nowhere_is_an_error_and_never_replaced) {
    for (const char* const target : {"nowhere/sldb.mdb", "sldb.mdb"}) {
        std::filesystem::create_symlink(target, path("sldb.mdb"));
        EXPECT_NE(error_of([&] { db::open(gate_); }), 0) << target;
        EXPECT_TRUE(std::filesystem::is_symlink(path("sldb.mdb")));
        EXPECT_EQ(files(), 1u) << target;
        std::filesystem::remove(path("sldb.mdb"));
    }
}

TEST_F(Session, file_behind_a_link_is_the_database_and_its_journal_lies_beside_it) {
    std::filesystem::create_directory(path("far"));
    db::set_database_folder(path("far"));
    db::attach(gate_);
    db::close(db::kCloseAll);
    std::filesystem::rename(path("far/kvinvdb.mdb"), path("kvinvdb.mdb"));
    std::filesystem::create_symlink("far/sldb.mdb", path("sldb.mdb"));
    db::set_database_folder(folder_.string());
    EXPECT_EQ(db::open(gate_), S_OK);
    const HeadInfo head{0, 7, 8};
    EXPECT_EQ(db::set_head(gate_, &head), S_OK);
    EXPECT_TRUE(std::filesystem::exists(path("far/sldb.mdb-journal")));
    EXPECT_FALSE(std::filesystem::exists(path("sldb.mdb-journal")));
    db::close(db::kCloseAll);
    EXPECT_TRUE(std::filesystem::is_symlink(path("sldb.mdb")));
}

TEST_F(Session, new_invoice_file_and_journals_take_the_permissions_of_the_main_file) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    std::filesystem::remove(path("kvinvdb.mdb"));
    const auto owner_only = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    std::filesystem::permissions(path("sldb.mdb"), owner_only);
    EXPECT_EQ(db::open(gate_), S_OK);
    const HeadInfo head{0, 7, 8};
    EXPECT_EQ(db::set_head(gate_, &head), S_OK);
    for (const std::string name : {"kvinvdb.mdb", "sldb.mdb-journal"}) {
        EXPECT_EQ(std::filesystem::status(path(name.c_str())).permissions(), owner_only) << name;
    }
}

constexpr int kHasIt = 0;
constexpr int kToldInUse = 1;
constexpr int kOther = 2;

// Runs db::open in a child that keeps what it has got until `release` is closed; the exit code is one of the above.
pid_t open_in_child(int start, int told, int release) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    ::alarm(60);
    char byte = 0;
    db::GateDatabases gate;
    static_cast<void>(::read(start, &byte, 1));
    const int code = error_of([&] { db::open(gate); });
    static_cast<void>(::write(told, &byte, 1));
    static_cast<void>(::read(release, &byte, 1));
    db::close(db::kCloseAll);
    ::_exit(code == 0 ? kHasIt : code == 3356 ? kToldInUse : kOther);
}

TEST_F(Session, of_two_hosts_that_open_an_empty_folder_at_once_one_has_it_and_one_is_told_that_it_is_in_use) {
    constexpr int kRounds = 40;
    for (int round = 0; round < kRounds; ++round) {
        int start[2];
        int told[2];
        int release[2];
        ASSERT_EQ(::pipe(start) | ::pipe(told) | ::pipe(release), 0);
        pid_t children[2];
        for (pid_t& child : children) {
            child = ::fork();
            if (child != 0) continue;
            ::close(start[1]);
            ::close(release[1]);
            const pid_t inner = open_in_child(start[0], told[1], release[0]);
            int status = 0;
            ::waitpid(inner, &status, 0);
            ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : kOther);
        }
        ::close(start[1]);
        char bytes[2];
        for (int got = 0; got < 2;) {
            const auto count = ::read(told[0], bytes, 2);
            ASSERT_GT(count, 0);
            got += static_cast<int>(count);
        }
        ::close(release[1]);
        int codes[2];
        for (int i = 0; i < 2; ++i) {
            int status = 0;
            ::waitpid(children[i], &status, 0);
            codes[i] = WIFEXITED(status) ? WEXITSTATUS(status) : kOther;
        }
        for (const int fd : {start[0], told[0], told[1], release[0]}) ::close(fd);
        EXPECT_EQ(std::min(codes[0], codes[1]), kHasIt) << "one has it";
        EXPECT_EQ(std::max(codes[0], codes[1]), kToldInUse) << "the other is told";
        EXPECT_EQ(files(), 2u) << "nothing is left behind";
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) std::filesystem::remove(entry);
    }
}
#endif

TEST_F(Session, folder_of_any_length_that_the_system_takes_works_and_a_longer_one_is_an_error) {
    std::string deep = folder_.string();
    while (deep.size() < 500) deep = (std::filesystem::path(deep) / std::string(60, 'n')).string();
#ifdef _WIN32
    std::filesystem::create_directories("\\\\?\\" + deep);
#else
    std::filesystem::create_directories(deep);
#endif
    db::set_database_folder(deep);
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_TRUE(db::main_file_exists());
    db::close(db::kCloseAll);
    EXPECT_EQ(files(), 1u) << "nothing appears anywhere else";
    db::set_database_folder(folder_.string() + "/" + std::string(40000, 'n'));
    EXPECT_NE(error_of([&] { db::open(gate_); }), 0);
    EXPECT_EQ(files(), 1u);
}

// The machine's own file system, with one operation that fails from a given call on.
class FailingFileSystem final : public os::FileSystem {
public:
    enum class Fails { kRename, kFolderSync, kExists };

    explicit FailingFileSystem(Fails fails) : fails_(fails) { os::set_file_system(this); }
    ~FailingFileSystem() override { os::set_file_system(nullptr); }

    std::unique_ptr<os::File> open(const std::string& path, os::OpenMode mode) override {
        return own_.open(path, mode);
    }
    bool exists(const std::string& path) override {
        if (fails_ == Fails::kExists) throw os::FileError(os::FileFault::kIo, "cannot tell");
        return own_.exists(path);
    }
    void remove(const std::string& path) override { own_.remove(path); }
    void rename(const std::string& from, const std::string& to) override {
        if (fails_ == Fails::kRename) throw os::FileError(os::FileFault::kAccessDenied, "rename refused");
        own_.rename(from, to);
    }
    void replace(const std::string& from, const std::string& to) override { own_.replace(from, to); }
    void sync_folder_of(const std::string& path) override {
        if (fails_ == Fails::kFolderSync) throw os::FileError(os::FileFault::kDiskFull, "no space");
        own_.sync_folder_of(path);
    }
    std::vector<std::string> longer_names(const std::string& path) override { return own_.longer_names(path); }

private:
    os::FileSystem& own_ = os::native_file_system();
    Fails fails_;
};

TEST_F(Session, creation_that_fails_leaves_no_file_and_no_open_database) {
    for (const auto& [fails, number] :
         {std::pair{FailingFileSystem::Fails::kRename, 3051}, std::pair{FailingFileSystem::Fails::kFolderSync, 3026}}) {
        const FailingFileSystem failing(fails);
        EXPECT_EQ(error_of([&] { db::attach(gate_); }), number);
        EXPECT_EQ(gate_.main, nullptr);
        EXPECT_EQ(files(), 0u);
    }
    EXPECT_EQ(db::attach(gate_), S_OK);
}

TEST_F(Session, file_whose_presence_cannot_be_told_is_an_error_and_never_replaced) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    const auto size = std::filesystem::file_size(path("sldb.mdb"));
    const FailingFileSystem failing(FailingFileSystem::Fails::kExists);
    EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3043);
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3043);
    EXPECT_EQ(error_of([&] { db::main_file_exists(); }), 3043);
    EXPECT_EQ(files(), 2u);
    EXPECT_EQ(std::filesystem::file_size(path("sldb.mdb")), size);
}

TEST_F(Session, missing_folder_raises) {
    db::set_database_folder(path("nowhere"));
    EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3044);
    EXPECT_FALSE(db::main_file_exists());
}

TEST_F(Session, content_on_a_closed_database_fails) {
    CDaoDatabase closed;
    EXPECT_EQ(db::write_main_content(closed), -1);
    EXPECT_EQ(db::write_invoice_content(closed), -1);
    EXPECT_EQ(db::add_sample_equipment(closed), -1);
    EXPECT_EQ(db::add_demo_project(closed), -1);
    EXPECT_EQ(db::write_media_library(closed), -1);
    EXPECT_EQ(db::write_contact_categories(closed), -1);
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
