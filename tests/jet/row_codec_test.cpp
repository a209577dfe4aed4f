#include "jet/storage/row_codec.h"

#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

using enum ColumnType;
namespace tdef = jet4::tdef;

// Adds a column behind those that are there.
void add_column(TableDef& def, ColumnType type, std::uint16_t length_bytes, bool fixed) {
    ColumnDef column;
    column.name = u"C" + std::u16string(1, static_cast<char16_t>(u'A' + def.max_columns));
    column.type = type;
    column.number = def.max_columns++;
    column.length_bytes = length_bytes;
    column.flags = fixed ? tdef::kFlagFixed : std::uint8_t{0};
    if (fixed) {
        for (const ColumnDef& other : def.columns) {
            if (!other.is_fixed() || other.type == kBoolean || type == kBoolean) continue;
            column.fixed_offset = std::max<std::uint16_t>(column.fixed_offset, other.fixed_offset + other.length_bytes);
        }
    } else {
        column.variable_index = def.variable_columns++;
    }
    def.columns.push_back(column);
}

// The nine columns of the worked example.
TableDef example_def() {
    TableDef def;
    add_column(def, kText, 100, false);
    add_column(def, kText, 100, false);
    add_column(def, kByte, 1, true);
    add_column(def, kInteger, 2, true);
    add_column(def, kLong, 4, true);
    add_column(def, kDouble, 8, true);
    add_column(def, kDate, 8, true);
    add_column(def, kCurrency, 8, true);
    add_column(def, kBoolean, 1, true);
    def.columns[0].ext_flags = tdef::kExtCompressed;
    return def;
}

const std::vector<Value>& example_values() {
    static const std::vector<Value> values{std::u16string(u"abcdefg"),
                                           std::u16string(u"hijklmnop"),
                                           std::uint8_t{2},
                                           std::int16_t{222},
                                           std::int32_t{333333333},
                                           444.555,
                                           Date{27293.0},
                                           Currency{35000},
                                           true};
    return values;
}

const ByteVector kExampleRow{0x09, 0x00, 0x02, 0xde, 0x00, 0x55, 0x43, 0xde, 0x13, 0x7b, 0x14, 0xae, 0x47, 0xe1, 0xc8,
                             0x7b, 0x40, 0x00, 0x00, 0x00, 0x00, 0x40, 0xa7, 0xda, 0x40, 0xb8, 0x88, 0x00, 0x00, 0x00,
                             0x00, 0x00, 0x00, 0xff, 0xfe, 0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x00, 0x69,
                             0x00, 0x6a, 0x00, 0x6b, 0x00, 0x6c, 0x00, 0x6d, 0x00, 0x6e, 0x00, 0x6f, 0x00, 0x70, 0x00,
                             0x00, 0x00, 0x3c, 0x00, 0x2a, 0x00, 0x21, 0x00, 0x02, 0x00, 0xff, 0x01};
constexpr std::size_t kGapAt = 0x3C;
constexpr std::size_t kGapBytes = 2;

ByteVector encode(const TableDef& def, const std::vector<Value>& values) {
    std::vector<StoredValue> stored(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!is_null(values[i])) stored[i] = encode_value(values[i], def.columns[i]);
    }
    return encode_row(def, stored);
}

std::vector<Value> decode(const TableDef& def, ByteSpan row) {
    const RowReader reader(row, def);
    std::vector<Value> values;
    for (const ColumnDef& column : def.columns) {
        const auto stored = reader.stored(column);
        values.push_back(stored ? decode_value(*stored, column) : Value{});
    }
    return values;
}

TEST(RowCodec, row_written_by_access_is_read_whole) { EXPECT_EQ(decode(example_def(), kExampleRow), example_values()); }

TEST(RowCodec, same_values_give_the_same_bytes_without_the_gap) {
    ByteVector expected = kExampleRow;
    expected.erase(expected.begin() + kGapAt, expected.begin() + kGapAt + kGapBytes);
    EXPECT_EQ(encode(example_def(), example_values()), expected);
}

TEST(RowCodec, older_rows_lack_the_later_columns) {
    const TableDef old_def = example_def();
    const ByteVector row = encode(old_def, example_values());
    TableDef def = old_def;
    add_column(def, kText, 40, false);
    add_column(def, kLong, 4, true);
    add_column(def, kBoolean, 1, true);
    add_column(def, kMemo, 0, false);
    std::vector<Value> values = example_values();
    values.insert(values.end(), {Null{}, Null{}, false, Null{}});
    EXPECT_EQ(decode(def, row), values);
}

TEST(RowCodec, table_without_variable_columns_has_no_offsets) {
    TableDef def;
    add_column(def, kLong, 4, true);
    add_column(def, kBoolean, 1, true);
    const std::vector<Value> values{std::int32_t{-2}, true};
    EXPECT_EQ(encode(def, values), (ByteVector{2, 0, 0xFE, 0xFF, 0xFF, 0xFF, 3}));
    EXPECT_EQ(decode(def, encode(def, values)), values);
    add_column(def, kText, 40, false);
    EXPECT_EQ(decode(def, ByteVector{2, 0, 0xFE, 0xFF, 0xFF, 0xFF, 3}),
              (std::vector<Value>{std::int32_t{-2}, true, Null{}}));
}

TEST(RowCodec, short_rows_are_padded_to_a_pointers_length) {
    TableDef def;
    add_column(def, kBoolean, 1, true);
    EXPECT_EQ(encode(def, {true}), (ByteVector{1, 0, 0, 1}));
    EXPECT_EQ(encode(def, {false}), (ByteVector{1, 0, 0, 0}));
    EXPECT_EQ(decode(def, encode(def, {true})), std::vector<Value>{true});
}

TEST(RowCodec, null_and_empty_are_told_apart) {
    TableDef def;
    add_column(def, kText, 40, false);
    add_column(def, kText, 40, false);
    add_column(def, kBinary, 40, false);
    add_column(def, kBinary, 40, false);
    const std::vector<Value> values{Null{}, std::u16string(), ByteVector{}, Null{}};
    const ByteVector row = encode(def, values);
    EXPECT_EQ(decode(def, row), values);
    EXPECT_EQ(row, (ByteVector{4, 0, 2, 0, 2, 0, 2, 0, 2, 0, 2, 0, 4, 0, 6}));
}

TEST(RowCodec, places_of_deleted_columns_stay) {
    TableDef def = example_def();
    def.columns.erase(def.columns.begin() + 3);  // an integer: its bytes remain
    def.columns.erase(def.columns.begin());      // a text: its offset remains
    const std::vector<Value> all = decode(def, kExampleRow);
    EXPECT_EQ(all[0], Value(std::u16string(u"hijklmnop")));
    EXPECT_EQ(all[2], Value(std::int32_t{333333333}));
    EXPECT_EQ(decode(def, encode(def, all)), all);
}

TEST(RowCodec, every_type_comes_back) {
    TableDef def;
    Guid guid;
    Numeric numeric;
    for (std::uint8_t i = 0; i < 16; ++i) guid.bytes[i] = i;
    numeric.bytes[16] = 7;
    numeric.scale = 3;
    add_column(def, kSingle, 4, true);
    add_column(def, kGuid, 16, true);
    add_column(def, kNumeric, 17, true);
    add_column(def, kLong, 4, false);  // seen in real files
    add_column(def, kFixedBinary, 5, true);
    add_column(def, kText, 8, true);
    def.columns[2].scale = 3;
    const std::vector<Value> values{
        1.5f, guid, numeric, std::int32_t{99}, ByteVector{1, 2, 3, 4, 5}, std::u16string(u"abcd")};
    EXPECT_EQ(decode(def, encode(def, values)), values);
    // Fixed text is padded with blanks, fixed bytes with zeros.
    const std::vector<Value> shorter{Null{}, Null{}, Null{}, Null{}, ByteVector{1}, std::u16string(u"a")};
    EXPECT_EQ(decode(def, encode(def, shorter))[4], Value(ByteVector{1, 0, 0, 0, 0}));
    EXPECT_EQ(decode(def, encode(def, shorter))[5], Value(std::u16string(u"a   ")));
}

TEST(RowCodec, damaged_rows_fail_or_stay_inside) {
    const TableDef def = example_def();
    Random random(1);
    int failures = 0;
    for (int round = 0; round < 20000; ++round) {
        ByteVector row = kExampleRow;
        row[random.below(row.size())] = random.byte();
        row[random.below(row.size())] = random.byte();
        if (round % 4 == 0) row.resize(random.below(row.size()));
        const int error = error_number([&] { decode(def, row); });
        if (error != 0) ++failures;
        ASSERT_TRUE(error == 0 || error == errors::kDamaged) << round;
    }
    EXPECT_GT(failures, 1000);
    EXPECT_LT(failures, 19000);
}

}  // namespace
}  // namespace jet
