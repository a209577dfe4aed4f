// Studios of earlier versions, opened by a host: what the gates then show, and what is in the files.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include "tests/frame/gate_host.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"

namespace {

using namespace testing_support;

using Method = HRESULT (STDMETHODCALLTYPE IDBgate1::*)(LONG_PTR);

// The records of an enumeration; each begins as `filter`.
template <class Record>
std::vector<Record> all_of(IDBgate1& gate, Method first, Method next, const Record& filter = {}) {
    std::vector<Record> records;
    Record record = filter;
    for (HRESULT result = (gate.*first)(address_of(record)); result == S_OK;
         result = (gate.*next)(address_of(record))) {
        records.push_back(record);
    }
    return records;
}

class UpgradeGate : public ::testing::Test {
protected:
    std::string studio() const { return host_.file("sldb.mdb"); }
    std::string invoices() const { return host_.file("kvinvdb.mdb"); }

    GateHost host_;
};

class UpgradeFromGate : public UpgradeGate, public ::testing::WithParamInterface<std::int32_t> {
protected:
    UpgradeFromGate() { make_old_studio(host_.folder(), GetParam()); }
};

TEST_P(UpgradeFromGate, opening_shows_todays_version_and_every_record) {
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    LONG version = 0;
    EXPECT_EQ(gate->GetDBVer(&version), S_OK);
    EXPECT_EQ(version, 210000);
    const auto projects = all_of<ProjInfo>(*gate, &IDBgate1::EnumFirstProj, &IDBgate1::EnumNextProj);
    ASSERT_EQ(projects.size(), 13u);
    EXPECT_STREQ(projects[12].Name.GetString(), " Demo Project");
    EXPECT_EQ(std::string(projects[12].Notes.GetString()).find("                 ====="), 0u);
    EXPECT_NE(std::string(projects[12].Notes.GetString()).find("Welcome to Korvane !"), std::string::npos);
    for (const ProjInfo& project : projects) EXPECT_GE(project.ProjCreateDate.GetYear(), 2024);

    std::size_t sessions = 0, with_song = 0;
    for (const ProjInfo& project : projects) {
        SessionInfo filter;
        filter.ProjID = project.ProjID;
        for (const SessionInfo& session :
             all_of<SessionInfo>(*gate, &IDBgate1::EnumFirstSession, &IDBgate1::EnumNextSession, filter)) {
            ++sessions;
            with_song += session.SongID != 0;
        }
    }
    EXPECT_EQ(sessions, 400u);
    EXPECT_EQ(with_song, 302u);

    ClientInfo engineers;
    engineers.CategoryID = 6;
    const auto contacts = all_of<ClientInfo>(*gate, &IDBgate1::EnumFirstClient, &IDBgate1::EnumNextClient, engineers);
    ASSERT_EQ(contacts.size(), 12u);  // nine of the list, three guests
    for (const ClientInfo& contact : contacts) {
        EXPECT_STREQ(contact.Title.GetString(), "Imported Sound Engineer");
        EXPECT_STREQ(contact.CatIDs.GetString(), "6");
    }
    ParticInfo of_first;
    of_first.ContactID = contacts[0].ClientID;
    const auto parts = all_of<ParticInfo>(*gate, &IDBgate1::EnumFirstPartic, &IDBgate1::EnumNextPartic, of_first);
    ASSERT_FALSE(parts.empty());
    EXPECT_NE(parts[0].ServiceID, 0);
    const auto categories = all_of<ConCatInfo>(*gate, &IDBgate1::EnumFirstConCat, &IDBgate1::EnumNextConCat);
    ASSERT_EQ(categories.size(), 10u);
    EXPECT_EQ(categories[5].RecID, 6);
    EXPECT_STREQ(categories[5].Name.GetString(), "Engineers");
    const auto mixes = all_of<MixInfo>(*gate, &IDBgate1::EnumFirstMix, &IDBgate1::EnumNextMix, {});
    gate->CloseDB();
    EXPECT_EQ(content_of(studio()).at("MixFiles").rows.size(), 50u);
    EXPECT_EQ(mixes.size(), 0u);  // of song 0
}

TEST_P(UpgradeFromGate, opening_keeps_the_rows_of_both_files) {
    const Content old_studio = content_of(studio());
    const Content old_invoices = content_of(invoices());
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    gate->CloseDB();
    const Content new_studio = content_of(studio());
    const Content new_invoices = content_of(invoices());
    EXPECT_EQ(version_in(new_studio), "210000");
    EXPECT_EQ(version_in(new_invoices), "210000");
    EXPECT_EQ(password_in(studio()), kStudioPassword);
    EXPECT_EQ(new_studio.size(), 35u);
    for (const auto& [before, after] : {std::pair{&old_studio, &new_studio}, {&old_invoices, &new_invoices}}) {
        for (const auto& [name, table] : *before) {
            const ContentTable& now = after->at(name);
            ASSERT_GE(now.rows.size(), table.rows.size()) << name;
            for (std::size_t i = 0; i < table.rows.size(); ++i) {
                for (const auto& [column, value] : table.rows[i]) {
                    const bool goes = column == "Date" && (name == "Sessions" || name == "Equipment");
                    const bool changes = column == "DBversion" || (name == "Clients" && column == "Name") ||
                                         (column == "RoomID" && value == "null" && name == "Sessions");
                    if (goes || changes) continue;
                    EXPECT_EQ(now.rows[i].at(column), value) << name << "." << column;
                }
            }
        }
    }
    for (const ContentRow& invoice : new_invoices.at("Invoices").rows) {
        EXPECT_EQ(invoice.at("Paymetns"), "0.000000f");
        EXPECT_EQ(invoice.at("fTax"), "0.0000");
        EXPECT_EQ(invoice.at("fDiscount"), "0.0000");
        const std::string total = invoice.at("Total") == "null" ? "0.0000" : invoice.at("Total");
        EXPECT_EQ(invoice.at("Balance"), total + "00f");
    }
    for (const ContentRow& line : new_invoices.at("InvoiceParams").rows) {
        std::string date = "null";
        for (const ContentRow& invoice : new_invoices.at("Invoices").rows) {
            if (invoice.at("RecID") == line.at("InvoiceID")) date = invoice.at("Date");
        }
        EXPECT_EQ(line.at("Date"), date);
    }
}

TEST_P(UpgradeFromGate, second_opening_changes_nothing) {
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    gate->CloseDB();
    const Content first_studio = content_of(studio());
    const Content first_invoices = content_of(invoices());
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ASSERT_EQ(gate->OpenDB(), S_OK);
    gate->CloseDB();
    EXPECT_EQ(difference(first_studio, content_of(studio())), "");
    EXPECT_EQ(difference(first_invoices, content_of(invoices())), "");
}

TEST_P(UpgradeFromGate, attaching_serves_both_files_as_they_stand) {
    const Content old_studio = content_of(studio());
    const Content old_invoices = content_of(invoices());
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->CreateDB(nullptr), S_OK);
    LONG version = 0;
    EXPECT_EQ(gate->GetDBVer(&version), S_OK);
    EXPECT_EQ(version, GetParam());
    const auto gear = host_.create<IDBGate3>();
    EXPECT_EQ(gear->OpenDB(), S_OK);
    gate->CloseDB();
    EXPECT_EQ(difference(old_studio, content_of(studio())), "");
    EXPECT_EQ(difference(old_invoices, content_of(invoices())), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, UpgradeFromGate, ::testing::ValuesIn(kOldVersions),
                         [](const auto& version) { return std::to_string(version.param); });

// The number of the engine's error that opening lets out; 0 when it succeeds.
int error_of_opening(IDBgate1& gate) {
    try {
        EXPECT_EQ(gate.OpenDB(), S_OK);
    } catch (CDaoException* exception) {
        const int number = exception->m_pErrorInfo->m_lErrorCode;
        exception->Delete();
        return number;
    }
    return 0;
}

TEST_F(UpgradeGate, oldest_file_with_the_current_password_is_served_as_it_stands) {
    Oddities oddities;
    oddities.password = kStudioPassword;
    OldFile file(studio(), OldFile::Kind::kStudio, 100005, oddities);
    fill_studio(file);
    file.close();
    const Content before = content_of(studio());
    const auto gate = host_.create<IDBgate1>();
    EXPECT_EQ(error_of_opening(*gate), 0);
    LONG version = 0;
    EXPECT_EQ(gate->GetDBVer(&version), S_OK);
    EXPECT_EQ(version, 100005);
    gate->CloseDB();
    EXPECT_EQ(difference(before, content_of(studio())), "");
}

TEST_F(UpgradeGate, newer_file_with_the_former_password_opens_and_keeps_it) {
    Oddities oddities;
    oddities.password = kFormerStudioPassword;
    OldFile(studio(), OldFile::Kind::kStudio, 200010, oddities).close();
    const auto gate = host_.create<IDBgate1>();
    EXPECT_EQ(error_of_opening(*gate), 0);
    gate->CloseDB();
    EXPECT_EQ(version_in(content_of(studio())), "210000");
    EXPECT_EQ(password_in(studio()), kFormerStudioPassword);
    EXPECT_EQ(error_of_opening(*gate), 0);
}

TEST_F(UpgradeGate, third_password_is_an_error) {
    if (test_access() == Access::kInvoke) GTEST_SKIP() << "late binding carries no number of the engine";
    Oddities oddities;
    oddities.password = "neither";
    OldFile(studio(), OldFile::Kind::kStudio, 100005, oddities).close();
    const auto gate = host_.create<IDBgate1>();
    EXPECT_EQ(error_of_opening(*gate), 3031);
    EXPECT_EQ(version_in(content_of(studio())), "100005");
}

TEST_F(UpgradeGate, invoice_file_knows_no_former_password) {
    if (test_access() == Access::kInvoke) GTEST_SKIP() << "late binding carries no number of the engine";
    for (const char* const password : {kFormerStudioPassword, kStudioPassword}) {
        Oddities oddities;
        oddities.password = password;
        OldFile(invoices(), OldFile::Kind::kInvoice, 100005, oddities).close();
        const auto gate = host_.create<IDBgate1>();
        EXPECT_EQ(error_of_opening(*gate), 3031);
        gate->CloseDB();
        EXPECT_EQ(version_in(content_of(invoices())), "100005");
        std::filesystem::remove(invoices());
    }
}

TEST_F(UpgradeGate, files_of_different_versions_are_upgraded_each_by_its_own) {
    OldFile(studio(), OldFile::Kind::kStudio, 210000).close();
    OldFile old(invoices(), OldFile::Kind::kInvoice, 200000);
    old.add("Invoices", {{"Total", amount(3)}});
    old.close();
    const auto gate = host_.create<IDBgate1>();
    EXPECT_EQ(error_of_opening(*gate), 0);
    gate->CloseDB();
    EXPECT_EQ(content_of(studio()).at("Projects").rows.size(), 0u);
    EXPECT_EQ(content_of(invoices()).at("Invoices").rows.at(0).at("Balance"), "3.000000f");
}

}  // namespace
