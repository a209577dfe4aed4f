// Studios in files of Access 97, and encoded ones, under the tool.
#include <filesystem>

#include "jet/tables/database.h"
#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"
#include "tests/support/code_page_file.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
using namespace testing_support;

class Jet3Studio : public Tool {
protected:
    void make(std::int32_t version, const jet::Format& format = jet::kJet3) {
        std::filesystem::remove_all(studio_);
        std::filesystem::create_directory(studio_);
        const UseOldFormat use(format);
        make_old_studio(studio_, version);
    }
    Outcome on_studio(const std::string& command, const std::string& more = "") {
        return run(command + " " + in_quotes(studio_) + " " + more);
    }
    std::vector<Content> content() const { return {content_of(file("sldb.mdb")), content_of(file("kvinvdb.mdb"))}; }
    bool is_jet3(const std::string& name) const { return open(name)->pager().format().is_jet3(); }
    bool is_encoded(const std::string& name) const { return open(name)->header().encryption_key != 0; }
    void expect_same(const std::vector<Content>& a, const std::vector<Content>& b) {
        for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(difference(a[i], b[i]), "") << i;
    }

private:
    std::unique_ptr<jet::Database> open(const std::string& name) const {
        jet::OpenOptions options;
        options.read_only = true;
        options.ignore_password = true;
        return jet::Database::open(file(name), options);
    }
};

TEST_F(Jet3Studio, old_studio_holds_what_one_of_jet_4_holds) {
    for (const std::int32_t version : kOldVersions) {
        make(version);
        EXPECT_TRUE(is_jet3("sldb.mdb"));
        const auto jet3 = content();
        make(version, jet::kJet4);
        expect_same(jet3, content());
    }
}

TEST_F(Jet3Studio, in_a_code_page_of_unknown_order_is_rescued_as_jet_4) {
    for (const std::uint16_t code_page : {std::uint16_t{1251}, std::uint16_t{932}}) {
        make(kOldVersions[0]);
        for (const char* name : {"sldb.mdb", "kvinvdb.mdb"}) change_code_page(file(name), code_page);
        const auto before = content();
        EXPECT_EQ(on_studio("check").code, 0);
        const Outcome refused = on_studio("compact");
        EXPECT_EQ(refused.code, 1);
        EXPECT_NE(refused.errors.find("(" + std::to_string(code_page) + ") is not known"), std::string::npos)
            << refused.errors;
        expect_same(before, content());

        const std::string rescued = studio_ + "/rescued.mdb";
        const Outcome salvaged = run("salvage " + in_quotes(file("sldb.mdb")) + " " + in_quotes(rescued));
        EXPECT_EQ(salvaged.code, 0) << salvaged.errors;
        EXPECT_NE(salvaged.out.find("The new file is one of Jet 4"), std::string::npos) << salvaged.out;
        EXPECT_EQ(difference(content_of(rescued), before[0]), "");

        const Outcome in_place = on_studio("upgrade");
        EXPECT_EQ(in_place.code, 1);
        EXPECT_NE(in_place.errors.find("kvdb compact --to-jet4"), std::string::npos) << in_place.errors;
        expect_same(before, content());

        const Outcome converted = on_studio("compact", "--to-jet4");
        EXPECT_EQ(converted.code, 0) << converted.errors;
        EXPECT_FALSE(is_jet3("sldb.mdb"));
        expect_same(before, content());
        EXPECT_EQ(on_studio("upgrade").code, 0);
    }
}

TEST_F(Jet3Studio, upgrade_keeps_the_format_and_converts_it_when_told) {
    for (const std::int32_t version : kOldVersions) {
        make(version);
        const Outcome upgraded = on_studio("upgrade");
        ASSERT_EQ(upgraded.code, 0) << upgraded.errors;
        EXPECT_TRUE(is_jet3("sldb.mdb"));
        EXPECT_TRUE(is_jet3("kvinvdb.mdb"));
        EXPECT_EQ(on_studio("check").code, 0);
        EXPECT_NE(on_studio("info").out.find("Jet 3 (Access 97)"), std::string::npos);
        const auto before = content();
        const std::string password = password_in(file("sldb.mdb"));
        const Outcome converted = on_studio("upgrade", "--to-jet4");
        ASSERT_EQ(converted.code, 0) << converted.errors;
        EXPECT_FALSE(is_jet3("sldb.mdb"));
        EXPECT_FALSE(is_jet3("kvinvdb.mdb"));
        expect_same(before, content());
        EXPECT_EQ(password_in(file("sldb.mdb")), password);
        EXPECT_EQ(on_studio("check").code, 0);
    }
}

TEST_F(Jet3Studio, upgrade_and_conversion_go_in_one) {
    make(100005);
    const Outcome outcome = on_studio("upgrade", "--to-jet4");
    ASSERT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_FALSE(is_jet3("sldb.mdb"));
    EXPECT_NE(outcome.out.find("a Jet 4 file now"), std::string::npos) << outcome.out;
}

TEST_F(Jet3Studio, compact_stays_in_the_format_unless_told) {
    make(200010);
    ASSERT_EQ(on_studio("upgrade", "--no-copy").code, 0);
    const auto before = content();
    ASSERT_EQ(on_studio("compact").code, 0);
    EXPECT_TRUE(is_jet3("sldb.mdb"));
    expect_same(before, content());
    ASSERT_EQ(on_studio("compact", "--to-jet4").code, 0);
    EXPECT_FALSE(is_jet3("sldb.mdb"));
    expect_same(before, content());
}

TEST_F(Jet3Studio, compact_encodes_and_decodes_files_of_both_formats) {
    for (const jet::Format* format : {&jet::kJet3, &jet::kJet4}) {
        make(200010, *format);
        ASSERT_EQ(on_studio("upgrade", "--no-copy").code, 0);
        const auto before = content();
        const Outcome encoded = on_studio("compact", "--encode");
        ASSERT_EQ(encoded.code, 0) << encoded.errors;
        EXPECT_TRUE(is_encoded("sldb.mdb"));
        EXPECT_TRUE(is_encoded("kvinvdb.mdb"));
        EXPECT_NE(on_studio("info").out.find("encoded"), std::string::npos);
        expect_same(before, content());
        ASSERT_EQ(run("add " + in_quotes(studio_) + " Projects Name=Secret").code, 0);
        EXPECT_TRUE(is_encoded("sldb.mdb"));
        const auto changed = content();
        expect_failure(on_studio("compact", "--encode --decode"), 2, "opposites");
        ASSERT_EQ(on_studio("compact", "--decode").code, 0);
        EXPECT_FALSE(is_encoded("sldb.mdb"));
        expect_same(changed, content());
    }
}

// The catalogue and the map of the file are lost.
TEST_F(Jet3Studio, salvage_keeps_the_format_and_the_encoding) {
    for (const jet::Format* format : {&jet::kJet3, &jet::kJet4}) {
        make(200010, *format);
        ASSERT_EQ(on_studio("upgrade", "--no-copy").code, 0);
        ASSERT_EQ(on_studio("compact", "--encode").code, 0);
        const auto before = content();
        for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
            std::string bytes = contents(file(name));
            bytes.replace(format->page_size, 2 * format->page_size, 2 * format->page_size, '\0');
            std::ofstream(file(name), std::ios::binary | std::ios::trunc) << bytes;
            const std::string salvaged = scratch_.file("salvaged.mdb");
            const Outcome outcome = run("salvage " + in_quotes(file(name)) + " " + in_quotes(salvaged));
            ASSERT_EQ(outcome.code, 0) << outcome.errors;
            std::filesystem::rename(salvaged, file(name));
            EXPECT_EQ(is_jet3(name), format->is_jet3());
            EXPECT_TRUE(is_encoded(name));
        }
        expect_same(before, content());
        EXPECT_EQ(on_studio("check").code, 0);
    }
}

}  // namespace
