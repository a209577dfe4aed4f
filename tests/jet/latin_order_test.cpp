// Jet 3 files in a code page or language of which only the order of plain Latin texts is known: their indexes are
// proved before the first change, plain texts are kept in order among whatever else there is, and other texts are
// refused.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "jet/check/check.h"
#include "jet/indexes/index.h"
#include "jet/indexes/index_key.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/new_column.h"
#include "tests/support/code_page_file.h"
#include "tests/support/temp_folder.h"

namespace jet {
namespace {

using testing_support::kLatinLanguages;
using testing_support::Language;

class LatinOrder : public ::testing::Test {
protected:
    // A file of General order, with a table for each of the names, said to be of another order from then on.
    // And a query, if it has a name.
    void make(const Language& language, std::span<const std::u16string> names, const std::u16string& query = {}) {
        CreateOptions options;
        options.format = &kJet3;
        if (database_) database_->close();
        std::filesystem::remove(path_);
        database_ = Database::create(path_, options);
        for (const std::u16string& name : names) make_table(name);
        if (!query.empty()) add_query(query);
        database_->close();
        testing_support::change_code_page(path_, language.code_page, language.lcid);
        reopen();
    }
    void make(const Language& language) { make(language, std::vector<std::u16string>{u"First", u"Zweite_2"}); }
    void reopen() {
        if (database_) database_->close();
        database_ = Database::open(path_, {});
    }

    void make_table(std::u16string_view name) {
        const NewColumn columns[] = {new_column(u"n", ColumnType::kLong)};
        database_->create_table(name, columns);
    }
    void add_query(const std::u16string& name) {
        std::vector<Value> values = row_values(objects(), row_of(u"MSysObjects"));
        const auto set = [&](const char16_t* column, Value value) {
            values[*objects().def().find_column(column)] = std::move(value);
        };
        set(u"Id", std::int32_t{-0x7FFFFFF0});
        set(u"Type", kQueryObject);
        set(u"Name", name);
        objects().insert(std::move(values));
    }
    Table& objects() { return *database_->table_by_page(jet4::kObjectsPage); }
    std::size_t name_position() { return *objects().def().find_column(u"Name"); }
    RowId row_of(std::u16string_view name) {
        for (auto row = objects().next_row({}); row; row = objects().next_row(*row)) {
            if (row_values(objects(), *row)[name_position()] == Value(std::u16string(name))) return *row;
        }
        ADD_FAILURE() << "no object " << to_utf8(name);
        return {};
    }

    const RealIndex& index_of_names() { return testing_support::index_of_names(objects()); }
    Index tree() {
        const RealIndex& index = index_of_names();
        return {database_->pager(), database_->allocator(), jet4::kObjectsPage, index.root, index.map};
    }
    std::vector<std::pair<ByteVector, RowId>> entries() {
        std::vector<std::pair<ByteVector, RowId>> all;
        tree().visit([&](ByteSpan key, RowId row) {
            all.emplace_back(ByteVector(key.begin(), key.end()), row);
            return true;
        });
        return all;
    }
    ByteVector entry_of(RowId wanted) {
        for (const auto& [key, row] : entries()) {
            if (row == wanted) return key;
        }
        return {};
    }
    void sort_by_another_order() {
        testing_support::sort_names_by_another_order(*database_);
        reopen();
    }

    std::string bytes() {
        database_->close();
        std::ostringstream all;
        all << std::ifstream(path_, std::ios::binary).rdbuf();
        reopen();
        return all.str();
    }
    // Fails with 3616 and leaves the file byte for byte. The reason.
    std::string expect_refused(const std::function<void()>& work) {
        const std::string before = bytes();
        std::string reason;
        try {
            work();
            ADD_FAILURE() << "nothing was refused";
        } catch (const Error& error) {
            EXPECT_EQ(error.number(), errors::kCannotMaintainIndex);
            reason = error.what();
        }
        EXPECT_TRUE(before == bytes());
        return reason;
    }

    testing_support::TempFolder folder_;
    const std::string path_ = folder_.file("a.mdb");
    std::unique_ptr<Database> database_;
};

class LatinOrderOf : public LatinOrder, public ::testing::WithParamInterface<Language> {};

INSTANTIATE_TEST_SUITE_P(Each, LatinOrderOf, ::testing::ValuesIn(kLatinLanguages),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(LatinOrderOf, plain_names_are_kept_in_order) {
    make(GetParam());
    EXPECT_EQ(database_->why_schema_is_fixed(), std::nullopt);
    std::vector<std::u16string> names;
    for (int i = 0; i < 60; ++i) names.push_back(from_utf8("Table_" + std::to_string(i * 37 % 60) + " x-Y"));
    for (const std::u16string& name : names) make_table(name);
    for (int i = 0; i < 60; i += 3)
        database_->add_column(names[static_cast<std::size_t>(i)], new_column(u"m", ColumnType::kText));
    expect_sound(*database_);
    reopen();
    for (int i = 0; i < 60; i += 7) {
        const RowId row = row_of(names[static_cast<std::size_t>(i)]);
        const ColumnChange change{name_position(), from_utf8("Renamed " + std::to_string(i))};
        objects().update(row, std::span(&change, 1));
    }
    expect_sound(*database_);
    const auto held = entries();
    EXPECT_EQ(held.size(), objects().def().row_count);
    for (const auto& [key, row] : held) {
        EXPECT_EQ(key, make_index_key(index_of_names(), objects().def(), row_values(objects(), row)));
    }
}

TEST_P(LatinOrderOf, text_of_other_letters_is_refused_and_leaves_nothing) {
    make(GetParam());
    const std::u16string& text = GetParam().text;
    ASSERT_TRUE(is_in_code_page(text, GetParam().code_page));
    make_table(u"Second");
    const std::string reason = expect_refused([&] { make_table(text); });
    EXPECT_NE(reason.find("'" + to_utf8(text) + "'"), std::string::npos) << reason;
    EXPECT_NE(reason.find("in code page " + std::to_string(GetParam().code_page)), std::string::npos) << reason;
    expect_refused([&] {
        const ColumnChange change{name_position(), text + u" 2"};
        objects().update(row_of(u"Second"), std::span(&change, 1));
    });
    // Inside a transaction of the caller, what came before stays.
    {
        Transaction transaction(database_->pager());
        make_table(u"Third");
        EXPECT_EQ(error_number([&] { make_table(text); }), errors::kCannotMaintainIndex);
        make_table(u"Fourth");
        transaction.commit();
    }
    EXPECT_NE(database_->find_table(u"Fourth"), nullptr);
    EXPECT_EQ(database_->find_table(text), nullptr);
    // The name of a column, and what stands in a table without an index, is in no tree.
    database_->add_column(u"Second", new_column(text, ColumnType::kText));
    database_->find_table(u"Second")->insert({Null(), text});
    expect_sound(*database_);
    reopen();
    expect_sound(*database_);
}

// A table of the owner's own has a name in the language; its entry is the engine's that made it, and nobody else knows
// why it is where it is.
TEST_P(LatinOrderOf, entries_of_other_letters_stay_where_they_are) {
    const std::u16string& text = GetParam().text;
    std::u16string same_bytes;
    decode_narrow(encode_narrow(text, GetParam().code_page), kWesternCodePage, same_bytes);
    make(GetParam(), std::vector<std::u16string>{u"Alpha", same_bytes, u"Omega"}, same_bytes + u"2");
    ASSERT_NE(database_->find_table(text), nullptr);
    const ByteVector entry = entry_of(row_of(text));
    ASSERT_FALSE(entry.empty());
    for (int i = 0; i < 40; ++i) make_table(from_utf8("Table " + std::to_string(i * 17 % 40)));
    database_->add_column(text, new_column(u"m", ColumnType::kText));
    EXPECT_EQ(entry_of(row_of(text)), entry);
    expect_sound(*database_);
    // It can be renamed to what is known, and go.
    const ColumnChange change{name_position(), std::u16string(u"Known")};
    objects().update(row_of(text), std::span(&change, 1));
    EXPECT_EQ(entry_of(row_of(u"Known")),
              make_index_key(index_of_names(), objects().def(), row_values(objects(), row_of(u"Known"))));
    objects().erase(row_of(text + u"2"));
    reopen();
    expect_sound(*database_);
    EXPECT_EQ(entries().size(), objects().def().row_count);
}

TEST_P(LatinOrderOf, index_with_other_entries_is_refused_and_the_file_stays) {
    make(GetParam());
    sort_by_another_order();
    const std::string reason = expect_refused([&] { make_table(u"Second"); });
    const std::string order =
        "order " + std::to_string(GetParam().lcid) + " in code page " + std::to_string(GetParam().code_page);
    EXPECT_NE(reason.find(order), std::string::npos) << reason;
    const auto fixed = database_->why_schema_is_fixed();
    ASSERT_TRUE(fixed);
    EXPECT_EQ(*fixed, reason);
    EXPECT_NE(database_->find_table(u"First"), nullptr);
    const std::vector<Violation> found = check_structure(*database_);
    EXPECT_EQ(found.size(), entries().size());
    for (const Violation& violation : found) EXPECT_EQ(violation.rule, "index-key-order") << violation.detail;
}

TEST_F(LatinOrder, index_with_one_other_entry_is_refused) {
    make(kLatinLanguages[3]);
    {
        Transaction transaction(database_->pager());
        ByteVector key = entry_of(row_of(u"First"));
        tree().erase(key, row_of(u"First"));
        key[key.size() - 2] = 0x79;
        tree().insert(key, row_of(u"First"));
        transaction.commit();
    }
    reopen();
    expect_refused([&] { make_table(u"Second"); });
    EXPECT_TRUE(database_->why_schema_is_fixed());
}

TEST_F(LatinOrder, signs_of_japanese_and_korean_code_pages_are_no_plain_letters) {
    for (const Language& language : {kLatinLanguages[12], kLatinLanguages[14]}) {
        make(language);
        for (const char16_t* const name : {u"a\\b", u"a~b"}) expect_refused([&] { make_table(name); });
    }
    make(kLatinLanguages[13]);
    make_table(u"a\\b");
    make_table(u"a~b");
    expect_sound(*database_);
}

TEST_F(LatinOrder, language_that_contracts_or_moves_latin_letters_stays_read_only) {
    const Language languages[] = {
        {"Czech", 1250, 0x0405, u""},    {"Slovak", 1250, 0x041B, u""},    {"Hungarian", 1250, 0x040E, u""},
        {"Croatian", 1250, 0x041A, u""}, {"Turkish", 1254, 0x041F, u""},   {"Estonian", 1257, 0x0425, u""},
        {"Spanish", 1252, 0x040A, u""},  {"Danish", 1252, 0x0406, u""},    {"Lithuanian", 1257, 0x0427, u""},
        {"Swedish", 1252, 0x041D, u""},  {"Norwegian", 1252, 0x0414, u""},
    };
    for (const Language& language : languages) {
        SCOPED_TRACE(language.name);
        make(language);
        expect_refused([&] { make_table(u"Second"); });
        EXPECT_TRUE(database_->why_schema_is_fixed());
        EXPECT_TRUE(check_structure(*database_).empty());
    }
}

// Nothing in the tree itself tells its order: the names of the catalogue do.
TEST_F(LatinOrder, tree_without_entries_is_proved_by_the_catalogue) {
    const Language& language = kLatinLanguages[3];
    const auto add_relationship = [&](std::u16string_view name) {
        Table& table = *database_->table_by_page(jet4::kRelationshipsPage);
        std::vector<Value> values(table.def().columns.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (table.def().columns[i].type == ColumnType::kText) values[i] = std::u16string(name);
        }
        table.insert(values);
    };
    make(language);
    for (const char16_t* const name : {u"Relation", u"Another"}) add_relationship(name);
    expect_refused([&] { add_relationship(language.text); });
    expect_sound(*database_);
    EXPECT_EQ(database_->table_by_page(jet4::kRelationshipsPage)->def().row_count, 2u);

    make(language);
    sort_by_another_order();
    const std::string reason = expect_refused([&] { add_relationship(u"Relation"); });
    EXPECT_NE(reason.find("MSysRelationships"), std::string::npos) << reason;
}

}  // namespace
}  // namespace jet
