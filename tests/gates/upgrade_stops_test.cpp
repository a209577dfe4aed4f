// Studios whose upgrade stops at each step that can stop it: they are served as the step has left them, and what is
// then written through the gate is there after the next opening.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include "tests/frame/gate_host.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"

using namespace testing_support;

namespace {

struct Stop {
    const char* at;
    std::int32_t version;
    const char* also = nullptr;      // a table that the step is to make
    const char* password = nullptr;  // another one than the version's
    bool header_row = true;
    const char* version_after = "210000";
};

const Stop kStops[] = {
    {.at = "the password", .version = 100005, .password = kStudioPassword, .version_after = "100005"},
    {.at = "the header", .version = 200010, .header_row = false, .version_after = "none"},
    {.at = "the header after the password", .version = 100005, .header_row = false, .version_after = "none"},
    {.at = "the tables of 200000", .version = 100006, .also = "Bookings"},
    {.at = "the taxes", .version = 200000, .also = "Def_Tax"},
    {.at = "the tables of 210000", .version = 200010, .also = "Messages"},
    {.at = "the gear", .version = 200010, .also = "GearRepairs"},
};

class UpgradeStops : public ::testing::TestWithParam<Stop> {};

TEST_P(UpgradeStops, studio_is_served_and_keeps_what_is_written) {
    const Stop& stop = GetParam();
    const GateHost host;
    Oddities oddities;
    if (stop.also != nullptr) oddities.also = {stop.also};
    oddities.password = stop.password;
    oddities.header_row = stop.header_row;
    OldFile file(host.file("sldb.mdb"), OldFile::Kind::kStudio, stop.version, oddities);
    fill_studio(file);
    file.close();
    const std::size_t before = content_of(host.file("sldb.mdb")).at("Def_TrackTypes").rows.size();

    const auto gate = host.create<IDBgate1>();
    for (int opening = 1; opening <= 2; ++opening) {
        SCOPED_TRACE(opening);
        ASSERT_EQ(gate->OpenDB(), S_OK);
        std::string name = "added " + std::to_string(opening);
        EXPECT_EQ(gate->AddTrackType(name.data()), S_OK);
        SeqInfo sequencer;
        sequencer.Name = name.c_str();
        sequencer.Path = "C:\\seq";
        ASSERT_EQ(gate->AddSequencer(address_of(sequencer)), S_OK);
        SeqInfo found;
        found.RecID = sequencer.RecID;
        ASSERT_EQ(gate->FindSequencer(address_of(found)), S_OK);
        EXPECT_EQ(found.Name, name.c_str());
        found.Path = "changed";
        EXPECT_EQ(gate->UpdateSequencer(address_of(found)), S_OK);
        LONG version = -1;
        EXPECT_EQ(gate->GetDBVer(&version), stop.header_row ? S_OK : E_FAIL);
        EXPECT_EQ(gate->CloseDB(), S_OK);

        const Content after = content_of(host.file("sldb.mdb"));
        EXPECT_EQ(version_in(after), stop.version_after);
        EXPECT_EQ(after.at("Def_TrackTypes").rows.size(), before + static_cast<std::size_t>(opening));
        EXPECT_EQ(after.at("Def_Sequencer").rows.back().at("Name"), "'" + name + "'");
        EXPECT_EQ(after.at("Def_Sequencer").rows.back().at("Path"), "'changed'");
    }
}

INSTANTIATE_TEST_SUITE_P(Gate, UpgradeStops, ::testing::ValuesIn(kStops), [](const auto& stop) {
    std::string name = stop.param.at;
    for (char& c : name) c = c == ' ' ? '_' : c;
    return name;
});

// An invoice file without a header counts as one of version 0: its upgrade runs, and ends at the header.
TEST(InvoiceHeaderGate, missing_header_is_version_0_and_the_upgrade_runs) {
    for (const char* const missing : {"DBHeader", "DBHeader.DBversion"}) {
        SCOPED_TRACE(missing);
        const GateHost host;
        Oddities oddities;
        oddities.without = {missing};
        oddities.header_row = false;
        OldFile file(host.file("kvinvdb.mdb"), OldFile::Kind::kInvoice, 200010, oddities);
        const std::int32_t invoice = file.add("Invoices", {{"ClientName", "somebody"}, {"Total", amount(12, 5000)}});
        file.add("InvoiceParams", {{"InvoiceID", invoice}, {"Name", "line"}});
        file.close();
        const auto gate = host.create<IDBgate1>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        InvoiceInfo found;
        found.RecID = invoice;
        ASSERT_EQ(gate->FindInvoice(address_of(found)), S_OK);  // it has every column now
        EXPECT_EQ(found.Balance, 12.5f);
        EXPECT_EQ(gate->AddInvoice(address_of(found)), S_OK);
        EXPECT_EQ(gate->CloseDB(), S_OK);
        const Content after = content_of(host.file("kvinvdb.mdb"));
        EXPECT_TRUE(after.at("Invoices").columns.contains("fTax"));
        EXPECT_TRUE(after.at("InvoiceParams").columns.contains("Details"));
        EXPECT_EQ(after.at("Invoices").rows.size(), 2u);
    }
}

}  // namespace
