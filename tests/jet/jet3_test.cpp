// Jet 3 files, and encoded ones of both versions: read, changed at random, checked, read again.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

#include "jet/base/code_page.h"
#include "jet/storage/row_codec.h"
#include "support/temp_folder.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/file_changer.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

class Jet3 : public ::testing::Test {
protected:
    std::string copy_of(const std::string& sample) {
        const std::string path = folder_.file(sample);
        fs::copy_file(fs::path(KVDB_SAMPLES) / sample, path, fs::copy_options::overwrite_existing);
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }
    static CreateOptions jet3_options() {
        CreateOptions options;
        options.format = &kJet3;
        options.creation_date = 42329.5;
        return options;
    }
    std::string new_file(const CreateOptions& options) {
        const std::string path = folder_.file("new.mdb");
        fs::remove(path);
        auto database = Database::create(path, options);
        const NewColumn columns[] = {
            new_column(u"Id", ColumnType::kLong, true),  new_column(u"Name", ColumnType::kText),
            new_column(u"Note", ColumnType::kMemo),      new_column(u"Day", ColumnType::kDate),
            new_column(u"Picture", ColumnType::kOle),    new_column(u"Flag", ColumnType::kBoolean),
            new_column(u"Price", ColumnType::kCurrency), new_column(u"Gr\u00F6\u00DFe", ColumnType::kSingle),
        };
        database->create_table(u"Gro\u00DFe Tabelle", columns);
        const NewColumn few[] = {new_column(u"n", ColumnType::kByte), new_column(u"m", ColumnType::kInteger)};
        database->create_table(u"Few", few);
        database->close();
        return path;
    }
    void change_at_random(const std::string& path, unsigned seed, std::size_t steps) {
        SCOPED_TRACE(path);
        auto database = Database::open(path, {});
        const auto before = findings_of(*database);
        FileChanger changer(*database, seed);
        for (int part = 0; part < 4; ++part) {
            {
                Transaction transaction(database->pager());
                for (std::size_t i = 0; i < steps / 4; ++i) changer.step();
                transaction.commit();
            }
            const auto now = findings_of(*database);
            for (const std::string& finding : now) EXPECT_TRUE(before.contains(finding)) << finding;
            changer.expect_model(*database);
        }
        database->close();
        database = Database::open(path, {});
        changer.expect_model(*database);
        EXPECT_GT(changer.changes(), steps / 4);
    }

    testing_support::TempFolder folder_;
};

TEST_F(Jet3, new_file_is_sound_and_empty) {
    for (const Format* format : {&kJet3, &kJet4}) {
        CreateOptions options = jet3_options();
        options.format = format;
        const std::string path = folder_.file(format->name);
        auto database = Database::create(path, options);
        EXPECT_EQ(&database->pager().format(), format);
        EXPECT_TRUE(database->table_names().empty());
        expect_sound(*database);
        database->close();
        EXPECT_EQ(fs::file_size(path), (format->is_jet3() ? 18u : 16u) * format->page_size);
    }
}

TEST_F(Jet3, new_file_takes_tables_and_rows) { change_at_random(new_file(jet3_options()), 1, 2000); }

TEST_F(Jet3, encoded_files_stay_encoded_and_readable) {
    for (const Format* format : {&kJet3, &kJet4}) {
        CreateOptions options = jet3_options();
        options.format = format;
        options.encryption_key = 0xA7E0C0FE;
        const std::string path = new_file(options);
        change_at_random(path, 2, 800);
        OpenOptions open;
        open.read_only = true;
        EXPECT_EQ(Database::open(path, open)->header().encryption_key, 0xA7E0C0FEu);
        // A text that every file has in its catalogue is not to be seen on the disk.
        std::ifstream in(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        const std::string wanted = format->is_jet3() ? "MSysObjects" : std::string("M\0S\0y\0s\0O\0b\0j\0", 14);
        EXPECT_EQ(bytes.find(wanted), std::string::npos);
    }
}

TEST_F(Jet3, samples_take_random_changes) {
    if (!fs::is_directory(KVDB_SAMPLES)) GTEST_SKIP() << "no folder " << KVDB_SAMPLES;
    change_at_random(copy_of("testV1997.mdb"), 3, 3000);
    change_at_random(copy_of("overflowTestV1997.mdb"), 4, 3000);
}

TEST_F(Jet3, password_opens_and_is_changed) {
    CreateOptions options = jet3_options();
    options.password = u"K\u00F6nig";
    const std::string path = folder_.file("p.mdb");
    Database::create(path, options)->close();
    EXPECT_EQ(error_number([&] { Database::open(path, {}); }), errors::kWrongPassword);
    OpenOptions open;
    open.password = u"K\u00F6nig";
    auto database = Database::open(path, open);
    database->change_password(u"K\u00F6nig", u"other");
    database->close();
    EXPECT_EQ(error_number([&] { Database::open(path, open); }), errors::kWrongPassword);
    open.password = u"other";
    expect_sound(*Database::open(path, open));
}

TEST_F(Jet3, characters_that_the_code_page_lacks_become_question_marks) {
    const std::string path = new_file(jet3_options());
    auto database = Database::open(path, {});
    Table& table = *database->find_table(u"Gro\u00DFe Tabelle");
    std::vector<Value> values(table.def().columns.size());
    values[1] = std::u16string(u"a\u4E00\u20ACb");
    values[2] = std::u16string(u"\u0416\xD83D\xDE00!");
    const RowId row = table.insert(values);
    EXPECT_EQ(row_values(table, row)[1], Value(std::u16string(u"a?\u20ACb")));
    EXPECT_EQ(row_values(table, row)[2], Value(std::u16string(u"?"
                                                              u"?"
                                                              u"?!")));
    EXPECT_EQ(error_number([&] { database->add_column(u"Few", new_column(u"\u4E00", ColumnType::kLong)); }),
              errors::kUnnamedTable);
}

TEST_F(Jet3, compression_of_texts_is_ignored) {
    auto database = Database::create(folder_.file("plain.mdb"), jet3_options());
    NewColumn text = new_column(u"Text", ColumnType::kText);
    NewColumn memo = new_column(u"Memo", ColumnType::kMemo);
    text.compressed = memo.compressed = true;
    database->create_table(u"Texts", std::vector{text, memo});
    Table& table = *database->find_table(u"Texts");
    for (const ColumnDef& column : table.def().columns) EXPECT_FALSE(column.is_compressed());
    const std::vector<Value> values(2, std::u16string(40, u'\u00E4'));
    const RowId row = table.insert(values);
    EXPECT_EQ(row_values(table, row), values);
    RowView view;
    ASSERT_TRUE(table.read(row, view));
    EXPECT_EQ(view.stored(0)->size(), 40u);
    EXPECT_EQ(load_u32(*view.stored(1), 0) & jet4::long_value::kLengthMask, 40u);
    const Catalog catalog(*database->table_by_page(jet4::kObjectsPage), *database->table_by_page(jet4::kAcesPage));
    const PropertySet properties = catalog.properties(*catalog.find(u"Texts"));
    EXPECT_FALSE(properties.column_flag(u"Text", u"UnicodeCompression", false));
    expect_sound(*database);
}

TEST_F(Jet3, limits_are_the_formats_own) {
    const std::string path = folder_.file("wide.mdb");
    auto database = Database::create(path, jet3_options());
    std::vector<NewColumn> columns;
    for (int i = 0; i < 12; ++i) columns.push_back(new_column(from_utf8("c" + std::to_string(i)), ColumnType::kText));
    database->create_table(u"Wide", columns);
    Table& table = *database->find_table(u"Wide");
    std::vector<Value> values(12, Value(std::u16string(200, u'x')));
    EXPECT_EQ(error_number([&] { table.insert(values); }), errors::kRowTooLarge);
    values.assign(12, Value(std::u16string(160, u'x')));
    const RowId row = table.insert(values);
    EXPECT_EQ(row_values(table, row), values);
    values[3] = std::u16string(256, u'x');
    EXPECT_EQ(error_number([&] { table.insert(values); }), errors::kTextTooLong);
    expect_sound(*database);
}

// Offsets of one byte, with the jumps between them.
TEST(Jet3Row, jumps_stand_where_the_format_has_them) {
    RowShape shape;
    shape.format = &kJet3;
    shape.max_columns = shape.variable_columns = 5;
    for (std::uint16_t i = 0; i < 5; ++i) {
        ColumnDef column;
        column.type = ColumnType::kBinary;
        column.number = column.variable_index = i;
        column.length_bytes = 400;
        column.code_page = 1252;
        shape.columns.push_back(column);
    }
    std::vector<StoredValue> values(5);
    values[0] = ByteVector(300, 0xAA);
    values[1] = ByteVector(10, 0xBB);
    const ByteVector row = encode_row(shape, values);
    const ByteVector trailer(row.end() - 9, row.end());
    EXPECT_EQ(trailer, (ByteVector{0x37, 0x37, 0x37, 0x37, 0x2D, 0x01, 0x01, 0x05, 0x03}));
    const RowReader reader(row, shape);
    EXPECT_EQ(reader.stored(shape.columns[0])->size(), 300u);
    EXPECT_EQ(reader.stored(shape.columns[1])->size(), 10u);
    EXPECT_FALSE(reader.stored(shape.columns[2]));
}

TEST(Jet3Row, random_rows_come_back) {
    std::mt19937 random(5);
    for (int round = 0; round < 3000; ++round) {
        RowShape shape;
        shape.format = &kJet3;
        shape.max_columns = shape.variable_columns = static_cast<std::uint16_t>(1 + random() % 40);
        std::vector<StoredValue> values;
        for (std::uint16_t i = 0; i < shape.max_columns; ++i) {
            ColumnDef column;
            column.type = ColumnType::kBinary;
            column.number = column.variable_index = i;
            shape.columns.push_back(column);
            if (random() % 5 == 0) {
                values.emplace_back();
            } else {
                values.emplace_back(
                    ByteVector(random() % (random() % 10 == 0 ? 700 : 60), static_cast<std::uint8_t>(i + 1)));
            }
        }
        const ByteVector row = encode_row(shape, values);
        const RowReader reader(row, shape);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto stored = reader.stored(shape.columns[i]);
            ASSERT_EQ(stored.has_value(), values[i].has_value()) << i;
            if (stored) {
                ASSERT_EQ(ByteVector(stored->begin(), stored->end()), *values[i]);
            }
        }
    }
}

}  // namespace
}  // namespace jet
