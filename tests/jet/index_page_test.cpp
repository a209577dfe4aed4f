// The page codec of indexes.
#include "jet/indexes/index_page.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/jet/index_entries.h"

namespace {

using namespace jet;
namespace format = jet4::index;

using PageBytes = ByteVector;

IndexPage parse(const PageBytes& page) { return IndexPage::parse(page, 9, kTable); }

TEST(IndexPage, write_four_entries_gives_known_bytes) {
    IndexPage page(true, 0, kTable);
    page.insert(0, entry_of(long_key(2), {62, 2}));
    for (std::uint32_t i = 1; i < 4; ++i) page.insert(i, entry_of(long_key(2 + i), {62, 9}));
    PageBytes bytes(jet4::kPageSize, 0xAA);
    page.write(bytes);
    EXPECT_EQ(bytes_of(slice(bytes, 0, 2)), (ByteVector{4, 1}));
    EXPECT_EQ(load_u16(bytes, format::kFree), jet4::kPageSize - 516);
    EXPECT_EQ(bytes_of(slice(bytes, format::kBitmap, 6)), (ByteVector{0x00, 0x02, 0x04, 0x08, 0x10, 0x00}));
    EXPECT_EQ(bytes_of(slice(bytes, format::kEntries, 9)), (ByteVector{0x7F, 0x80, 0, 0, 2, 0, 0, 0x3E, 2}));
    EXPECT_EQ(bytes[jet4::kPageSize - 1], 0);
}

TEST(IndexPage, parse_shared_prefix_gives_whole_entries) {
    PageBytes bytes(jet4::kPageSize);
    bytes[0] = jet4::kIndexLeafPage;
    store_u32(bytes, format::kOwner, kTable);
    store_u16(bytes, format::kPrefix, 3);
    const ByteVector area{0x80, 0x7F, 0xFF, 0xFF, 0xEB, 0, 0, 0x11, 1,  // whole
                          0xFF, 0xEC, 0,    0,    0x11, 0};             // without 80 7F FF
    store_bytes(bytes, format::kEntries, area);
    bytes[format::kBitmap + 1] = 0x82;  // ends at 9 and 15
    const IndexPage page = parse(bytes);
    ASSERT_EQ(page.size(), 2u);
    EXPECT_EQ(bytes_of(page.entry(1)), (ByteVector{0x80, 0x7F, 0xFF, 0xFF, 0xEC, 0, 0, 0x11, 0}));
    EXPECT_EQ(page.stored_bytes, 15u);
    EXPECT_TRUE(page.is_sorted());
}

TEST(IndexPage, parse_node_gives_children) {
    PageBytes bytes(jet4::kPageSize);
    bytes[0] = jet4::kIndexNodePage;
    bytes[format::kLevel] = 1;
    store_u32(bytes, format::kOwner, kTable);
    store_u32(bytes, format::kTail, 0x21);
    store_bytes(bytes, format::kEntries, ByteVector{0x80, 0x7F, 0xFF, 0xFF, 0xEC, 0, 0, 0x11, 0, 0, 0, 0, 0x20});
    bytes[format::kBitmap + 1] = 0x20;
    const IndexPage page = parse(bytes);
    ASSERT_EQ(page.size(), 1u);
    EXPECT_EQ(page.child_count(), 2u);
    EXPECT_EQ(page.child(0), 0x20u);
    EXPECT_EQ(page.child(1), 0x21u);
    EXPECT_EQ(page.entry(0).size(), 9u);
    PageBytes again(jet4::kPageSize);
    page.write(again);
    EXPECT_EQ(bytes_of(slice(again, format::kEntries, 13)), bytes_of(slice(bytes, format::kEntries, 13)));
    EXPECT_EQ(parse(again).level(), 1);
}

TEST(IndexPage, write_shortens_only_where_needed) {
    IndexPage page(true, 0, kTable);
    PageBytes bytes(jet4::kPageSize);
    std::uint32_t count = 0;
    for (; count < 401; ++count) page.insert(count, entry_of(long_key(count), {7, 0}));
    page.write(bytes);
    EXPECT_EQ(load_u16(bytes, format::kPrefix), 0);  // 401 x 9 = 3609 bytes
    page.insert(count, entry_of(long_key(count), {7, 0}));
    ASSERT_TRUE(page.fits());
    page.write(bytes);
    EXPECT_EQ(load_u16(bytes, format::kPrefix), 3);
    const IndexPage back = parse(bytes);
    ASSERT_EQ(back.size(), 402u);
    for (std::size_t i = 0; i < back.size(); ++i) EXPECT_EQ(bytes_of(back.entry(i)), bytes_of(page.entry(i)));
}

TEST(IndexPage, prefix_stays_out_of_the_row_pointer) {
    IndexPage page(true, 0, kTable);
    const ByteVector key(20, 0x42);  // one key, many rows on one page
    for (std::uint32_t i = 0; i < 200; ++i) page.insert(i, entry_of(key, {0x010203, static_cast<std::uint8_t>(i)}));
    PageBytes bytes(jet4::kPageSize);
    ASSERT_TRUE(page.fits());
    page.write(bytes);
    EXPECT_EQ(load_u16(bytes, format::kPrefix), 20);
    EXPECT_EQ(bytes_of(parse(bytes).entry(199)), bytes_of(page.entry(199)));
}

TEST(IndexPage, parse_of_damaged_page_fails_or_stays_inside) {
    std::mt19937 random(3);
    int failures = 0;
    for (int round = 0; round < 3000; ++round) {
        IndexPage page(round % 2 == 0, 0, kTable);
        for (std::uint32_t i = 0; i < 100; ++i) page.insert(i, entry_of(long_key(i), {7, 0}), 8 + i);
        PageBytes bytes(jet4::kPageSize);
        page.write(bytes);
        const std::size_t at = format::kPrefix + random() % (format::kBitmapBytes + 3);
        bytes[at] = static_cast<std::uint8_t>(random());
        try {
            const IndexPage back = parse(bytes);
            for (std::size_t i = 0; i < back.size(); ++i) ASSERT_GE(back.entry(i).size(), 4u);
        } catch (const Error& error) {
            ASSERT_EQ(error.number(), errors::kDamaged);
            ++failures;
        }
    }
    EXPECT_GT(failures, 100);
}

TEST(IndexPage, parse_of_foreign_page_is_damage) {
    PageBytes bytes(jet4::kPageSize);
    const auto error_of = [&] {
        try {
            parse(bytes);
            return 0;
        } catch (const Error& error) {
            return error.number();
        }
    };
    bytes[0] = jet4::kDataPage;
    store_u32(bytes, format::kOwner, kTable);
    EXPECT_EQ(error_of(), errors::kDamaged);
    bytes[0] = jet4::kIndexLeafPage;
    EXPECT_EQ(error_of(), 0);
    store_u32(bytes, format::kOwner, kTable + 1);
    EXPECT_EQ(error_of(), errors::kDamaged);
    store_u32(bytes, format::kOwner, kTable);
    bytes[format::kBitmap + format::kBitmapBytes - 1] = 0x80;  // ends behind the page
    EXPECT_EQ(error_of(), errors::kDamaged);
}

TEST(IndexPage, access_pages_survive_rewriting) {
    const std::filesystem::path folder = KVDB_SAMPLES;
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no sample files";
    int pages = 0;
    for (const auto& file_entry : std::filesystem::directory_iterator(folder)) {
        if (file_entry.path().extension() != ".mdb") continue;
        std::ifstream in(file_entry.path(), std::ios::binary);
        const ByteVector file(std::istreambuf_iterator<char>(in), {});
        if (load_u32(file, jet4::header::kVersion) != jet4::header::kVersionJet4) continue;
        for (PageNumber page_no = 2; page_no < file.size() / jet4::kPageSize; ++page_no) {
            const ByteSpan bytes = slice(file, page_no * jet4::kPageSize, jet4::kPageSize);
            if (bytes[0] != jet4::kIndexNodePage && bytes[0] != jet4::kIndexLeafPage) continue;
            SCOPED_TRACE(file_entry.path().filename().string() + " page " + std::to_string(page_no));
            const PageNumber owner = load_u32(bytes, format::kOwner);
            const IndexPage page = IndexPage::parse(bytes, page_no, owner);
            EXPECT_TRUE(page.is_sorted());
            EXPECT_EQ(page.stored_bytes + load_u16(bytes, format::kFree), format::kEntryBytes);
            ASSERT_TRUE(page.fits());
            PageBytes again(jet4::kPageSize);
            page.write(again);
            const IndexPage back = IndexPage::parse(again, page_no, owner);
            ASSERT_EQ(back.size(), page.size());
            for (std::size_t i = 0; i < page.size(); ++i) {
                EXPECT_EQ(bytes_of(back.entry(i)), bytes_of(page.entry(i)));
                EXPECT_EQ(back.child(i), page.child(i));
            }
            EXPECT_EQ(back.previous, page.previous);
            EXPECT_EQ(back.next, page.next);
            EXPECT_EQ(back.tail, page.tail);
            EXPECT_EQ(back.level(), page.level());
            ++pages;
        }
    }
    EXPECT_GT(pages, 100);
}

}  // namespace
