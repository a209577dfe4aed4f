// The property blob, against blobs written by Access and against damage.
#include "jet/schema/properties.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "jet/base/jet4.h"
#include "jet/storage/data_page.h"
#include "tests/support/hex.h"

namespace {

using testing_support::from_hex;
using namespace jet;

// Columns ID (long), Name (text, no zero length, compressed), Memo (memo, zero length allowed).
const ByteVector kThreeColumns = from_hex(
    "4d523200 5e000000 8000 1000 5200650071007500690072006500 6400 "
    "1e00 41006c006c006f0077005a00650072006f004c0065006e00670074006800 "
    "2400 55006e00690063006f006400650043006f006d007000720065007300730069006f006e00 "
    "19000000 0100 0a000000 0400 49004400 0900 01 01 0000 0100 00 "
    "2f000000 0100 0e000000 0800 4e0061006d006500 0900 01 01 0000 0100 00 0900 01 01 0100 0100 00 "
    "0900 01 01 0200 0100 01 "
    "26000000 0100 0e000000 0800 4d0065006d006f00 0900 01 01 0000 0100 00 0900 01 01 0100 0100 01");

// The document summary of a file of Access: three texts of the object itself.
const ByteVector kSummary = from_hex(
    "4d 52 32 00 30 00 00 00 80 00 0a 00 54 00 69 00 74 00 6c 00 65 00 "
    "0c 00 41 00 75 00 74 00 68 00 6f 00 72 00 0e 00 43 00 6f 00 6d 00 70 00 61 00 6e 00 79 00 "
    "64 00 00 00 00 00 06 00 00 00 00 00 10 00 00 0a 00 00 08 00 74 00 65 00 73 00 74 00 "
    "16 00 00 0a 01 00 0e 00 74 00 6d 00 63 00 63 00 75 00 6e 00 65 00 "
    "32 00 00 0a 02 00 2a 00 48 00 65 00 61 00 6c 00 74 00 68 00 20 00 4d 00 61 00 72 00 6b 00 65 00 74 00 "
    "20 00 53 00 63 00 69 00 65 00 6e 00 63 00 65 00");

int blob_error(ByteSpan blob) {
    try {
        parse_properties(blob);
        return 0;
    } catch (const Error& error) {
        return error.number();
    }
}

TEST(Properties, parse_column_blocks_gives_flags) {
    const PropertySet set = parse_properties(kThreeColumns);
    ASSERT_EQ(set.blocks.size(), 3u);
    EXPECT_EQ(set.blocks[1].owner, u"Name");
    EXPECT_EQ(set.blocks[1].type, jet4::properties::kColumnBlock);
    EXPECT_EQ(set.blocks[1].properties.size(), 3u);
    EXPECT_EQ(set.name_of(set.blocks[1].properties[2]), u"UnicodeCompression");
    EXPECT_EQ(set.blocks[1].properties[2].ddl, 1);
    EXPECT_FALSE(set.column_flag(u"Name", u"AllowZeroLength", true));
    EXPECT_TRUE(set.column_flag(u"memo", u"allowzerolength", false));
    EXPECT_TRUE(set.column_flag(u"ID", u"AllowZeroLength", true));
    EXPECT_FALSE(set.column_flag(u"ID", u"AllowZeroLength", false));
    EXPECT_FALSE(set.column_flag(u"nobody", u"Required", false));
}

TEST(Properties, parse_object_block_gives_texts) {
    const PropertySet set = parse_properties(kSummary);
    EXPECT_EQ(kSummary.size(), 152u);
    ASSERT_EQ(set.blocks.size(), 1u);
    EXPECT_EQ(set.blocks[0].type, jet4::properties::kObjectBlock);
    ASSERT_EQ(set.blocks[0].properties.size(), 3u);
    EXPECT_EQ(set.name_of(set.blocks[0].properties[0]), u"Title");
    EXPECT_EQ(set.blocks[0].properties[0].type, ColumnType::kText);
    EXPECT_EQ(set.blocks[0].properties[0].ddl, 0);
    EXPECT_EQ(set.data_of(set.blocks[0].properties[2]).size(), 42u);
}

TEST(Properties, build_after_parse_gives_same_bytes) {
    EXPECT_EQ(build_properties(parse_properties(kThreeColumns)), kThreeColumns);
    EXPECT_EQ(build_properties(parse_properties(kSummary)), kSummary);
}

TEST(Properties, empty_blob_is_empty_set_and_back) {
    EXPECT_TRUE(parse_properties({}).blocks.empty());
    EXPECT_TRUE(build_properties(PropertySet{}).empty());
}

TEST(Properties, set_flags_from_nothing_builds_known_blob) {
    PropertySet set;
    set.set_column_flag(u"ID", u"Required", false);
    set.set_column_flag(u"Name", u"Required", false);
    set.set_column_flag(u"Name", u"AllowZeroLength", false);
    set.set_column_flag(u"Name", u"UnicodeCompression", true);
    set.set_column_flag(u"Memo", u"Required", false);
    set.set_column_flag(u"Memo", u"AllowZeroLength", true);
    EXPECT_EQ(build_properties(set), kThreeColumns);
}

TEST(Properties, set_flag_of_existing_property_changes_one_byte) {
    PropertySet set = parse_properties(kThreeColumns);
    set.set_column_flag(u"NAME", u"required", true);
    const ByteVector blob = build_properties(set);
    ASSERT_EQ(blob.size(), kThreeColumns.size());
    std::size_t different = 0;
    for (std::size_t i = 0; i < blob.size(); ++i) different += blob[i] != kThreeColumns[i] ? 1u : 0u;
    EXPECT_EQ(different, 1u);
    EXPECT_TRUE(parse_properties(blob).column_flag(u"Name", u"Required", false));
}

TEST(Properties, set_flag_of_new_column_adds_block_behind_the_object_block) {
    PropertySet set = parse_properties(kSummary);
    set.set_column_flag(u"New", u"Required", true);
    const PropertySet back = parse_properties(build_properties(set));
    ASSERT_EQ(back.blocks.size(), 2u);
    EXPECT_EQ(back.blocks[0].type, jet4::properties::kObjectBlock);
    EXPECT_EQ(back.blocks[1].owner, u"New");
    EXPECT_EQ(back.names.size(), 4u);
    EXPECT_EQ(back.names[3], u"Required");
    EXPECT_TRUE(back.column_flag(u"New", u"Required", false));
}

TEST(Properties, remove_column_leaves_the_others) {
    PropertySet set = parse_properties(kThreeColumns);
    set.remove_column(u"name");
    ASSERT_EQ(set.blocks.size(), 2u);
    EXPECT_EQ(set.blocks[0].owner, u"ID");
    EXPECT_EQ(set.blocks[1].owner, u"Memo");
    EXPECT_EQ(parse_properties(build_properties(set)).names.size(), 3u);
}

TEST(Properties, column_flag_takes_any_nonzero_byte_for_true) {
    PropertySet set = parse_properties(kThreeColumns);
    set.set_data(set.blocks[1].properties[0], ByteVector{0, 0, 0, 0});
    EXPECT_FALSE(set.column_flag(u"Name", u"Required", true));
    set.set_data(set.blocks[1].properties[0], ByteVector{0, 0, 0, 0xFF});
    EXPECT_TRUE(set.column_flag(u"Name", u"Required", false));
}

TEST(Properties, object_block_is_no_column) {
    PropertySet set = parse_properties(kSummary);
    EXPECT_FALSE(set.column_flag(u"", u"Title", false));
}

TEST(Properties, parse_every_truncation_inside_a_block_is_damage) {
    int whole = 0;
    for (std::size_t length = 1; length < kThreeColumns.size(); ++length) {
        const int error = blob_error(ByteSpan(kThreeColumns).first(length));
        if (error == 0) {
            ++whole;  // ends between two blocks
        } else {
            EXPECT_EQ(error, errors::kDamaged) << length;
        }
    }
    EXPECT_EQ(whole, 4);
}

TEST(Properties, parse_foreign_mark_or_wrong_lengths_is_damage) {
    ByteVector blob = kThreeColumns;
    blob[0] = 'K';
    EXPECT_EQ(blob_error(blob), errors::kDamaged);
    blob = kThreeColumns;
    store_u32(blob, 4, 5);  // shorter than its own header
    EXPECT_EQ(blob_error(blob), errors::kDamaged);
    store_u32(blob, 4, 0xFFFFFFFF);
    EXPECT_EQ(blob_error(blob), errors::kDamaged);
    blob = kThreeColumns;
    store_u16(blob, 4 + 94 + 6 + 10 + 4, 7);  // the name's number of the first value
    EXPECT_EQ(blob_error(blob), errors::kDamaged);
}

TEST(Properties, parse_random_damage_never_does_worse_than_fail) {
    std::mt19937 random(2);
    int failures = 0;
    for (int round = 0; round < 20000; ++round) {
        ByteVector blob = kThreeColumns;
        for (int i = 0; i < 2; ++i) blob[random() % blob.size()] = static_cast<std::uint8_t>(random());
        const int error = blob_error(blob);
        if (error == 0) continue;
        ++failures;
        ASSERT_EQ(error, errors::kDamaged);
    }
    EXPECT_GT(failures, 1000);
}

// --- blobs in files of Access -------------------------------------------------------------------------

bool starts_like_blob(ByteSpan bytes) {
    return bytes.size() >= 4 && load_u32(bytes, 0) == jet4::properties::kMagicValue;
}

TEST(Properties, access_blobs_round_trip_to_the_byte) {
    const std::filesystem::path folder = KVDB_SAMPLES;
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no sample files";
    int blobs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".mdb") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        const ByteVector file(std::istreambuf_iterator<char>(in), {});
        if (load_u32(file, jet4::header::kVersion) != jet4::header::kVersionJet4) continue;
        const auto page_at = [&](PageNumber page_no) {
            return slice(file, page_no * jet4::kPageSize, jet4::kPageSize);
        };
        for (PageNumber page_no = 2; page_no < file.size() / jet4::kPageSize; ++page_no) {
            if (!DataPage::belongs_to(page_at(page_no), jet4::data::kLongValueOwner)) continue;
            const DataPage page(page_at(page_no), page_no);
            for (std::size_t i = 0; i < page.slot_count(); ++i) {
                const Slot slot = page.slot(i);
                if (!slot.is_live()) continue;
                ByteSpan row = page.row(slot);
                ByteVector blob(row.begin(), row.end());
                if (!starts_like_blob(row)) {
                    if (row.size() < 4 || !starts_like_blob(row.subspan(4))) continue;
                    blob.clear();  // the first piece of a chain
                    for (;;) {
                        append_bytes(blob, row.subspan(4));
                        const RowId next = RowId::unpack(load_u32(row, 0));
                        if (next.is_null()) break;
                        const DataPage next_page(page_at(next.page), next.page);
                        row = next_page.row(next_page.slot(next.slot));
                    }
                }
                SCOPED_TRACE(entry.path().filename().string() + " page " + std::to_string(page_no));
                PropertySet set;
                ASSERT_NO_THROW(set = parse_properties(blob));
                EXPECT_TRUE(build_properties(set) == blob);
                ++blobs;
            }
        }
    }
    EXPECT_GT(blobs, 50);
}

}  // namespace
