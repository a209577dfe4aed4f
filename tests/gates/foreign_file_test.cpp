// A Jet 4 file of another program under the studio's name: it can be opened, so it is, and stays what it was.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "jet/tables/database.h"
#include "tests/frame/gate_host.h"

using namespace testing_support;

namespace {

// On Windows only a host that shares the unwinder meets the exception.
bool opens(IDBgate1& gate) {
    try {
        return gate.OpenDB() == S_OK;
    } catch (CDaoException* exception) {
        exception->Delete();
        return false;
    }
}

}  // namespace

TEST(ForeignFileGate, gate_stays_usable_after_a_file_that_could_not_be_opened) {
    GateHost host;
    const std::string path = host.file("sldb.mdb");
    const auto gate = host.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ASSERT_EQ(gate->CloseDB(), S_OK);
    const std::string kept = path + ".kept";
    std::filesystem::rename(path, kept);
    std::ofstream(path) << "this is no database";
    EXPECT_FALSE(opens(*gate));
    EXPECT_FALSE(opens(*gate));
    std::filesystem::remove(path);
    std::filesystem::rename(kept, path);
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ProjInfo project;
    project.Name = "Night Trains";
    EXPECT_EQ(gate->AddProj(address_of(project)), S_OK);
    gate->CloseDB();
}

TEST(ForeignFileGate, without_password_opens_and_is_left_as_it_is) {
    GateHost host;
    const std::string path = host.file("sldb.mdb");
    {
        const auto database = jet::Database::create(path, {});
        const jet::NewColumn columns[] = {{u"Id", jet::ColumnType::kLong}};
        database->create_table(u"Things", columns);
        database->close();
    }
    const auto bytes = [&] {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string before = bytes();
    const auto gate = host.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ProjInfo project;
    project.Name = "none of its tables";
    EXPECT_EQ(gate->AddProj(address_of(project)), E_FAIL);
    LONG version = -1;
    EXPECT_EQ(gate->GetDBVer(&version), E_FAIL);
    EXPECT_EQ(version, -1);
    gate->CloseDB();
    EXPECT_EQ(bytes(), before);
}
