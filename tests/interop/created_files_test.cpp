// Files created by the engine: the other readers find the same tables, columns and rows in them.
#include <chrono>

#include "jet/check/check.h"
#include "tests/interop/agreement.h"
#include "tests/interop/interop_fixture.h"
#include "tests/interop/sample_values.h"

namespace interop {
namespace {

using jet::ColumnType;
using Values = std::vector<jet::Value>;

constexpr ColumnType kCreatableTypes[] = {
    ColumnType::kBoolean,  ColumnType::kByte,   ColumnType::kInteger, ColumnType::kLong,
    ColumnType::kCurrency, ColumnType::kSingle, ColumnType::kDouble,  ColumnType::kDate,
    ColumnType::kText,     ColumnType::kOle,    ColumnType::kMemo,
};

jet::NewColumn column(const std::u16string& name, ColumnType type, bool allow_zero_length = true) {
    jet::NewColumn column;
    column.name = name;
    column.type = type;
    column.allow_zero_length = allow_zero_length && (type == ColumnType::kText || type == ColumnType::kMemo);
    return column;
}

jet::NewColumn flagged(const std::u16string& name, ColumnType type) {
    jet::NewColumn flagged = column(name, type);
    flagged.compressed = true;
    return flagged;
}

jet::NewColumn key_column(const std::u16string& name) {
    jet::NewColumn column;
    column.name = name;
    column.autonumber = true;
    return column;
}

std::u16string numbered(std::u16string_view name, std::size_t number) {
    return std::u16string(name) + jet::from_utf8(std::to_string(number));
}

// Days since 1899-12-30 of a calendar date; the time of day counts forward before that day too.
jet::Date date(int year, unsigned month, unsigned day, double time_of_day = 0) {
    const auto days = std::chrono::sys_days(std::chrono::year{year} / static_cast<int>(month) / static_cast<int>(day)) -
                      std::chrono::sys_days(std::chrono::year{1899} / 12 / 30);
    const double count = static_cast<double>(days.count());
    return {count < 0 ? count - time_of_day : count + time_of_day};
}

class CreatedFilesInterop : public InteropTest {
protected:
    std::string path() const { return folder_.file("created.mdb"); }

    void SetUp() override {
        InteropTest::SetUp();
        if (!IsSkipped()) create(45000.5);
    }

    // The encrypted security identifiers depend on the creation date.
    void create(double creation_date) {
        jet::CreateOptions options;
        options.creation_date = creation_date;
        database_ = jet::Database::create(path(), options);
    }

    jet::Table& table(std::u16string_view name) { return *database_->find_table(name); }

    jet::RowId insert(std::u16string_view name, Values values) { return table(name).insert(std::move(values)); }

    // Closes the file, reads it again with the engine, runs the check and compares with the other readers. Leaves the
    // file closed.
    std::vector<OurTable> compare(const std::u16string& password = u"") {
        database_->close();
        jet::OpenOptions options;
        options.password = password;
        database_ = jet::Database::open(path(), options);
        for (const jet::Violation& violation : jet::check_structure(*database_)) {
            ADD_FAILURE() << "page " << violation.page << ", row " << violation.row << ": " << violation.rule << ": "
                          << violation.detail;
        }
        auto tables = read_with_engine(*database_);
        database_->close();
        result_ = compare_with_other_readers(path(), tables);
        compare_definitions(path(), tables);
        return tables;
    }

    static const OurTable& find(const std::vector<OurTable>& tables, std::u16string_view name) {
        return *std::find_if(tables.begin(), tables.end(),
                             [&](const OurTable& table) { return table.def.name == name; });
    }

    std::unique_ptr<jet::Database> database_;
    Comparison result_;
};

TEST_F(CreatedFilesInterop, empty_file_has_its_system_tables_and_nothing_else) {
    const auto tables = compare();
    EXPECT_EQ(result_.tables, 4u);
    EXPECT_EQ(tables.size(), 4u);
    EXPECT_TRUE(result_.faults.empty());
}

TEST_F(CreatedFilesInterop, security_identifier_that_starts_with_nul_reads_back_equal) {
    const auto starts_with_nul = [&] {
        const jet::TableDef& objects = table(u"MSysObjects").def();
        const auto owner = std::find_if(objects.columns.begin(), objects.columns.end(),
                                        [](const jet::ColumnDef& column) { return column.name == u"Owner"; });
        const OurTable read = find(read_with_engine(*database_), u"MSysObjects");
        const auto position = static_cast<std::size_t>(owner - objects.columns.begin());
        return std::any_of(read.rows.begin(), read.rows.end(), [&](const OurRow& row) {
            const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&row.values[position]);
            return bytes && !bytes->empty() && bytes->front() == 0;
        });
    };
    for (int second = 0; !starts_with_nul(); ++second) {
        ASSERT_LT(second, 10000);
        database_->close();
        std::filesystem::remove(path());
        create(45000 + second / 86400.0);
    }
    compare();
    EXPECT_EQ(result_.tables, 4u);
    EXPECT_EQ(result_.faults.count("mdb-export: binary is printed up to its first NUL"), 1u);
}

TEST_F(CreatedFilesInterop, table_of_every_column_kind_reads_back_equal) {
    std::vector<jet::NewColumn> columns = {key_column(u"Key")};
    for (std::size_t i = 0; i < std::size(kCreatableTypes); ++i)
        columns.push_back(column(numbered(u"Column", i), kCreatableTypes[i]));
    jet::NewColumn narrow = column(u"Narrow", ColumnType::kText, false);
    narrow.text_characters = 70;
    columns.push_back(narrow);
    database_->create_table(u"Kinds", columns);

    std::vector<Values> expected;
    for (std::uint32_t number = 0; number < 300; ++number) {
        Values values;
        for (const jet::ColumnDef& def : table(u"Kinds").def().columns) {
            // Every seventh value is missing; the auto-number assigns itself.
            const bool missing = def.is_autonumber() || (number + values.size()) % 7 == 0;
            values.push_back(missing && def.type != ColumnType::kBoolean ? jet::Value(jet::Null{})
                                                                         : value_for(def, number));
        }
        insert(u"Kinds", values);
        values[0] = static_cast<std::int32_t>(number + 1);
        expected.push_back(values);
    }
    const auto tables = compare();
    const OurTable& kinds = find(tables, u"Kinds");
    ASSERT_EQ(kinds.rows.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(kinds.rows[i].values, expected[i]) << "row " << i;
}

TEST_F(CreatedFilesInterop, texts_currencies_and_dates_at_their_limits_read_back_equal) {
    const jet::NewColumn columns[] = {column(u"Text", ColumnType::kText),       column(u"Memo", ColumnType::kMemo),
                                      column(u"Amount", ColumnType::kCurrency), column(u"Day", ColumnType::kDate),
                                      column(u"Long", ColumnType::kLong),       column(u"Double", ColumnType::kDouble),
                                      column(u"Single", ColumnType::kSingle)};
    database_->create_table(u"Limits", columns);
    const jet::Null null;
    const std::vector<Values> rows = {
        {u"", u"", jet::Currency{0}, date(1970, 1, 1), 0, 0.0, 0.0f},
        {null, null, null, null, null, null, null},
        {u"a", u"b", jet::Currency{-1}, date(2038, 1, 19, 11647.0 / 86400), -1, -1e300, -1.5e38f},
        {u"ab", u"\u00e4\u00f6", jet::Currency{9'223'372'036'854'775'807}, date(1999, 12, 31, 86399.0 / 86400),
         INT32_MAX, 1e-300, 1e-38f},
        {std::u16string(255, u'\u00fc'), u"line\r\nbreak\ttab", jet::Currency{INT64_MIN}, date(2038, 12, 31), INT32_MIN,
         0.1, 0.1f},
        {std::u16string(255, u'\u20ac'), u"\u4e2d\u6587 \u0416 \u03a9", jet::Currency{123'456'789'012'345'678},
         date(1899, 12, 30, 0.5), 7, 1.0 / 3, 16777216.0f},
        {u"\u0100\u0200", u"\u0100", jet::Currency{-123'456'789'012'345'678}, date(1900, 3, 1, 0.25), -7, 123456789.25,
         -0.5f},
        {u"'\"[]{},;|", u" blanks at both ends ", jet::Currency{-10000}, date(2024, 2, 29, 0.75), 1000000, -2.5, 3.25f},
        {u"\U0001D11E music", u"\U0001F3B5", jet::Currency{10001}, date(9999, 12, 31), 5, 42.0, 42.0f},
        {u"before day 0", u"", jet::Currency{1}, date(1899, 12, 29, 0.25), 5, 42.0, 42.0f},
        {u"before day 0", u"", jet::Currency{1}, date(1601, 1, 1), 5, 42.0, 42.0f},
    };
    for (const Values& row : rows) insert(u"Limits", row);
    const auto tables = compare();
    const OurTable& limits = find(tables, u"Limits");
    ASSERT_EQ(limits.rows.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(limits.rows[i].values, rows[i]) << "row " << i;
}

// With the compression flag and without, and texts that begin like its mark.
TEST_F(CreatedFilesInterop, compressed_texts_and_memos_read_back_equal) {
    const jet::NewColumn columns[] = {flagged(u"Text", ColumnType::kText), column(u"PlainText", ColumnType::kText),
                                      flagged(u"Memo", ColumnType::kMemo), column(u"PlainMemo", ColumnType::kMemo)};
    database_->create_table(u"Compressed", columns);
    std::vector<Values> rows;
    const auto add = [&](const std::u16string& text, const std::u16string& memo) {
        rows.push_back({text, text, memo, memo});
        insert(u"Compressed", rows.back());
    };
    for (const std::size_t length : {1u, 2u, 3u, 32u, 33u, 255u}) {
        add(std::u16string(length, u'x'), std::u16string(length, u'x'));
        add(std::u16string(length, u'\u00fc'), std::u16string(length, u'\u00fc'));
        add(std::u16string(length, u'\u4e2d'), std::u16string(length, u'\u4e2d'));
    }
    for (const std::size_t length : {256u, 1023u, 1024u, 1025u, 2100u, 9000u}) {
        add(u"memo", std::u16string(length, u'm'));
        add(u"memo", std::u16string(length, u'\u00e9'));
        add(u"memo", std::u16string(length - 1, u'm') + u'\u4e2d');
    }
    for (const std::u16string& text :
         {std::u16string(u"\uFEFF"), std::u16string(u"\uFEFFmark"), std::u16string(u"\uFEFF\u4e2d\u6587 and more"),
          std::u16string(u"in \uFEFF it")}) {
        add(text, text + std::u16string(60, u'y'));
    }
    const auto tables = compare();
    const OurTable& found = find(tables, u"Compressed");
    ASSERT_EQ(found.rows.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(found.rows[i].values, rows[i]) << "row " << i;
}

TEST_F(CreatedFilesInterop, memos_of_every_length_up_to_a_million_characters_read_back_equal) {
    const jet::NewColumn columns[] = {column(u"Memo", ColumnType::kMemo), column(u"Object", ColumnType::kOle)};
    database_->create_table(u"Long", columns);
    std::vector<Values> expected;
    std::uint32_t number = 0;
    for (const std::size_t length :
         {0u, 1u, 2u, 31u, 32u, 33u, 64u, 65u, 2037u, 2038u, 2039u, 4072u, 4076u, 4077u, 8200u, 100000u, 1000000u}) {
        for (int variant = 0; variant < 2; ++variant) {  // all below U+0100, and not
            expected.push_back({text_of(number++, length),
                                std::vector<std::uint8_t>(length, static_cast<std::uint8_t>(1 + number % 255))});
            insert(u"Long", expected.back());
        }
    }
    EXPECT_GT(database_->pager().page_count(), 512u);
    // Gives each row the values of another one, longer or shorter than its own.
    const auto id_of = [&](std::size_t index) {
        auto id = table(u"Long").next_row({});
        for (std::size_t i = 0; i < index; ++i) id = table(u"Long").next_row(*id);
        return *id;
    };
    for (std::size_t i = 0; i + 8 < expected.size(); i += 3) {
        std::swap(expected[i], expected[i + 8]);
        for (const std::size_t at : {i, i + 8}) {
            const jet::ColumnChange changes[] = {{0, expected[at][0]}, {1, expected[at][1]}};
            table(u"Long").update(id_of(at), changes);
        }
    }
    const auto tables = compare();
    const OurTable& rows = find(tables, u"Long");
    ASSERT_EQ(rows.rows.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_TRUE(rows.rows[i].values == expected[i]) << "row " << i;
}

TEST_F(CreatedFilesInterop, definition_of_several_pages_reads_back_equal) {
    std::vector<jet::NewColumn> columns = {key_column(u"Key")};
    for (std::size_t i = 1; i < 255; ++i) {
        jet::NewColumn next = column(numbered(u"A column with quite a long name, number ", i),
                                     kCreatableTypes[i % std::size(kCreatableTypes)], i % 2 == 0);
        next.text_characters = static_cast<std::uint16_t>(i);
        columns.push_back(next);
    }
    database_->create_table(u"Wide", columns);
    for (std::uint32_t number = 1; number < 20; ++number) {
        Values values;
        for (const jet::ColumnDef& def : table(u"Wide").def().columns) {
            const bool present =
                def.type == ColumnType::kBoolean || (!def.is_autonumber() && values.size() % 5 == number % 5);
            values.push_back(present ? value_for(def, number) : jet::Value(jet::Null{}));
        }
        insert(u"Wide", values);
    }
    const auto tables = compare();
    EXPECT_EQ(find(tables, u"Wide").def.columns.size(), 255u);
    EXPECT_EQ(find(tables, u"Wide").rows.size(), 19u);
}

TEST_F(CreatedFilesInterop, columns_added_and_deleted_under_rows_read_back_equal) {
    const jet::NewColumn columns[] = {column(u"Count", ColumnType::kLong), column(u"Flag", ColumnType::kBoolean)};
    database_->create_table(u"Growing", columns);
    for (int i = 0; i < 400; ++i) insert(u"Growing", {i, i % 2 == 0});

    database_->add_column(u"Growing", column(u"First text", ColumnType::kText));  // the first column of variable length
    for (int i = 0; i < 50; ++i) insert(u"Growing", {i, true, u"with text"});
    // Nine more columns: the null mask gets a second byte.
    for (std::size_t i = 0; i < std::size(kCreatableTypes); ++i) {
        database_->add_column(u"Growing", column(numbered(u"Added", i), kCreatableTypes[i]));
    }
    const std::size_t count = table(u"Growing").def().columns.size();
    for (std::uint32_t i = 0; i < 50; ++i) {
        Values values;
        for (const jet::ColumnDef& def : table(u"Growing").def().columns) values.push_back(value_for(def, i));
        ASSERT_EQ(values.size(), count);
        insert(u"Growing", values);
    }
    compare();

    database_ = jet::Database::open(path(), {});
    database_->delete_column(u"Growing", u"Count");
    database_->delete_column(u"Growing", u"Added8");   // a text
    database_->delete_column(u"Growing", u"Added10");  // a memo, with its pages
    database_->add_column(u"Growing", column(u"After", ColumnType::kDate));
    database_->add_column(u"Growing", key_column(u"RecID"));
    for (int i = 0; i < 20; ++i) insert(u"Growing", {false, u"last"});
    const auto tables = compare();
    const OurTable& growing = find(tables, u"Growing");
    ASSERT_EQ(growing.rows.size(), 520u);
    EXPECT_EQ(growing.def.columns.size(), count - 1);
    // Existing rows are numbered in scan order; later ones may lie between them.
    std::vector<std::int32_t> keys;
    for (const OurRow& row : growing.rows) keys.push_back(std::get<std::int32_t>(row.values.back()));
    const auto later = std::stable_partition(keys.begin(), keys.end(), [](std::int32_t key) { return key <= 500; });
    EXPECT_EQ(later - keys.begin(), 500);
    EXPECT_TRUE(std::is_sorted(keys.begin(), later));
    std::sort(keys.begin(), keys.end());
    for (std::size_t i = 0; i < keys.size(); ++i) EXPECT_EQ(keys[i], static_cast<std::int32_t>(i + 1));
    EXPECT_EQ(growing.rows[7].values[1], jet::Value(jet::Null{}));
    EXPECT_EQ(growing.rows[407].values[1], jet::Value(u"with text"));
}

TEST_F(CreatedFilesInterop, password_is_reported_changed_and_removed) {
    database_->close();
    std::filesystem::remove(path());
    jet::CreateOptions options;
    options.password = u"Gehei\u00dfnis 1";
    database_ = jet::Database::create(path(), options);
    const jet::NewColumn columns[] = {key_column(u"Key"), column(u"Name", ColumnType::kText)};
    database_->create_table(u"Secrets", columns);
    insert(u"Secrets", {jet::Null{}, u"hidden"});

    const auto expect_password = [&](const Field& expected) {
        const auto file = read_with_mdb_reader(path());
        ASSERT_TRUE(file);
        EXPECT_EQ(file->password, expected);
    };
    compare(options.password);
    expect_password("Gehei\u00dfnis 1");

    jet::OpenOptions open;
    open.password = options.password;
    database_ = jet::Database::open(path(), open);
    database_->change_password(options.password, u"exactly 20 characte.");
    insert(u"Secrets", {jet::Null{}, u"hidden again"});
    compare(u"exactly 20 characte.");
    expect_password("exactly 20 characte.");

    open.password = u"exactly 20 characte.";
    database_ = jet::Database::open(path(), open);
    database_->change_password(open.password, u"");
    const auto tables = compare();
    expect_password(std::nullopt);
    EXPECT_EQ(find(tables, u"Secrets").rows.size(), 2u);
}

TEST_F(CreatedFilesInterop, many_tables_with_umlauts_and_blanks_in_their_names_are_listed) {
    const jet::NewColumn columns[] = {key_column(u"Schl\u00fcssel"),
                                      column(u"Gr\u00f6\u00dfe in \u00b5m", ColumnType::kDouble),
                                      column(u"\u00c4nderung", ColumnType::kMemo)};
    for (std::size_t i = 0; i < 120; ++i) {
        const std::u16string name = numbered(i % 2 ? u"T\u00f6ne und Ger\u00e4te " : u"Plain", i);
        database_->create_table(name, columns);
        for (std::size_t row = 0; row < i % 4; ++row)
            insert(name, {jet::Null{}, 0.5 * static_cast<double>(row), u"m\u00fcde"});
    }
    const auto tables = compare();
    EXPECT_EQ(tables.size(), 124u);
    EXPECT_EQ(result_.tables, 124u);
}

TEST_F(CreatedFilesInterop, rows_that_grow_shrink_and_go_read_back_equal) {
    const jet::NewColumn columns[] = {key_column(u"Key"), column(u"Name", ColumnType::kText),
                                      column(u"Notes", ColumnType::kMemo)};
    database_->create_table(u"Moving", columns);
    std::map<jet::RowId, Values> expected;
    std::vector<jet::RowId> ids;
    for (std::uint32_t i = 0; i < 600; ++i) {
        ids.push_back(insert(u"Moving", {jet::Null{}, u"n", text_of(i, i % 40)}));
        expected[ids.back()] = {static_cast<std::int32_t>(i + 1), u"n", text_of(i, i % 40)};
    }
    const auto change = [&](std::uint32_t i, std::size_t characters) {
        const jet::ColumnChange changes[] = {{1, text_of(2 * i + 1, characters)}};
        table(u"Moving").update(ids[i], changes);
        expected[ids[i]][1] = changes[0].value;
    };
    for (std::uint32_t i = 0; i < 600; i += 2) change(i, 100 + i % 156);
    for (std::uint32_t i = 0; i < 600; i += 4) change(i, i % 3);
    for (std::uint32_t i = 2; i < 600; i += 4) change(i, 255);
    for (std::uint32_t i = 0; i < 600; i += 3) {
        table(u"Moving").erase(ids[i]);
        expected.erase(ids[i]);
    }
    for (std::uint32_t i = 0; i < 100; ++i) {
        const jet::RowId row = insert(u"Moving", {jet::Null{}, u"late", jet::Null{}});
        EXPECT_FALSE(expected.contains(row));
        expected[row] = {static_cast<std::int32_t>(601 + i), u"late", jet::Null{}};
    }
    const auto tables = compare();
    const OurTable& moving = find(tables, u"Moving");
    ASSERT_EQ(moving.rows.size(), expected.size());
    std::size_t moved = 0;
    for (const OurRow& row : moving.rows) {
        EXPECT_EQ(row.values, expected[row.id]);
        moved += row.moved ? 1 : 0;
    }
    EXPECT_GT(moved, 50u);
}

TEST_F(CreatedFilesInterop, file_of_many_pages_reads_back_equal) {
    const jet::NewColumn columns[] = {key_column(u"Key"), column(u"Name", ColumnType::kText),
                                      column(u"Notes", ColumnType::kMemo)};
    database_->create_table(u"Large", columns);
    std::size_t kept = 0;
    {
        jet::Transaction transaction(database_->pager());
        std::vector<jet::RowId> ids;
        for (std::uint32_t i = 0; i < 9000; ++i) {
            ids.push_back(
                insert(u"Large", {jet::Null{}, text_of(i, 20 + i % 180), text_of(i, i % 9 == 0 ? 1500 : 20)}));
        }
        for (std::size_t i = 0; i < ids.size(); ++i) {
            if (i % 5 == 0 || (i > 3000 && i < 4000)) {
                table(u"Large").erase(ids[i]);
            } else {
                ++kept;
            }
        }
        transaction.commit();
    }
    EXPECT_GT(database_->pager().page_count(), 1024u);
    const auto tables = compare();
    EXPECT_EQ(find(tables, u"Large").rows.size(), kept);
}

class LargeFilesInteropSlow : public CreatedFilesInterop {};

TEST_F(LargeFilesInteropSlow, file_past_the_reach_of_one_bitmap_page_reads_back_equal) {
    constexpr jet::PageNumber kPagesOfOneBitmap = 32736;
    const jet::NewColumn columns[] = {key_column(u"Key"), column(u"Notes", ColumnType::kMemo)};
    database_->create_table(u"Long", columns);
    std::int32_t count = 0;
    for (; database_->pager().page_count() < kPagesOfOneBitmap + 2000; ++count) {
        insert(u"Long", {jet::Null{}, text_of(static_cast<std::uint32_t>(2 * count), 2000000)});
    }
    for (std::int32_t i = 0; i < 200; ++i) insert(u"Long", {jet::Null{}, text_of(7, 30)});
    const auto tables = compare();
    const OurTable& rows = find(tables, u"Long");
    ASSERT_EQ(rows.rows.size(), static_cast<std::size_t>(count) + 200);
    for (std::int32_t i = 0; i < count; ++i) {
        EXPECT_TRUE(rows.rows[static_cast<std::size_t>(i)].values[1] ==
                    jet::Value(text_of(static_cast<std::uint32_t>(2 * i), 2000000)))
            << i;
    }
}

}  // namespace
}  // namespace interop
