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
    std::vector<Content> content() const {
        return {content_of(file("sldb.mdb"), expected_remark_), content_of(file("kvinvdb.mdb"), expected_remark_)};
    }
    bool is_jet3(const std::string& name) const { return open(name)->pager().format().is_jet3(); }
    bool is_encoded(const std::string& name) const { return open(name)->header().encryption_key != 0; }
    void expect_same(const std::vector<Content>& a, const std::vector<Content>& b) {
        for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(difference(a[i], b[i]), "") << i;
    }
    void expect_rescued_as_jet4(std::uint16_t code_page);

    std::string expected_remark_;  // of the check, on both files

    std::unique_ptr<jet::Database> open(const std::string& name, bool read_only = true) const {
        jet::OpenOptions options;
        options.read_only = read_only;
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

constexpr const char* kFiles[] = {"sldb.mdb", "kvinvdb.mdb"};

struct Language {
    std::uint16_t code_page;
    std::uint16_t lcid;
};

// The studio of the oldest version is left as it is, and made one of Jet 4.
void Jet3Studio::expect_rescued_as_jet4(std::uint16_t code_page) {
    const auto before = content();
    const Outcome checked = on_studio("check");
    EXPECT_EQ(checked.code, 0) << checked.out;
    const Outcome told = on_studio("info");
    EXPECT_NE(told.out.find("upgrade: none: "), std::string::npos) << told.out;
    EXPECT_EQ(told.out.find("the next opening by a host would"), std::string::npos) << told.out;
    EXPECT_NE(on_studio("info", "--json").out.find("\"upgrade\": []"), std::string::npos);
    const Outcome refused = on_studio("compact");
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.errors.find("(" + std::to_string(code_page) + ") is not known, so"), std::string::npos)
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

TEST_F(Jet3Studio, in_a_language_of_unknown_order_is_rescued_as_jet_4) {
    for (const Language& language : {Language{1250, 0x0405}, Language{1254, 0x041F}}) {
        make(kOldVersions[0]);
        for (const char* name : kFiles) change_code_page(file(name), language.code_page, language.lcid);
        expect_rescued_as_jet4(language.code_page);
    }
}

TEST_F(Jet3Studio, with_entries_of_another_order_is_rescued_as_jet_4) {
    make(kOldVersions[0]);
    for (const char* name : kFiles) {
        change_code_page(file(name), 1251, 0x0419);
        const auto database = open(name, false);
        sort_names_by_another_order(*database);
        database->close();
    }
    expected_remark_ = "index-key-order";
    const Outcome checked = on_studio("check");
    EXPECT_NE(checked.out.find(expected_remark_), std::string::npos) << checked.out;
    expect_rescued_as_jet4(1251);
}

TEST_F(Jet3Studio, in_another_code_page_is_upgraded_and_compacted_in_place) {
    for (const Language& language : {Language{1251, 0x0419}, Language{1250, 0x0415}, Language{932, 0x0411}}) {
        make(kOldVersions[0]);
        for (const char* name : kFiles) change_code_page(file(name), language.code_page, language.lcid);
        EXPECT_NE(on_studio("info").out.find("the next opening by a host would"), std::string::npos);
        const Outcome upgraded = on_studio("upgrade");
        ASSERT_EQ(upgraded.code, 0) << upgraded.errors;
        const auto before = content();
        EXPECT_EQ(version_in(before[0]), "210000");
        const Outcome compacted = on_studio("compact");
        ASSERT_EQ(compacted.code, 0) << compacted.errors;
        expect_same(before, content());
        for (const char* name : kFiles) {
            EXPECT_TRUE(is_jet3(name));
            EXPECT_EQ(open(name)->header().code_page, language.code_page);
            EXPECT_EQ(open(name)->header().lcid, language.lcid);
        }
        const Outcome checked = on_studio("check");
        EXPECT_EQ(checked.code, 0);
        EXPECT_EQ(checked.out.find("remark"), std::string::npos) << checked.out;
    }
}

// Where its entry would stand in a new file is not known.
TEST_F(Jet3Studio, table_with_a_name_of_other_letters_is_compacted_to_jet_4_alone) {
    make(kOldVersions[0]);
    for (const char* name : kFiles) {
        const auto database = open(name, false);
        jet::NewColumn column;
        column.name = u"Text";
        column.type = jet::ColumnType::kText;
        column.text_characters = 20;
        database->create_table(u"\u00CA\u00EB", std::span(&column, 1));  // the same bytes
        database->close();
        change_code_page(file(name), 1251, 0x0419);
    }
    ASSERT_EQ(on_studio("upgrade").code, 0);
    const auto before = content();
    const Outcome refused = on_studio("compact");
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.errors.find("\u041A\u043B"), std::string::npos) << refused.errors;
    EXPECT_NE(refused.errors.find("--to-jet4"), std::string::npos) << refused.errors;
    expect_same(before, content());
    ASSERT_EQ(on_studio("compact", "--to-jet4").code, 0);
    expect_same(before, content());
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
