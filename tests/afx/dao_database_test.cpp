#include "afx/dao_database.h"

#include <fstream>
#include <memory>

#include "afx/dao_error.h"
#include "tests/afx/dao_test_support.h"

namespace {

class DaoDatabase : public FolderTest {
protected:
    static BSTR bstr(const COleVariant& text) { return text.bstrVal; }
};

TEST_F(DaoDatabase, create_leaves_the_object_open_and_ready) {
    CDaoDatabase database;
    EXPECT_FALSE(database.IsOpen());
    EXPECT_EQ(database.m_pDAODatabase, nullptr);
    database.Create(path("new.mdb").c_str());
    EXPECT_TRUE(database.IsOpen());
    EXPECT_NE(database.m_pDAODatabase, nullptr);
    CDaoTableDef table(&database);
    table.Create("T");
    table.CreateField("A", dbLong, 4);
    EXPECT_EQ(error_of([&] { table.Append(); }), 0);
}

TEST_F(DaoDatabase, last_error_is_kept_for_who_gets_a_result_code_only) {
    afx::clear_last_error();
    EXPECT_EQ(afx::last_error().number, 0);
    EXPECT_STREQ(afx::last_error().text, "");
    CDaoDatabase database;
    EXPECT_EQ(error_of([&] { database.Open(path("missing.mdb").c_str()); }), 3024);
    EXPECT_EQ(afx::last_error().number, 3024);
    EXPECT_NE(std::string(afx::last_error().text).find("missing.mdb"), std::string::npos);

    // A result code on the way does not take the text away.
    database.Create(path("new.mdb").c_str());
    const COleVariant wrong("wrong");
    EXPECT_EQ(error_of([&] { DAO_CHECK(database.m_pDAODatabase->NewPassword(bstr(wrong), bstr(wrong))); }), 3031);
    EXPECT_NE(std::string(afx::last_error().text).find("new.mdb"), std::string::npos) << afx::last_error().text;
}

TEST_F(DaoDatabase, text_of_the_last_error_is_cut_between_characters) {
    afx::clear_last_error();
    std::string text(510, 'x');
    text += "\u00fc\u00fc";
    EXPECT_EQ(error_of([&] { afx::throw_dao(3001, text); }), 3001);
    EXPECT_EQ(afx::last_error().text, std::string(510, 'x'));
}

TEST_F(DaoDatabase, create_adds_a_missing_extension) {
    CDaoDatabase database;
    database.Create(path("plain").c_str());
    EXPECT_TRUE(std::filesystem::exists(path("plain.MDB")));
}

TEST_F(DaoDatabase, create_reports_what_is_wrong_with_the_place) {
    CDaoDatabase database;
    std::ofstream(path("there.mdb")) << "x";
    EXPECT_EQ(error_of([&] { database.Create(path("there.mdb").c_str()); }), 3204);
    EXPECT_EQ(error_of([&] { database.Create(path("missing/new.mdb").c_str()); }), 3044);
    EXPECT_EQ(error_of([&] { database.Create(""); }), 3055);
    EXPECT_FALSE(database.IsOpen());
}

TEST_F(DaoDatabase, open_failures_have_their_numbers_and_leave_it_closed) {
    CDaoDatabase database;
    EXPECT_EQ(error_of([&] { database.Open(path("none.mdb").c_str()); }), 3024);
    EXPECT_EQ(error_of([&] { database.Open(path("no/such/folder.mdb").c_str()); }), 3044);
    EXPECT_EQ(error_of([&] { database.Open(""); }), 3055);
    EXPECT_EQ(error_of([&] { database.Open(nullptr); }), 3055);
    std::ofstream(path("text.mdb")) << std::string(8192, 'x');
    EXPECT_EQ(error_of([&] { database.Open(path("text.mdb").c_str()); }), 3343);
    EXPECT_FALSE(database.IsOpen());
    EXPECT_EQ(database.m_pDAODatabase, nullptr);
}

TEST_F(DaoDatabase, password_of_the_locale_text_is_asked_for) {
    CDaoDatabase database;
    database.Create(path("p.mdb").c_str(), ";LANGID=0x0409;CP=1252;COUNTRY=0;PWD=Secret1");
    database.Close();
    EXPECT_EQ(error_of([&] { database.Open(path("p.mdb").c_str(), TRUE); }), 3031);
    EXPECT_EQ(error_of([&] { database.Open(path("p.mdb").c_str(), TRUE, FALSE, ";PWD=secret1"); }), 3031);
    EXPECT_EQ(error_of([&] { database.Open(path("p.mdb").c_str(), TRUE, FALSE, ";pwd=Secret1"); }), 0);
    EXPECT_TRUE(database.IsOpen());
}

TEST_F(DaoDatabase, password_for_a_file_without_one_is_ignored) {
    CDaoDatabase database;
    database.Create(path("n.mdb").c_str());
    database.Close();
    EXPECT_EQ(error_of([&] { database.Open(path("n.mdb").c_str(), TRUE, FALSE, ";PWD=any"); }), 0);
}

TEST_F(DaoDatabase, second_opening_in_the_process_is_refused) {
    CDaoDatabase first;
    CDaoDatabase second;
    first.Create(path("once.mdb").c_str());
    EXPECT_EQ(error_of([&] { second.Open(path("once.mdb").c_str(), TRUE); }), 3045);
    EXPECT_EQ(error_of([&] { first.Open(path("once.mdb").c_str(), TRUE); }), 3045);
    first.Close();
    EXPECT_EQ(error_of([&] { second.Open(path("once.mdb").c_str(), TRUE); }), 0);
}

TEST_F(DaoDatabase, close_is_repeatable_and_opening_again_works) {
    CDaoDatabase database;
    database.Close();
    database.Create(path("a.mdb").c_str());
    for (int i = 0; i < 3; ++i) {
        database.Close();
        database.Close();
        EXPECT_FALSE(database.IsOpen());
        database.Open(path("a.mdb").c_str(), TRUE);
    }
    EXPECT_TRUE(database.IsOpen());
}

TEST_F(DaoDatabase, new_password_takes_effect) {
    CDaoDatabase database;
    database.Create(path("c.mdb").c_str(), ";PWD=one");
    database.Close();
    database.Open(path("c.mdb").c_str(), TRUE, FALSE, ";PWD=one");
    const COleVariant one("one", VT_BSTRT), two("two", VT_BSTRT), none("", VT_BSTRT);
    EXPECT_EQ(error_of([&] { DAO_CHECK(database.m_pDAODatabase->NewPassword(bstr(two), bstr(one))); }), 3031);
    EXPECT_EQ(database.m_pDAODatabase->NewPassword(bstr(one), bstr(two)), S_OK);
    database.Close();
    EXPECT_EQ(error_of([&] { database.Open(path("c.mdb").c_str(), TRUE, FALSE, ";PWD=one"); }), 3031);
    database.Open(path("c.mdb").c_str(), TRUE, FALSE, ";PWD=two");
    EXPECT_EQ(database.m_pDAODatabase->NewPassword(bstr(two), bstr(none)), S_OK);
    database.Close();
    EXPECT_EQ(error_of([&] { database.Open(path("c.mdb").c_str(), FALSE); }), 0);
    EXPECT_EQ(error_of([&] { DAO_CHECK(database.m_pDAODatabase->NewPassword(bstr(none), bstr(one))); }), 3621);
}

TEST_F(DaoDatabase, exception_carries_number_scode_and_text) {
    CDaoDatabase database;
    try {
        database.Open(path("none.mdb").c_str());
        FAIL() << "no exception";
    } catch (CDaoException* e) {
        EXPECT_EQ(e->m_pErrorInfo->m_lErrorCode, 3024);
        EXPECT_EQ(e->m_scode, static_cast<SCODE>(0x800A0BD0u));
        EXPECT_EQ(e->m_nAfxDaoError, 0);
        EXPECT_EQ(e->GetErrorCount(), 1);
        EXPECT_GE(e->m_pErrorInfo->m_strDescription.Find("none.mdb"), 0);
        e->Delete();
    }
}

TEST_F(DaoDatabase, thrown_by_hand_decodes_the_scode) {
    EXPECT_EQ(error_of([] { AfxThrowDaoException(0, static_cast<SCODE>(0x800A0BD0u)); }), 3024);
    EXPECT_EQ(error_of([] { DAO_CHECK(E_FAIL); }), 3001);
    EXPECT_EQ(error_of([] { DAO_CHECK(S_OK); }), 0);
}

class DaoDatabaseUsers : public ItemsTest {};

TEST_F(DaoDatabaseUsers, close_closes_sets_and_definitions) {
    add("one");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
    rows.AddNew();
    CDaoTableDef table(&database_);
    table.Open("Items");
    database_.Close();
    EXPECT_FALSE(rows.IsOpen());
    EXPECT_EQ(rows.m_pDAORecordset, nullptr);
    EXPECT_FALSE(table.IsOpen());
    EXPECT_EQ(error_of([&] { rows.MoveNext(); }), 3420);
    EXPECT_EQ(error_of([&] { rows.IsEOF(); }), 3420);
    EXPECT_EQ(error_of([&] { rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0); }), 3420);
    rows.Close();

    database_.Open(path("items.mdb").c_str(), TRUE);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
    EXPECT_EQ(text(rows, "Name"), "one");
}

TEST_F(DaoDatabaseUsers, set_outlives_its_database) {
    auto database = std::make_unique<CDaoDatabase>();
    database->Create(path("other.mdb").c_str());
    CDaoTableDef table(database.get());
    table.Create("T");
    table.CreateField("A", dbLong, 4);
    table.Append();
    CDaoRecordset open(database.get());
    open.Open(dbOpenDynaset, "SELECT * FROM [T]", 0);
    CDaoRecordset closed(database.get());
    database.reset();
    EXPECT_FALSE(open.IsOpen());
    EXPECT_EQ(open.m_pDatabase, nullptr);
    EXPECT_EQ(closed.m_pDatabase, nullptr);
    EXPECT_EQ(table.m_pDatabase, nullptr);
    EXPECT_EQ(error_of([&] { closed.Open(dbOpenDynaset, "SELECT * FROM [T]", 0); }), 3420);
}

TEST_F(DaoDatabaseUsers, terminating_the_engine_closes_everything_and_is_repeatable) {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
    AfxDaoTerm();
    AfxDaoTerm();
    EXPECT_FALSE(database_.IsOpen());
    EXPECT_FALSE(rows.IsOpen());
    database_.Open(path("items.mdb").c_str(), TRUE);
    EXPECT_TRUE(database_.IsOpen());
}

TEST_F(DaoDatabaseUsers, committed_transaction_stays) {
    database_.m_pWorkspace->BeginTrans();
    add("one");
    add("two");
    database_.m_pWorkspace->CommitTrans();
    database_.Close();
    database_.Open(path("items.mdb").c_str(), TRUE);
    EXPECT_EQ(names(), "one two ");
}

TEST_F(DaoDatabaseUsers, rollback_takes_rows_and_tables_back_and_closes_sets) {
    add("kept");
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM [Items]", 0);
    database_.m_pWorkspace->BeginTrans();
    add("gone");
    CDaoTableDef table(&database_);
    table.Create("Extra");
    table.CreateField("A", dbLong, 4);
    table.Append();
    table.Close();
    database_.m_pWorkspace->Rollback();
    EXPECT_FALSE(rows.IsOpen());
    EXPECT_EQ(names(), "kept ");
    EXPECT_EQ(error_of([&] { table.Open("Extra"); }), 3265);
    EXPECT_EQ(error_of([&] { rows.Open(dbOpenDynaset, "SELECT * FROM [Extra]", 0); }), 3078);
    add("after");
    EXPECT_EQ(names(), "kept after ");
}

TEST_F(DaoDatabaseUsers, close_takes_an_open_transaction_back) {
    add("kept");
    database_.m_pWorkspace->BeginTrans();
    add("gone");
    database_.Close();
    database_.Open(path("items.mdb").c_str(), TRUE);
    EXPECT_EQ(names(), "kept ");
}

TEST_F(DaoDatabaseUsers, commit_without_transaction_throws) {
    EXPECT_EQ(error_of([&] { database_.m_pWorkspace->CommitTrans(); }), 3034);
    EXPECT_EQ(error_of([&] { database_.m_pWorkspace->Rollback(); }), 3034);
}

}  // namespace
