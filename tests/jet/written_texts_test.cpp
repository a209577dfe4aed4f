// Rows written with texts in their narrow form are those that the same texts give as values, byte by byte.
#include "jet/tables/ascii_text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/jet/engine_fixture.h"
#include "tests/support/temp_folder.h"

namespace jet {
namespace {

using testing_support::TempFolder;

std::u16string wide(std::string_view narrow) { return {narrow.begin(), narrow.end()}; }

NewColumn text_column(std::u16string name, ColumnType type, bool compressed, std::uint16_t characters = 255) {
    NewColumn column = new_column(std::move(name), type);
    column.compressed = compressed;
    column.text_characters = characters;
    return column;
}

// Texts and memos, with the compression flag and without, texts that may not be empty, a short one, and others.
enum Position : std::size_t {
    kId,
    kText,
    kPlain,
    kShort,
    kMemo,
    kPlainMemo,
    kNumber,
    kFilled,
    kRequired,
    kWide,
    kColumns = kWide + 8
};

class WrittenTexts : public ::testing::TestWithParam<const Format*> {
protected:
    WrittenTexts() {
        CreateOptions options;
        options.format = GetParam();
        auto made = Database::create(folder_.file("narrow.mdb"), options);
        NewColumn id = new_column(u"ID", ColumnType::kLong);
        id.autonumber = true;
        NewColumn filled = text_column(u"Filled", ColumnType::kText, true);
        filled.allow_zero_length = false;
        std::vector<NewColumn> columns = {id,
                                          text_column(u"Text", ColumnType::kText, true),
                                          text_column(u"Plain", ColumnType::kText, false),
                                          text_column(u"Short", ColumnType::kText, true, 10),
                                          text_column(u"Memo", ColumnType::kMemo, true),
                                          text_column(u"PlainMemo", ColumnType::kMemo, false),
                                          new_column(u"Number", ColumnType::kLong),
                                          filled,
                                          text_column(u"Required", ColumnType::kText, true)};
        while (columns.size() < kColumns) {
            const char16_t number = static_cast<char16_t>(u'0' + columns.size() - kWide);
            columns.push_back(text_column(std::u16string(u"Wide") + number, ColumnType::kText, false));
        }
        made->create_table(u"Texts", columns);
        made->close();
        std::filesystem::copy_file(folder_.file("narrow.mdb"), folder_.file("wide.mdb"));
        narrow_ = Database::open(folder_.file("narrow.mdb"), {});
        wide_ = Database::open(folder_.file("wide.mdb"), {});
        for (Database* database : {narrow_.get(), wide_.get()}) {
            definition_of(*database).columns[kRequired].required = true;
        }
    }

    static Table& texts(Database& database) { return *database.find_table(u"Texts"); }
    static TableDef& definition_of(Database& database) { return const_cast<TableDef&>(texts(database).def()); }

    // The same row both ways. Returns the engine's number of the failure, the same in both.
    int add(std::vector<Value> values, const std::vector<AsciiText>& given) {
        RowId a;
        RowId b;
        const int failure = error_number([&] { a = texts(*narrow_).insert(values, given); });
        for (const AsciiText& text : given) values.at(text.position) = wide(text.text);
        EXPECT_EQ(error_number([&] { b = texts(*wide_).insert(values); }), failure);
        EXPECT_EQ(a, b);
        if (failure == 0) rows_.push_back(a);
        return failure;
    }
    int change(RowId row, const std::vector<ColumnChange>& changes, const std::vector<AsciiText>& given) {
        const int failure = error_number([&] { texts(*narrow_).update(row, changes, given); });
        std::vector<ColumnChange> all = changes;
        for (const AsciiText& text : given) all.push_back({text.position, wide(text.text)});
        std::sort(all.begin(), all.end(), [](const auto& x, const auto& y) { return x.position < y.position; });
        EXPECT_EQ(error_number([&] { texts(*wide_).update(row, all); }), failure);
        return failure;
    }

    // Without the change counter and the file's identity, which start at random.
    std::string bytes_of(const std::string& name) {
        std::ifstream file(folder_.file(name), std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const Format& format = *GetParam();
        for (const std::size_t at : {format.change_counter, format.file_identity}) {
            if (at != 0) bytes.replace(jet4::kObjectsPage * format.page_size + at, 8, 8, '\0');
        }
        return bytes;
    }
    void expect_same_files() {
        expect_sound(*narrow_);
        narrow_->close();
        wide_->close();
        EXPECT_TRUE(bytes_of("narrow.mdb") == bytes_of("wide.mdb"));
    }

    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(random_()) % end; }
    std::string made_up_text(std::size_t most) {
        static constexpr std::size_t kLengths[] = {0, 1, 2, 3, 10, 11, 20, 31, 32, 33, 62, 63, 64, 65, 255, 256, 5000};
        std::string text(std::min(most, kLengths[below(std::size(kLengths))]), ' ');
        for (char& c : text) c = static_cast<char>(1 + below(127));
        return text;
    }

    TempFolder folder_;
    std::unique_ptr<Database> narrow_;
    std::unique_ptr<Database> wide_;
    std::vector<RowId> rows_;
    std::mt19937 random_{5};
};

INSTANTIATE_TEST_SUITE_P(Formats, WrittenTexts, ::testing::Values(&kJet4, &kJet3),
                         [](const auto& test) { return test.param == &kJet4 ? "jet4" : "jet3"; });

TEST_P(WrittenTexts, texts_of_every_length_give_the_same_file) {
    constexpr Position kTexts[] = {kText, kPlain, kShort, kMemo, kPlainMemo, kFilled, kRequired};
    int failures = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<std::string> kept;
        kept.reserve(std::size(kTexts));
        std::vector<AsciiText> given;
        std::vector<Value> values(kColumns);
        std::vector<ColumnChange> changes;
        for (const Position position : kTexts) {
            const bool is_memo = position == kMemo || position == kPlainMemo;
            kept.push_back(made_up_text(is_memo ? 5000 : below(9) == 0 ? 256 : position == kShort ? 10 : 60));
            const std::uint32_t way = below(8);
            if (way > 1) {
                given.push_back({position, kept.back()});
            } else if (way == 1) {
                values[position] = wide(kept.back()) + u'\u0416';
                changes.push_back({position, values[position]});
            }
        }
        const int failure = rows_.size() < 20 || below(2) == 0
                                ? add(std::move(values), given)
                                : change(rows_[below(static_cast<std::uint32_t>(rows_.size()))], changes, given);
        failures += failure != 0;
    }
    EXPECT_GT(failures, 40);
    EXPECT_GT(rows_.size(), 60u);
    expect_same_files();
}

TEST_P(WrittenTexts, refused_text_is_refused_as_its_value_is) {
    const AsciiText required{kRequired, "here"};
    const std::string long_text(256, 'x');
    EXPECT_EQ(add(std::vector<Value>(kColumns), {}), errors::kNullNotAllowed);
    EXPECT_EQ(add(std::vector<Value>(kColumns), {{kFilled, ""}, required}), errors::kEmptyNotAllowed);
    EXPECT_EQ(add(std::vector<Value>(kColumns), {{kShort, "eleven char"}, required}), errors::kTextTooLong);
    EXPECT_EQ(add(std::vector<Value>(kColumns), {{kText, long_text}, {kFilled, ""}, required}), errors::kTextTooLong);
    EXPECT_EQ(add(std::vector<Value>(kColumns), {{kNumber, "no number"}, required}), errors::kBadConversion);
    EXPECT_EQ(add(std::vector<Value>(kColumns), {{kId, "12"}, required}), 0);
    EXPECT_EQ(add(std::vector<Value>(kColumns), {{kNumber, " 12 "}, required}), 0);
    EXPECT_EQ(change(rows_[0], {}, {{kShort, "eleven char"}, {kRequired, "other"}}), errors::kTextTooLong);
    EXPECT_EQ(change(rows_[0], {{kRequired, Null{}}}, {{kText, "other"}}), errors::kNullNotAllowed);
    EXPECT_EQ(change(rows_[0], {{kNumber, std::int32_t{3}}}, {{kText, "a"}, {kFilled, ""}}), errors::kEmptyNotAllowed);
    EXPECT_EQ(row_values(texts(*narrow_), rows_[0])[kText], Value());
    expect_same_files();
}

// The last column grows until a memo has to leave the row, and until the row is too large for a page.
TEST_P(WrittenTexts, row_too_large_gives_its_memos_away_or_fails) {
    const std::string full(255, 'x');
    const std::string memo(28, 'm');
    int failures = 0;
    for (std::size_t length = 0; length <= 255; ++length) {
        const std::string last(length, 'y');
        std::vector<AsciiText> given{{kMemo, memo}, {kPlainMemo, memo}, {kRequired, "x"}};
        for (std::size_t i = kWide; i < kColumns - 1; ++i) given.push_back({i, full});
        given.push_back({kColumns - 1, last});
        const int failure = add(std::vector<Value>(kColumns), given);
        EXPECT_TRUE(failure == 0 || failure == errors::kRowTooLarge) << failure;
        failures += failure != 0;
    }
    EXPECT_GT(failures, 10);
    EXPECT_GT(rows_.size(), 100u);
    expect_same_files();
}

// The keys of an index are made of values.
TEST_P(WrittenTexts, text_of_an_index_is_found_in_it) {
    const auto name_with = [](Database& database) -> Table& { return *database.table_by_page(jet4::kObjectsPage); };
    Table& objects = name_with(*narrow_);
    RowView view;
    RowId of_table;
    const std::size_t name = *objects.def().find_column(u"Name");
    for (auto row = objects.next_row({}); row; row = objects.next_row(*row)) {
        if (objects.read(*row, view) && view.value(name) == Value(std::u16string(u"Texts"))) of_table = *row;
    }
    ASSERT_FALSE(of_table.is_null());
    objects.update(of_table, {}, std::vector<AsciiText>{{name, "Renamed"}});
    name_with(*wide_).update(of_table, std::vector<ColumnChange>{{name, std::u16string(u"Renamed")}});
    expect_same_files();
}

// A column of fixed length is filled up with blanks.
TEST_P(WrittenTexts, text_of_fixed_length_is_filled_up) {
    for (Database* database : {narrow_.get(), wide_.get()}) {
        ColumnDef& column = definition_of(*database).columns[kShort];
        column.flags |= jet4::tdef::kFlagFixed;
        column.fixed_offset = 100;
    }
    ASSERT_EQ(add(std::vector<Value>(kColumns), {{kShort, "abc"}, {kRequired, "x"}}), 0);
    EXPECT_EQ(row_values(texts(*narrow_), rows_[0])[kShort], Value(std::u16string(u"abc       ")));
    EXPECT_EQ(row_values(texts(*narrow_), rows_[0]), row_values(texts(*wide_), rows_[0]));
}

}  // namespace
}  // namespace jet
