// Studios of Access 97 in every code page and language, with what their owners have put into them: opening upgrades
// those that list their tables in an order that the engine keeps, and leaves the others as they are.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include "jet/check/check.h"
#include "tests/frame/gate_host.h"
#include "tests/jet/new_column.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"
#include "tests/support/code_page_file.h"

namespace {

using namespace testing_support;

class CodePageStudio : public ::testing::Test {
protected:
    static constexpr const char* kFiles[] = {"sldb.mdb", "kvinvdb.mdb"};

    std::unique_ptr<jet::Database> open(const char* name, bool read_only = false) const {
        jet::OpenOptions options;
        options.read_only = read_only;
        options.ignore_password = true;
        return jet::Database::open(host_.file(name), options);
    }

    // Both files, each with a table of the owner's that has a name and a text in the language.
    void make(const Language& language, std::int32_t version) const {
        const UseOldFormat use(jet::kJet3);
        const StudioSize size = {
            .projects = 4, .songs = 30, .tracks = 10, .sessions = 60, .engineers = 9, .contacts = 12, .invoices = 8};
        make_old_studio(host_.folder(), version, size);
        std::u16string name;
        jet::decode_narrow(jet::encode_narrow(language.text, language.code_page), jet::kWesternCodePage, name);
        for (const char* const file : kFiles) {
            if (!name.empty()) {
                const auto database = open(file);
                const jet::NewColumn columns[] = {jet::new_column(u"Text", jet::ColumnType::kText)};
                database->create_table(name, columns);
                database->find_table(name)->insert({name});
                database->close();
            }
            change_code_page(host_.file(file), language.code_page, language.lcid);
        }
    }

    LONG version_after_opening() const {
        const auto gate = host_.create<IDBgate1>();
        EXPECT_EQ(gate->OpenDB(), S_OK);
        LONG version = 0;
        EXPECT_EQ(gate->GetDBVer(&version), S_OK);
        EXPECT_EQ(gate->CloseDB(), S_OK);
        return version;
    }

    std::string bytes(const char* name) const {
        std::ifstream file(host_.file(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // Opens twice and changes nothing.
    void expect_left_alone(std::int32_t version) const {
        const std::string before[] = {bytes(kFiles[0]), bytes(kFiles[1])};
        for (int opening = 0; opening < 2; ++opening) {
            EXPECT_EQ(version_after_opening(), version);
            for (std::size_t i = 0; i < 2; ++i) EXPECT_TRUE(before[i] == bytes(kFiles[i])) << kFiles[i];
        }
    }

    GateHost host_;
};

class UpgradeInCodePageGate : public CodePageStudio, public ::testing::WithParamInterface<Language> {};

INSTANTIATE_TEST_SUITE_P(Each, UpgradeInCodePageGate, ::testing::ValuesIn(kLatinLanguages),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(UpgradeInCodePageGate, studios_of_every_version_are_upgraded_and_sound) {
    for (const std::int32_t version : kOldVersions) {
        SCOPED_TRACE(version);
        make(GetParam(), version);
        EXPECT_EQ(version_after_opening(), 210000);
        for (const char* const file : kFiles) {
            const Content content = content_of(host_.file(file));
            EXPECT_EQ(version_in(content), "210000");
            const auto database = open(file, true);
            EXPECT_EQ(database->header().code_page, GetParam().code_page);
            EXPECT_EQ(database->header().lcid, GetParam().lcid);
            // The owner's table is there with its row, and the catalogue's entries are in order.
            const jet::Table* const own = database->find_table(GetParam().text);
            ASSERT_NE(own, nullptr);
            jet::RowView row;
            ASSERT_TRUE(own->read(*own->next_row({}), row));
            EXPECT_EQ(row.value(0), jet::Value(GetParam().text));
            for (const jet::Violation& found : jet::check_structure(*database)) {
                ADD_FAILURE() << file << ", page " << found.page << ": " << found.rule << ": " << found.detail;
            }
        }
        const Content studio = content_of(host_.file(kFiles[0]));
        EXPECT_EQ(studio.size(), 36u);  // the owner's and the list of engineers included
        EXPECT_EQ(studio.at("Sessions").rows.size(), 60u);
        EXPECT_EQ(studio.at("MixFiles").rows.size(), 10u);
        EXPECT_EQ(studio.at("ContactCategories").rows.size(), 10u);
        EXPECT_EQ(password_in(host_.file(kFiles[0])), kStudioPassword);
        for (const char* const file : kFiles) std::filesystem::remove(host_.file(file));
    }
}

TEST_P(UpgradeInCodePageGate, studio_whose_entries_disagree_is_left_byte_for_byte) {
    make(GetParam(), 100005);
    for (const char* const file : kFiles) {
        const auto database = open(file);
        sort_names_by_another_order(*database);
        database->close();
    }
    expect_left_alone(100005);
}

// Their lists of tables are in an order that the engine reads and does not keep.
using UpgradeOfUnknownOrderGate = CodePageStudio;

TEST_F(UpgradeOfUnknownOrderGate, studio_is_left_byte_for_byte) {
    const Language languages[] = {{"Czech", 1250, 0x0405}, {"Turkish", 1254, 0x041F}, {"Spanish", 1252, 0x040A}};
    for (const Language& language : languages) {
        SCOPED_TRACE(language.name);
        for (const std::int32_t version : {100005, 200010}) {
            make(language, version);
            expect_left_alone(version);
            for (const char* const file : kFiles) std::filesystem::remove(host_.file(file));
        }
    }
}

}  // namespace
