// Studios of Access 97 in other code pages and languages, upgraded by a host: the other readers find in them what the
// upgrade has added, and everything else as the engine reads it.
#include "jet/check/check.h"
#include "tests/frame/gate_host.h"
#include "tests/interop/comparison.h"
#include "tests/interop/interop_fixture.h"
#include "tests/old_files/old_files.h"
#include "tests/support/code_page_file.h"

namespace interop {
namespace {

using namespace testing_support;

class CodePageStudiosInterop : public InteropTest, public ::testing::WithParamInterface<Language> {
protected:
    void compare(const std::string& path) {
        jet::OpenOptions options;
        options.ignore_password = true;
        options.read_only = true;
        const auto database = jet::Database::open(path, options);
        EXPECT_EQ(database->header().code_page, GetParam().code_page);
        EXPECT_TRUE(jet::check_structure(*database).empty());
        const auto tables = read_with_engine(*database);
        database->close();
        compare_with_other_readers(path, tables);
        compare_definitions(path, tables);
    }
};

INSTANTIATE_TEST_SUITE_P(Each, CodePageStudiosInterop,
                         ::testing::Values(Language{"Polish", 1250, 0x0415}, Language{"Cyrillic", 1251, 0x0419},
                                           Language{"Greek", 1253, 0x0408}, Language{"Japanese", 932, 0x0411},
                                           Language{"TraditionalChinese", 950, 0x0404}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(CodePageStudiosInterop, what_the_upgrade_has_added_is_read_everywhere) {
    const StudioSize size = {
        .projects = 3, .songs = 15, .tracks = 6, .sessions = 20, .engineers = 4, .contacts = 6, .invoices = 5};
    {
        const UseOldFormat use(jet::kJet3, GetParam().code_page, GetParam().lcid);
        make_old_studio(folder_.path(), 100005, size);
    }
    {
        const Component component(folder_.path());
        const auto gate = component.create<IDBgate1>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        LONG now = 0;
        EXPECT_EQ(gate->GetDBVer(&now), S_OK);
        EXPECT_EQ(now, 210000);
        EXPECT_EQ(gate->CloseDB(), S_OK);
    }
    const std::string studio = folder_.file("sldb.mdb");
    compare(studio);
    compare(folder_.file("kvinvdb.mdb"));

    const std::vector<std::string> names = mdbtools_table_names(studio);
    const auto schema = mdbtools_schema(studio);
    const auto file = read_with_mdb_reader(studio);
    ASSERT_TRUE(file);
    for (const char* const added : {"ContactCategories", "ProjPayments", "MixFiles", "Participants", "GearRentals"}) {
        EXPECT_EQ(std::count(names.begin(), names.end(), added), 1) << added;
        EXPECT_TRUE(schema.contains(added)) << added;
        EXPECT_NE(file->find_table(added), nullptr) << added;
    }
    const auto& clients = schema.at("Clients");
    EXPECT_TRUE(std::any_of(clients.begin(), clients.end(), [](const auto& c) { return c.name == "CategoryID"; }));
    const ForeignTable* const categories = file->find_table("ContactCategories");
    ASSERT_NE(categories, nullptr);
    EXPECT_EQ(categories->rows.size(), 10u);
}

}  // namespace
}  // namespace interop
