// The methods of the database through the gates: what they look at, and what they leave alone.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "tests/frame/gate_host.h"
#include "tests/gates/closed_file.h"
#include "tests/gates/record_round_trip.h"
#include "tests/old_files/file_content.h"

namespace fs = std::filesystem;
using namespace testing_support;

namespace {

std::string bytes_of(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Content by name of the files in a folder.
std::map<std::string, std::string> files_in(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() == ".mdb") files[name] = bytes_of(entry.path().string());
    }
    return files;
}

class File {
public:
    explicit File(std::u16string name)
        : name_(SysAllocStringLen(reinterpret_cast<LPCOLESTR>(name.data()), static_cast<UINT>(name.size()))) {}
    ~File() { SysFreeString(name_); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    BSTR name() const { return name_; }

private:
    BSTR name_;
};

TEST(DatabaseGate, create_with_a_name_touches_no_file_of_that_name) {
    const GateHost host;
    std::ofstream(host.file("named.mdb"), std::ios::binary) << "somebody's";
    const auto gate = host.create<IDBgate1>();
    for (const char16_t* const name : {u"named.mdb", u"absent.mdb", u"", u"sldb.mdb"}) {
        const File file(name);
        EXPECT_EQ(gate->CreateDB(file.name()), S_OK);
    }
    const File whole(jet::from_utf8(host.file("whole.mdb")));
    EXPECT_EQ(gate->CreateDB(whole.name()), S_OK);
    EXPECT_EQ(gate->CreateDB(nullptr), S_OK);
    ProjInfo project;
    EXPECT_EQ(gate->AddProj(address_of(project)), S_OK);  // the studio is open all the same
    EXPECT_EQ(gate->CloseDB(), S_OK);
    std::string names;
    for (const auto& [name, content] : files_in(host.folder())) names += name + " ";
    EXPECT_EQ(names, "kvinvdb.mdb named.mdb sldb.mdb ");
    EXPECT_EQ(bytes_of(host.file("named.mdb")), "somebody's");
}

TEST(DatabaseGate, compacting_an_open_studio_changes_nothing) {
    OpenGate<IDBgate1> gate;
    ProjInfo project;
    project.Name = "before";
    for (int i = 0; i < 3; ++i) EXPECT_EQ(call(*gate, &IDBgate1::AddProj, project), S_OK);
    EXPECT_EQ(gate->DeleteProj(2), S_OK);
    ProjInfo row;
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstProj, row), S_OK);
    const auto before = files_in(gate.host().folder());
    CompactDBInfo request;
    EXPECT_EQ(call(*gate, &IDBgate1::CompactDB, request), S_OK);
    EXPECT_EQ(gate->CompactDB(1), S_OK);  // whatever is not null; it is not read
    EXPECT_EQ(gate->CompactDB(0), E_FAIL);
    EXPECT_TRUE(files_in(gate.host().folder()) == before);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextProj, row), S_OK);  // an enumeration goes on
    EXPECT_EQ(row.ProjID, 3);
    EXPECT_EQ(call(*gate, &IDBgate1::AddProj, project), S_OK);
    EXPECT_EQ(project.ProjID, 4);
}

TEST(DatabaseGate, existence_is_that_of_the_main_file_only) {
    const GateHost host;
    const auto gate = host.create<IDBgate1>();
    EXPECT_EQ(gate->IsDbExist(), E_FAIL);
    std::ofstream(host.file("kvinvdb.mdb")) << "x";
    EXPECT_EQ(gate->IsDbExist(), E_FAIL);
    std::ofstream(host.file("sldb.mdb")) << "no database at all";
    EXPECT_EQ(gate->IsDbExist(), S_OK);  // it is not opened
    fs::remove(host.file("kvinvdb.mdb"));
    EXPECT_EQ(gate->IsDbExist(), S_OK);
    fs::remove(host.file("sldb.mdb"));
    fs::create_directory(host.file("sldb.mdb"));
    EXPECT_EQ(gate->IsDbExist(), S_OK);  // the name is taken
}

// A file under the invoices' name that is none keeps the gate from both tables in it, and from nothing else.
TEST(DatabaseGate, main_file_serves_while_the_invoice_file_cannot_be_opened) {
    const GateHost host;
    std::ofstream(host.file("kvinvdb.mdb"), std::ios::binary) << std::string(8192, 'x');
    const auto gate = host.create<IDBgate1>();
    for (int i = 0; i < 2; ++i) {
        try {
            EXPECT_EQ(gate->OpenDB(), E_FAIL);
        } catch (CDaoException* error) {
            EXPECT_EQ(error->m_pErrorInfo->m_lErrorCode, 3343);
            error->Delete();
        }
        ProjInfo project;
        project.Name = "kept";
        EXPECT_EQ(gate->AddProj(address_of(project)), S_OK);
        EXPECT_EQ(gate->FindProj(address_of(project)), S_OK);
        InvoiceDef defaults;
        EXPECT_EQ(gate->GetInvoiceDef(address_of(defaults)), S_OK);
        InvoiceInfo invoice;
        EXPECT_EQ(gate->AddInvoice(address_of(invoice)), E_FAIL);
        InvParamsInfo line;
        EXPECT_EQ(gate->EnumFirstInvParams(address_of(line)), E_FAIL);
    }
    EXPECT_EQ(gate->CloseDB(), S_OK);
    EXPECT_EQ(content_of(host.file("sldb.mdb")).at("Projects").rows.size(), 2u);
    EXPECT_EQ(bytes_of(host.file("kvinvdb.mdb")), std::string(8192, 'x'));
}

// The gate goes with its cursors, and the library with the files: nothing of either waits in a journal.
TEST(DatabaseGate, library_that_goes_amid_enumerations_leaves_whole_files) {
    const TempFolder folder;
    {
        const Component component(folder.path());
        auto gate = component.create<IDBgate1>();
        auto gear = component.create<IDBGate3>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        ASSERT_EQ(gear->OpenDB(), S_OK);
        for (int i = 0; i < 3; ++i) {
            ProjInfo project;
            ASSERT_EQ(gate->AddProj(address_of(project)), S_OK);
            GearInfo item;
            ASSERT_EQ(gear->AddGear(address_of(item)), S_OK);
        }
        ProjInfo project;
        GearInfo item;
        ASSERT_EQ(gate->EnumFirstProj(address_of(project)), S_OK);
        ASSERT_EQ(gear->EnumFirstGear(address_of(item)), S_OK);
        EXPECT_EQ(component.can_unload_now(), S_FALSE);
        gate.reset();  // both with an enumeration under way; the files are open
        gear.reset();
        EXPECT_EQ(component.can_unload_now(), S_OK);
    }
    for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
        EXPECT_FALSE(fs::exists(folder.file(name) + "-journal")) << name;
    }
    const Content studio = content_of(folder.file("sldb.mdb"));
    EXPECT_EQ(studio.at("Projects").rows.size(), 3u);
    EXPECT_EQ(studio.at("Gear").rows.size(), 3u);
}

}  // namespace
