// A Jet 4 file of another program under the studio's name: it can be opened, so it is, and stays what it was.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <fstream>
#include <iterator>

#include "jet/tables/database.h"
#include "tests/frame/gate_host.h"

using namespace testing_support;

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
