// The bytes of a journal, of today's kind and of the former one.
#include "jet/pages/journal_format.h"

#include <gtest/gtest.h>

#include <set>

#include "jet/pages/checksum.h"
#include "jet/pages/page_ranges.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/former_journal.h"

namespace jet {
namespace {

std::string hex_of(ByteSpan bytes) { return detail::hex(bytes).substr(1); }

TEST(JournalFormat, header_has_these_bytes) {
    ByteVector bytes(journal::kHeaderBytes);
    const std::uint64_t checksum = journal::store_header(bytes, {77, 5, 9}, 0x1122334455667788);
    EXPECT_EQ(hex_of(bytes),
              "6b7664626a726e32"
              "0010000000000000"
              "4d00000000000000"
              "0500000000000000"
              "8877665544332211"
              "0900000000000000"
              "0000000000000000"
              "7cd37fc46eb53d29");
    EXPECT_EQ(load_u64(bytes, 56), checksum);
    journal::Header header;
    ASSERT_TRUE(journal::load_header(bytes, header));
    EXPECT_EQ(header.kind, journal::Kind::kChanges);
    EXPECT_EQ(header.checksum, checksum);
    EXPECT_EQ(header.binding.identity, 77u);
    EXPECT_EQ(header.binding.base_counter, 5u);
    EXPECT_EQ(header.binding.next_counter, 9u);
}

TEST(JournalFormat, commit_has_these_bytes) {
    const ByteVector before(jet4::kPageSize, 1);
    ByteVector now = before;
    now[0] = 2;
    now[100] = 3;
    now[102] = 4;
    now[4095] = 5;
    const JournalPage pages[] = {{7, now.data(), before.data()}, {0x01020304, now.data(), nullptr}};
    ByteVector bytes(journal::most_commit_bytes(2));
    std::uint64_t checksum = 0x1122334455667788;
    bytes.resize(journal::store_commit(bytes, pages, 18, checksum));
    const std::size_t whole_at = 24 + 6 + (4 + 1) + (4 + 3) + (4 + 1);
    ASSERT_EQ(bytes.size(), whole_at + 6 + jet4::kPageSize);
    EXPECT_EQ(hex_of(ByteSpan(bytes).first(whole_at + 6)),
              "434d4954"
              "02000000"
              "12000000"
              "1d100000"
              "eb04ca3d10622fc1"
              "07000000"
              "1100"
              "0000"
              "0100"
              "02"
              "6400"
              "0300"
              "030104"
              "ff0f"
              "0100"
              "05"
              "04030201"
              "0000");
    EXPECT_EQ(ByteVector(bytes.end() - jet4::kPageSize, bytes.end()), now);
    EXPECT_EQ(load_u64(bytes, 16), checksum);
}

// Taken from a journal that a build which wrote the former kind has made.
TEST(JournalFormat, former_kind_has_these_bytes) {
    FormerJournal journal({77, 5, 9}, 0xd3f28d3f88b8c5cb);
    const auto page = [](PageNumber page_no, std::uint8_t fill) {
        return FormerJournal::WholePage{page_no, ByteVector(jet4::kPageSize, fill)};
    };
    journal.commit({page(5, 1), page(9, 1)}, 18);
    journal.commit({page(5, 2)}, 18);
    journal.commit({page(20, 3), page(6, 3)}, 21);
    const ByteSpan bytes = journal.bytes();
    ASSERT_EQ(bytes.size(), 20636u);
    EXPECT_EQ(hex_of(bytes.first(64)),
              "6b7664626a726e3100100000000000004d000000000000000500000000000000"
              "cbc5b8883f8df2d3090000000000000000000000000000004860a3e3f2debe7e");
    EXPECT_EQ(hex_of(bytes.subspan(64, 32)), "434d4954020000001200000000000000118859db7aab008e0500000009000000");
    EXPECT_EQ(hex_of(bytes.subspan(64 + 24 + 2 * 4100, 28)),
              "434d49540100000012000000000000001536eacff4b19f5005000000");
    EXPECT_EQ(hex_of(bytes.subspan(64 + 2 * 24 + 3 * 4100, 32)),
              "434d4954020000001500000000000000b3c791e1c47b34221400000006000000");
    journal::Header header;
    ASSERT_TRUE(journal::load_header(bytes, header));
    EXPECT_EQ(header.kind, journal::Kind::kPages);
}

TEST(JournalFormat, page_that_differs_all_over_is_written_whole) {
    const ByteVector before(jet4::kPageSize, 1);
    ByteVector now = before;
    for (std::size_t at = 0; at < now.size(); at += PageRanges::kGap + 1) now[at] = 2;
    for (std::size_t at = 0; at < 3000; ++at) now[at] = 2;
    ByteVector all(jet4::kPageSize, 2);
    ByteVector bytes(journal::most_commit_bytes(1));
    for (const ByteVector& page : {now, all}) {
        const JournalPage changed{7, page.data(), before.data()};
        std::uint64_t checksum = 0;
        const std::size_t size = journal::store_commit(bytes, {&changed, 1}, 18, checksum);
        EXPECT_LE(size, journal::most_commit_bytes(1));
        EXPECT_EQ(load_u16(bytes, journal::kCommitHeaderBytes + 4) == 0, page == all);
    }
}

TEST(JournalFormat, ranges_that_leave_the_page_are_refused) {
    struct Case {
        ByteVector ranges;
        bool is_right;
    };
    const Case cases[] = {
        {{}, true},
        {{0, 0, 1, 0, 9}, true},
        {{0xFF, 0x0F, 1, 0, 9}, true},
        {{0xFF, 0x0F, 1, 0, 9, 0, 0, 1, 0, 9}, true},
        {{0, 0x10, 1, 0, 9}, false},
        {{0xFF, 0x0F, 2, 0, 9, 9}, false},
        {{0xFF, 0xFF, 1, 0, 9}, false},
        {{0, 0, 0, 0}, false},
        {{0, 0, 2, 0, 9}, false},
        {{0, 0, 1}, false},
        {{0, 0, 1, 0, 9, 1}, false},
    };
    for (const Case& c : cases) {
        ByteVector page(jet4::kPageSize);
        EXPECT_EQ(journal::apply_ranges(c.ranges, page), c.is_right) << hex_of(c.ranges);
    }
}

TEST(JournalFormat, checksum_depends_on_every_byte_its_place_and_the_seed) {
    ByteVector bytes(100, 0);
    const std::uint64_t plain = checksum64(bytes, 1);
    EXPECT_NE(plain, checksum64(bytes, 2));
    EXPECT_NE(plain, checksum64(ByteSpan(bytes).first(99), 1));
    std::set<std::uint64_t> seen{plain};
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int value : {1, 128, 255}) {
            bytes[at] = static_cast<std::uint8_t>(value);
            EXPECT_TRUE(seen.insert(checksum64(bytes, 1)).second) << at;
        }
        bytes[at] = 0;
    }
}

}  // namespace
}  // namespace jet
