// Both codecs of table definitions, against definitions written by Access and against damage.
#include "jet/schema/table_def.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <set>

#include "tests/support/hex.h"

namespace {

using testing_support::from_hex;
using namespace jet;
namespace tdef = jet4::tdef;

// A table as Access writes it: a text column and an auto-GUID with a primary key.
const ByteVector kTable4 = from_hex(
    "02 01 ff 0e 00 00 00 00 f9 00 00 00 59 06 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00"
    "00 00 00 00 00 00 00 00 4e 02 00 01 00 02 00 01 00 00 00 01 00 00 00 00 e5 02 00 01 e5 02 00"
    "00 00 00 00 00 00 00 00 00 00 00 00"
    "0a 59 06 00 00 00 00 00 00 01 00 09 04 00 00 02 01 00 00 00 00 00 00 64 00"
    "0f 59 06 00 00 01 00 01 00 02 00 09 04 00 00 43 00 00 00 00 00 00 00 10 00"
    "08 00 6e 00 61 00 6d 00 65 00 08 00 64 00 61 00 74 00 61 00"
    "83 07 00 00 01 00 01 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00"
    "02 e5 02 00 e6 02 00 00 00 00 00 00 89 00 00 00 00 00"
    "59 06 00 00 00 00 00 00 00 00 00 00 00 ff ff ff ff 00 00 00 00 04 04 01 00 00 00 00"
    "14 00 50 00 72 00 69 00 6d 00 61 00 72 00 79 00 4b 00 65 00 79 00 ff ff");
constexpr std::size_t kColumn0 = 75;  // first column record of kTable4
constexpr std::size_t kColumn1 = 100;

int definition_error(ByteSpan bytes) {
    try {
        parse_table_def(bytes, 32);
        return 0;
    } catch (const Error& error) {
        return error.number();
    }
}

// kTable4 with one change.
int error_with(std::size_t at, std::initializer_list<std::uint8_t> bytes) {
    ByteVector changed = kTable4;
    std::copy(bytes.begin(), bytes.end(), changed.begin() + static_cast<std::ptrdiff_t>(at));
    return definition_error(changed);
}

TEST(TableDef, parse_access_table_gives_all_fields) {
    const TableDef def = parse_table_def(kTable4, 32);
    EXPECT_EQ(def.page, 32u);
    EXPECT_EQ(def.kind, tdef::kUserTable);
    EXPECT_EQ(def.max_columns, 2);
    EXPECT_EQ(def.variable_columns, 1);
    EXPECT_EQ(def.owned_map, (RowId{741, 0}));
    EXPECT_EQ(def.free_map, (RowId{741, 1}));
    ASSERT_EQ(def.columns.size(), 2u);
    EXPECT_EQ(def.columns[0].name, u"name");
    EXPECT_EQ(def.columns[0].type, ColumnType::kText);
    EXPECT_EQ(def.columns[0].length_bytes, 100);
    EXPECT_EQ(def.columns[0].ext_flags, tdef::kExtCompressed);
    EXPECT_EQ(def.columns[0].lcid, jet4::kGeneralOrder);
    EXPECT_EQ(def.columns[0].sort_version, 0);
    EXPECT_FALSE(def.columns[0].is_fixed());
    EXPECT_EQ(def.columns[1].name, u"data");
    EXPECT_EQ(def.columns[1].type, ColumnType::kGuid);
    EXPECT_EQ(def.columns[1].number, 1);
    EXPECT_TRUE(def.columns[1].is_fixed());
    ASSERT_EQ(def.real_indexes.size(), 1u);
    ASSERT_EQ(def.real_indexes[0].columns.size(), 1u);
    EXPECT_EQ(def.real_indexes[0].columns[0].column_number, 1);
    EXPECT_TRUE(def.real_indexes[0].columns[0].ascending);
    EXPECT_EQ(def.real_indexes[0].root, 742u);
    EXPECT_EQ(def.real_indexes[0].map, (RowId{741, 2}));
    EXPECT_TRUE(def.real_indexes[0].unique());
    EXPECT_TRUE(def.real_indexes[0].required());
    ASSERT_EQ(def.logical_indexes.size(), 1u);
    EXPECT_EQ(def.logical_indexes[0].name, u"PrimaryKey");
    EXPECT_EQ(def.logical_indexes[0].type, 1);
    EXPECT_EQ(def.logical_indexes[0].other_index, -1);
}

TEST(TableDef, build_after_parse_gives_same_bytes) {
    ByteVector expected = kTable4;
    store_u16(expected, tdef::kFree, 0);
    EXPECT_EQ(build_table_def(parse_table_def(kTable4, 32)), expected);
}

TEST(TableDef, build_with_record_order_parses_to_same_definition) {
    TableDef def = parse_table_def(kTable4, 32);
    def.columns[0].ordinal = 9;  // displayed behind the other one now
    const ByteVector bytes = build_table_def(def, {1, 0});
    EXPECT_EQ(load_u8(bytes, kColumn0), static_cast<std::uint8_t>(ColumnType::kGuid));
    const TableDef back = parse_table_def(bytes, 32);
    EXPECT_EQ(back.columns[0].name, u"data");
    EXPECT_EQ(back.columns[1].name, u"name");
    EXPECT_EQ(back.columns[1].length_bytes, 100);
}

TEST(TableDef, parse_with_equal_ordinals_orders_by_number) {
    ByteVector bytes = kTable4;
    store_u16(bytes, kColumn0 + tdef::column::kOrdinal, 0xFFFF);
    store_u16(bytes, kColumn1 + tdef::column::kOrdinal, 0xFFFF);
    EXPECT_EQ(parse_table_def(bytes, 32).columns[0].name, u"name");
    store_u16(bytes, kColumn1 + tdef::column::kOrdinal, 0);
    EXPECT_EQ(parse_table_def(bytes, 32).columns[0].name, u"data");
}

TEST(TableDef, parse_keeps_numeric_scale_and_change_counter) {
    TableDef def = parse_table_def(kTable4, 32);
    def.change_counter = 0x1122334455667788;
    ColumnDef& column = def.columns[1];
    column.type = ColumnType::kNumeric;
    column.length_bytes = 17;
    column.precision = 18;
    column.scale = 4;
    const TableDef back = parse_table_def(build_table_def(def), 32);
    EXPECT_EQ(back.change_counter, 0x1122334455667788u);
    EXPECT_EQ(back.columns[1].precision, 18);
    EXPECT_EQ(back.columns[1].scale, 4);
}

TEST(TableDef, parse_long_value_column_gives_its_maps) {
    TableDef def = parse_table_def(kTable4, 32);
    def.columns[0].type = ColumnType::kMemo;
    def.columns[0].owned_map = {741, 3};
    def.columns[0].free_map = {741, 4};
    const TableDef back = parse_table_def(build_table_def(def), 32);
    EXPECT_EQ(back.columns[0].owned_map, (RowId{741, 3}));
    EXPECT_EQ(back.columns[0].free_map, (RowId{741, 4}));
}

TEST(TableDef, find_column_ignores_case) {
    const TableDef def = parse_table_def(kTable4, 32);
    EXPECT_EQ(def.find_column(u"NAME"), std::optional<std::size_t>(0));
    EXPECT_EQ(def.find_column(u"nam"), std::nullopt);
    EXPECT_EQ(def.column_by_number(1), std::optional<std::size_t>(1));
    EXPECT_EQ(def.column_by_number(2), std::nullopt);
}

TEST(TableDef, parse_every_truncation_is_damage) {
    for (std::size_t length = 0; length < kTable4.size(); ++length) {
        EXPECT_EQ(definition_error(ByteSpan(kTable4).first(length)), errors::kDamaged) << length;
        if (length < tdef::kFixedHeader) continue;
        ByteVector shorter(kTable4.begin(), kTable4.begin() + static_cast<std::ptrdiff_t>(length));
        store_u32(shorter, tdef::kLength, static_cast<std::uint32_t>(length));
        EXPECT_EQ(definition_error(shorter), errors::kDamaged) << length;
    }
}

TEST(TableDef, parse_impossible_counts_is_damage) {
    EXPECT_EQ(error_with(tdef::kColumns, {0xFF, 0xFF}), errors::kDamaged);
    EXPECT_EQ(error_with(tdef::kRealIndexes, {0xFF, 0xFF, 0xFF, 0xFF}), errors::kDamaged);
    EXPECT_EQ(error_with(tdef::kLogicalIndexes, {0xFF, 0xFF, 0xFF, 0xFF}), errors::kDamaged);
    EXPECT_EQ(error_with(tdef::kLength, {0xFF, 0xFF, 0xFF, 0x7F}), errors::kDamaged);
    EXPECT_EQ(error_with(tdef::kMagic, {0x58}), errors::kDamaged);
    EXPECT_EQ(error_with(0, {jet4::kDataPage}), errors::kDamaged);
}

// A definition with as many parts as asked for, none of them doubled.
TableDef definition_of(std::size_t columns, std::size_t indexes, std::size_t names) {
    TableDef def;
    def.page = 20;
    def.max_columns = static_cast<std::uint16_t>(columns);
    for (std::size_t i = 0; i < columns; ++i) {
        ColumnDef column;
        column.number = column.ordinal = static_cast<std::uint16_t>(i);
        column.flags = tdef::kFlagFixed;
        column.fixed_offset = static_cast<std::uint16_t>(4 * i);
        column.length_bytes = 4;
        column.name = std::u16string(8, static_cast<char16_t>(u'a' + i));
        def.columns.push_back(column);
    }
    for (std::size_t i = 0; i < indexes; ++i) {
        RealIndex index;
        index.columns.push_back({0, true});
        index.root = static_cast<PageNumber>(100 + i);
        def.real_indexes.push_back(index);
    }
    def.logical_indexes.resize(names);
    return def;
}

int definition_error(const TableDef& def) { return definition_error(build_table_def(def)); }

TEST(TableDef, as_much_as_the_format_allows_is_read_and_no_more) {
    EXPECT_EQ(0, definition_error(definition_of(255, 32, 255)));
    EXPECT_EQ(errors::kDamaged, definition_error(definition_of(256, 1, 1)));
    EXPECT_EQ(errors::kDamaged, definition_error(definition_of(1, 33, 1)));
    EXPECT_EQ(errors::kDamaged, definition_error(definition_of(1, 1, 256)));
    TableDef def = definition_of(2, 1, 1);
    def.variable_columns = 256;
    EXPECT_EQ(errors::kDamaged, definition_error(def));
    def = definition_of(2, 1, 1);
    def.columns[0].name = std::u16string(64, u'x');
    EXPECT_EQ(0, definition_error(def));
    def.columns[0].name += u'x';
    EXPECT_EQ(errors::kDamaged, definition_error(def));
    def = definition_of(2, 1, 1);
    def.logical_indexes[0].name = std::u16string(65, u'x');
    EXPECT_EQ(errors::kDamaged, definition_error(def));
}

TEST(TableDef, what_serves_two_purposes_is_damage) {
    const std::function<void(TableDef&)> cases[] = {
        [](TableDef& def) { def.columns[1].fixed_offset = 3; },
        [](TableDef& def) {
            def.owned_map = def.free_map = {9, 1};
        },
        [](TableDef& def) {
            def.real_indexes[0].map = def.free_map = {9, 1};
        },
        [](TableDef& def) {
            def.real_indexes[0].map = def.real_indexes[1].map = {9, 1};
        },
        [](TableDef& def) { def.real_indexes[0].root = def.real_indexes[1].root; },
        [](TableDef& def) { def.real_indexes[0].root = jet4::kObjectsPage; },
        [](TableDef& def) { def.real_indexes[0].root = jet4::kMaxPages; },
        [](TableDef& def) {
            def.owned_map = {jet4::kGlobalMapPage, 0};
        },
        [](TableDef& def) {
            def.free_map = {jet4::kGlobalMapPage, 1};
        },
        [](TableDef& def) {
            def.free_map = {jet4::kMaxPages, 1};
        },
    };
    ASSERT_EQ(0, definition_error(definition_of(2, 2, 2)));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        TableDef def = definition_of(2, 2, 2);
        cases[i](def);
        EXPECT_EQ(errors::kDamaged, definition_error(def)) << i;
    }
}

TEST(TableDef, parse_inconsistent_columns_is_damage) {
    EXPECT_EQ(error_with(kColumn1 + tdef::column::kNumber, {0, 0}), errors::kDamaged);         // twice
    EXPECT_EQ(error_with(kColumn1 + tdef::column::kNumber, {2, 0}), errors::kDamaged);         // too high
    EXPECT_EQ(error_with(kColumn0 + tdef::column::kVariableIndex, {1, 0}), errors::kDamaged);  // too high
    EXPECT_EQ(error_with(kColumn1 + tdef::column::kFixedOffset, {0xFF, 0xFF}), errors::kDamaged);
    EXPECT_EQ(error_with(kColumn1 + tdef::column::kLength, {15, 0}), errors::kDamaged);  // not a GUID's
    EXPECT_EQ(error_with(kColumn1 + tdef::column::kType, {0x0C}), errors::kDamaged);     // fixed memo

    ByteVector two_places = kTable4;  // both variable, both at place 0
    two_places[kColumn1 + tdef::column::kFlags] = 0x02;
    store_u16(two_places, kColumn1 + tdef::column::kVariableIndex, 0);
    EXPECT_EQ(definition_error(two_places), errors::kDamaged);
}

TEST(TableDef, parse_inconsistent_indexes_is_damage) {
    constexpr std::size_t real_record = 145;
    constexpr std::size_t logical_record = 197;
    ASSERT_EQ(load_u32(kTable4, real_record), tdef::kIndexMagicValue);
    EXPECT_EQ(error_with(real_record + tdef::real_index::kKeys, {7, 0}), errors::kDamaged);
    EXPECT_EQ(error_with(real_record + tdef::real_index::kKeys, {0xFF, 0xFF}), errors::kDamaged);
    EXPECT_EQ(error_with(logical_record + tdef::logical_index::kRealIndex, {1}), errors::kDamaged);
}

TEST(TableDef, parse_misplaced_long_value_maps_is_damage) {
    ByteVector bytes = kTable4;
    bytes.resize(bytes.size() - 2);
    for (const std::uint8_t byte : from_hex("00 00 03 e5 02 00 04 e5 02 00 ff ff")) bytes.push_back(byte);
    store_u32(bytes, tdef::kLength, static_cast<std::uint32_t>(bytes.size()));
    EXPECT_EQ(definition_error(bytes), errors::kDamaged);  // column 0 is a text
    bytes[kColumn0] = static_cast<std::uint8_t>(ColumnType::kMemo);
    EXPECT_EQ(definition_error(bytes), 0);

    bytes.resize(bytes.size() - 2);
    for (const std::uint8_t byte : from_hex("00 00 03 e5 02 00 04 e5 02 00 ff ff")) bytes.push_back(byte);
    store_u32(bytes, tdef::kLength, static_cast<std::uint32_t>(bytes.size()));
    EXPECT_EQ(definition_error(bytes), errors::kDamaged);  // twice
}

TEST(TableDef, parse_random_damage_never_does_worse_than_fail) {
    std::mt19937 random(1);
    int failures = 0;
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes = kTable4;
        for (int i = 0; i < 3; ++i) bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        const int error = definition_error(bytes);
        if (error != 0) {
            ++failures;
            ASSERT_EQ(error, errors::kDamaged);
        }
    }
    EXPECT_GT(failures, 1000);
}

// --- definitions in files of Access -------------------------------------------------------------------

ByteVector read_whole(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return ByteVector(std::istreambuf_iterator<char>(in), {});
}

// The joined definition starting on `page`; empty when the chain is not whole (a page once used).
ByteVector join_definition(ByteSpan file, PageNumber page) {
    ByteVector bytes;
    std::set<PageNumber> seen;
    while (page != 0) {
        if (!seen.insert(page).second || (std::size_t{page} + 1) * jet4::kPageSize > file.size()) return {};
        const ByteSpan content = file.subspan(page * jet4::kPageSize, jet4::kPageSize);
        if (content[0] != jet4::kTableDefPage) return {};
        append_bytes(bytes, content.subspan(bytes.empty() ? 0 : tdef::kPageHeader));
        page = load_u32(content, tdef::kNext);
    }
    const std::uint32_t length = load_u32(bytes, tdef::kLength);
    if (length > bytes.size()) return {};
    bytes.resize(length);
    return bytes;
}

// Zeroes what Access leaves uninitialised, and the statistics that only a rebuild of an index sets.
void clear_filler(ByteVector& bytes) {
    const std::uint16_t columns = load_u16(bytes, tdef::kColumns);
    const std::uint32_t indexes = load_u32(bytes, tdef::kRealIndexes);
    store_u16(bytes, tdef::kFree, 0);
    store_u32(bytes, tdef::kNext, 0);
    store_u32(bytes, tdef::kFiller + 8, 0);
    std::size_t at = tdef::kFixedHeader;
    for (std::uint32_t i = 0; i < indexes; ++i, at += tdef::kIndexStatistics) store_u32(bytes, at, 0);
    for (std::uint16_t i = 0; i < columns; ++i, at += tdef::kColumnRecord) {
        const bool fixed = (bytes[at + tdef::column::kFlags] & tdef::kFlagFixed) != 0;
        if (!fixed) store_u16(bytes, at + tdef::column::kFixedOffset, 0);
        const bool numeric = bytes[at] == static_cast<std::uint8_t>(ColumnType::kNumeric);
        if (numeric) store_u16(bytes, at + tdef::column::kScale + 1, 0);
    }
    for (std::uint16_t i = 0; i < columns; ++i) at += 2u + load_u16(bytes, at);
    for (std::uint32_t i = 0; i < indexes; ++i, at += tdef::kRealIndexRecord) {
        for (std::size_t key = 0; key < tdef::kKeyColumns; ++key) {
            const std::size_t key_at = at + tdef::real_index::kKeys + tdef::real_index::kKeyBytes * key;
            if (load_u16(bytes, key_at) == tdef::kNoColumn) bytes[key_at + tdef::real_index::kKeyOrder] = 0;
        }
        store_u32(bytes, at + tdef::real_index::kFiller, 0);
    }
}

std::vector<std::size_t> record_order_of(ByteSpan bytes, const TableDef& def) {
    std::vector<std::size_t> order;
    std::size_t at = tdef::kFixedHeader + def.real_indexes.size() * tdef::kIndexStatistics;
    for (std::size_t i = 0; i < def.columns.size(); ++i, at += tdef::kColumnRecord) {
        order.push_back(def.column_by_number(load_u16(bytes, at + tdef::column::kNumber)).value());
    }
    return order;
}

TEST(TableDef, access_definitions_round_trip_to_the_byte) {
    const std::filesystem::path folder = KVDB_SAMPLES;
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no sample files";
    int definitions = 0;
    int continued = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".mdb") continue;
        const ByteVector file = read_whole(entry.path());
        if (load_u32(file, jet4::header::kVersion) != jet4::header::kVersionJet4) continue;
        for (PageNumber page = 2; page < file.size() / jet4::kPageSize; ++page) {
            const ByteSpan content = ByteSpan(file).subspan(page * jet4::kPageSize, jet4::kPageSize);
            if (content[0] != jet4::kTableDefPage || load_u32(content, tdef::kMagic) != tdef::kMagicValue) continue;
            ByteVector bytes = join_definition(file, page);
            if (bytes.empty()) continue;
            SCOPED_TRACE(entry.path().filename().string() + " page " + std::to_string(page));
            TableDef def;
            ASSERT_NO_THROW(def = parse_table_def(bytes, page));
            const ByteVector built = build_table_def(def, record_order_of(bytes, def));
            clear_filler(bytes);
            const std::size_t same = static_cast<std::size_t>(
                std::mismatch(built.begin(), built.end(), bytes.begin(), bytes.end()).first - built.begin());
            EXPECT_TRUE(built == bytes) << "they differ from byte " << same << " on";
            ++definitions;
            if (bytes.size() > jet4::kPageSize) ++continued;
        }
    }
    EXPECT_GT(definitions, 80);
    RecordProperty("definitions", definitions);
    RecordProperty("continued", continued);
}

}  // namespace
