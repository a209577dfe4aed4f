#include "db/schema.h"

#include <algorithm>
#include <set>
#include <string>

#include "db/values.h"
#include "tests/afx/dao_test_support.h"

namespace {

using db::FieldKind;

class Schema : public FolderTest {
protected:
    Schema() { database_.Create(path("schema.mdb").c_str()); }

    // Stores one row with `text` in `field`; returns the error number, or 0.
    int store(const char* table, const char* field, const char* text) {
        CDaoRecordset rows(&database_);
        rows.Open(dbOpenDynaset, table, 0);
        rows.AddNew();
        return error_of([&] {
            rows.SetFieldValue(field, text);
            rows.Update();
        });
    }

    CDaoDatabase database_;
};

TEST_F(Schema, lists_have_the_published_tables_in_order) {
    const auto studio = db::studio_tables();
    ASSERT_EQ(studio.size(), 34u);
    EXPECT_STREQ(studio.front().name, "Projects");
    EXPECT_STREQ(studio[12].name, "DBHeader");
    EXPECT_STREQ(studio[28].name, "Participants");
    EXPECT_STREQ(studio.back().name, "GearRentals");
    EXPECT_STREQ(db::gear_tables().front().name, "Gear");
    EXPECT_EQ(db::gear_tables().size(), 5u);
    ASSERT_EQ(db::invoice_tables().size(), 3u);
    EXPECT_STREQ(db::invoice_tables()[1].name, "Invoices");
    EXPECT_EQ(db::find_table(studio, "Def_Engineers"), nullptr);
    std::size_t fields = 0;
    for (const db::TableSchema& table : studio) fields += table.fields.size();
    EXPECT_EQ(fields, 278u);
}

TEST_F(Schema, names_are_unique_within_their_list) {
    for (const auto tables : {db::studio_tables(), db::invoice_tables()}) {
        std::set<std::string> names;
        for (const db::TableSchema& table : tables) {
            EXPECT_TRUE(names.insert(table.name).second) << table.name;
            std::set<std::string> fields;
            for (const db::FieldSchema& field : table.fields)
                EXPECT_TRUE(fields.insert(field.name).second) << field.name;
        }
    }
}

TEST_F(Schema, only_equipment_names_are_full_text_without_zero_length) {
    for (const db::TableSchema& table : db::studio_tables()) {
        for (const db::FieldSchema& field : table.fields) {
            const bool is_it = std::string(table.name) == "Equipment" && std::string(field.name) == "Name";
            EXPECT_EQ(field.kind == FieldKind::kTextNotEmpty, is_it) << table.name << "." << field.name;
        }
    }
}

TEST_F(Schema, studio_file_gets_every_table_and_field_as_listed) {
    ASSERT_EQ(error_of([&] { db::create_tables(database_, db::studio_tables()); }), 0);
    for (const db::TableSchema& table : db::studio_tables()) {
        CDaoTableDef definition(&database_);
        definition.Open(table.name);
        ASSERT_EQ(definition.GetFieldCount(), static_cast<short>(table.fields.size())) << table.name;
        for (std::size_t i = 0; i < table.fields.size(); ++i) {
            const db::FieldSchema& field = table.fields[i];
            CDaoFieldInfo info;
            definition.GetFieldInfo(static_cast<int>(i), info);
            EXPECT_EQ(info.m_strName, field.name);
            const bool text = field.kind == FieldKind::kText || field.kind == FieldKind::kShortText ||
                              field.kind == FieldKind::kTextNotEmpty;
            const bool number =
                field.kind == FieldKind::kKey || field.kind == FieldKind::kLong || field.kind == FieldKind::kPlainLong;
            const int type = text                                 ? dbText
                             : number                             ? dbLong
                             : field.kind == FieldKind::kMemo     ? dbMemo
                             : field.kind == FieldKind::kDate     ? dbDate
                             : field.kind == FieldKind::kCurrency ? dbCurrency
                                                                  : dbSingle;
            EXPECT_EQ(info.m_nType, type) << table.name << "." << field.name;
            EXPECT_EQ(info.m_lSize == 255, text);
            EXPECT_EQ((info.m_lAttributes & dbAutoIncrField) != 0, field.kind == FieldKind::kKey);
            const bool zero_length = field.kind == FieldKind::kText || field.kind == FieldKind::kMemo;
            EXPECT_EQ(info.m_bAllowZeroLength != FALSE, zero_length) << table.name << "." << field.name;
            EXPECT_FALSE(info.m_bRequired);
        }
    }
}

TEST_F(Schema, zero_length_text_follows_the_kind_of_the_field) {
    ASSERT_EQ(error_of([&] { db::create_tables(database_, db::studio_tables()); }), 0);
    EXPECT_EQ(store("Def_TrackTypes", "Name", ""), 3315);
    EXPECT_EQ(store("Def_TrackTypes", "Name", "Drums"), 0);
    EXPECT_EQ(store("Projects", "Name", ""), 0);
    EXPECT_EQ(store("Equipment", "Name", ""), 3315);
    EXPECT_EQ(store("Equipment", "Action", ""), 0);
    EXPECT_EQ(store("Equipment", "Cost", ""), 0);
    EXPECT_EQ(store("Projects", "Notes", ""), 0);
}

TEST_F(Schema, memo_made_from_the_text_description_is_not_limited_to_its_size) {
    ASSERT_EQ(error_of([&] { db::create_table(database_, db::studio_tables()[0]); }), 0);
    EXPECT_EQ(store("Projects", "Notes", std::string(5000, 'n').c_str()), 0);
    EXPECT_EQ(store("Projects", "Name", std::string(256, 'n').c_str()), 3163);
}

TEST_F(Schema, closed_database_gives_failure_and_touches_nothing) {
    database_.Close();
    const auto before = std::filesystem::file_size(path("schema.mdb"));
    EXPECT_NE(error_of([&] { db::create_table(database_, db::studio_tables()[0]); }), 0);
    EXPECT_NE(error_of([&] { db::create_gear_tables(database_); }), 0);
    EXPECT_EQ(std::filesystem::file_size(path("schema.mdb")), before);
    EXPECT_FALSE(database_.IsOpen());
}

TEST_F(Schema, existing_table_gives_failure_and_earlier_tables_stay) {
    ASSERT_EQ(error_of([&] { db::create_table(database_, db::gear_tables()[2]); }), 0);
    EXPECT_NE(error_of([&] { db::create_table(database_, db::gear_tables()[2]); }), 0);
    EXPECT_NE(error_of([&] { db::create_gear_tables(database_); }), 0);
    CDaoTableDef table(&database_);
    EXPECT_EQ(error_of([&] { table.Open("Gear"); }), 0);
    EXPECT_EQ(error_of([&] { table.Open("GearServices"); }), 0);
    EXPECT_EQ(error_of([&] { table.Open("GearCategories"); }), 3265);  // the pass stopped before it
}

TEST_F(Schema, invoice_table_keeps_its_published_spelling) {
    const db::TableSchema* invoices = db::find_table(db::invoice_tables(), "Invoices");
    ASSERT_NE(invoices, nullptr);
    ASSERT_NE(db::find_field(*invoices, "Paymetns"), nullptr);
    EXPECT_EQ(db::find_field(*invoices, "Paymetns")->kind, FieldKind::kSingle);
    EXPECT_EQ(db::find_field(*invoices, "Payments"), nullptr);
}

}  // namespace
