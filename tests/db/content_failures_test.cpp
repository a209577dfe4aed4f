// First rows that cannot all be written: those before the one that failed stay.
#include <gtest/gtest.h>

#include "db/content.h"
#include "db/schema.h"
#include "db/values.h"
#include "tests/afx/dao_test_support.h"

namespace {

class HalfContent : public FolderTest {
protected:
    HalfContent() { database_.Create(path("half.mdb").c_str()); }

    // The schema's table, but for one text that takes fewer characters, or none at all.
    void make(const char* name, const char* narrow, LONG characters) {
        CDaoTableDef table(&database_);
        table.Create(name);
        for (const db::FieldSchema& field : db::find_table(db::studio_tables(), name)->fields) {
            if (std::string(field.name) != narrow) {
                db::create_field(table, field);
            } else if (characters > 0) {
                table.CreateField(narrow, dbText, characters, dbVariableField | dbUpdatableField);
            }
        }
        table.Append();
    }
    std::string texts(const char* table, const char* field) {
        CDaoRecordset rows(&database_);
        rows.Open(dbOpenDynaset, table, 0);
        std::string all;
        for (; !rows.IsEOF(); rows.MoveNext()) {
            all += std::string(db::value_to_text(rows.GetFieldValue(field))) + ";";
        }
        return all;
    }

    CDaoDatabase database_;
};

TEST_F(HalfContent, contact_categories_end_at_the_first_that_does_not_fit) {
    make("ContactCategories", "Name", 9);  // "Publishers" has ten
    EXPECT_EQ(error_of([&] { db::write_contact_categories(database_); }), 3163);
    EXPECT_EQ(texts("ContactCategories", "Name"), "Clients;Artists;");
}

TEST_F(HalfContent, media_library_ends_at_the_first_that_does_not_fit) {
    make("LibGroups", "Name", 255);
    make("MediaLibs", "Name", 6);  // "Sea/Water" has nine
    EXPECT_EQ(error_of([&] { db::write_media_library(database_); }), 3163);
    EXPECT_EQ(texts("LibGroups", "Name"), "Nature sounds;Industrial sounds;Video clips;");
    EXPECT_EQ(texts("MediaLibs", "Name"), "Birds;");
}

TEST_F(HalfContent, header_stays_where_the_defaults_cannot_be_written) {
    db::create_table(database_, *db::find_table(db::studio_tables(), "DBHeader"));
    make("Def_Invoice", "StudioDetails", 0);
    EXPECT_EQ(error_of([&] { db::write_main_content(database_); }), 3265);
    EXPECT_EQ(texts("DBHeader", "DBversion"), "210000;");
    EXPECT_EQ(texts("Def_Invoice", "StudioName"), "");
}

TEST_F(HalfContent, sample_equipment_ends_at_the_first_that_does_not_fit) {
    make("Equipment", "Cost", 4);  // "$ 800" has five, "$ 40" four
    EXPECT_EQ(error_of([&] { db::add_sample_equipment(database_); }), 3163);
    EXPECT_EQ(texts("Equipment", "Action"), "");
}

}  // namespace
