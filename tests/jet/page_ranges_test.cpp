#include "jet/pages/page_ranges.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>
#include <vector>

#include "jet/pages/journal_format.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

using Ranges = std::vector<std::pair<std::size_t, std::size_t>>;

// Of a page of zeros and the same page with other bytes at `places`.
Ranges ranges_of(const std::set<std::size_t>& places) {
    const ByteVector before(jet4::kPageSize, 0);
    ByteVector now = before;
    for (const std::size_t at : places) now[at] = 0x80;
    Ranges found;
    for (const PageRange& range : PageRanges(now.data(), before.data())) found.emplace_back(range.at, range.bytes);
    return found;
}

TEST(PageRanges, equal_pages_have_none) { EXPECT_EQ(ranges_of({}), Ranges{}); }

TEST(PageRanges, each_single_byte_is_one_range) {
    for (std::size_t at = 0; at < jet4::kPageSize; ++at) EXPECT_EQ(ranges_of({at}), (Ranges{{at, 1}}));
}

TEST(PageRanges, first_and_last_byte_are_two_ranges) {
    EXPECT_EQ(ranges_of({0, jet4::kPageSize - 1}), (Ranges{{0, 1}, {jet4::kPageSize - 1, 1}}));
}

TEST(PageRanges, whole_page_is_one_range) {
    std::set<std::size_t> places;
    for (std::size_t at = 0; at < jet4::kPageSize; ++at) places.insert(at);
    EXPECT_EQ(ranges_of(places), (Ranges{{0, jet4::kPageSize}}));
}

TEST(PageRanges, small_gap_is_bridged_and_a_larger_one_is_not) {
    for (std::size_t first = 500; first < 516; ++first) {
        for (std::size_t gap = 0; gap < 24; ++gap) {
            const std::size_t second = first + 1 + gap;
            const Ranges expected = gap < PageRanges::kGap ? Ranges{{first, gap + 2}} : Ranges{{first, 1}, {second, 1}};
            EXPECT_EQ(ranges_of({first, second}), expected) << first << " " << gap;
        }
    }
}

// As many ranges as a page can have.
TEST(PageRanges, bytes_a_gap_apart_are_all_found) {
    for (const std::size_t step : {PageRanges::kGap, PageRanges::kGap + 1}) {
        std::set<std::size_t> places;
        for (std::size_t at = 0; at < jet4::kPageSize; at += step) places.insert(at);
        const std::size_t expected = step > PageRanges::kGap ? places.size() : 1;
        EXPECT_EQ(ranges_of(places).size(), expected);
    }
}

// Whatever has changed: a record of it makes the one page of the other.
TEST(PageRanges, record_of_random_changes_gives_the_page_again) {
    Random random(5);
    ByteVector commit(journal::most_commit_bytes(1));
    for (int round = 0; round < 3000; ++round) {
        ByteVector before(jet4::kPageSize);
        for (std::uint8_t& byte : before) byte = random.byte();
        ByteVector now = before;
        for (std::uint32_t change = random() % 8; change > 0; --change) {
            const std::size_t at = random() % jet4::kPageSize;
            const std::size_t bytes = 1 + random() % (round % 10 == 0 ? jet4::kPageSize : 60);
            for (std::size_t i = at; i < std::min(at + bytes, jet4::kPageSize); ++i) now[i] = random.byte();
        }
        const JournalPage page{3, now.data(), before.data()};
        std::uint64_t checksum = 1;
        const std::size_t end = journal::store_commit(commit, {&page, 1}, 16, checksum);
        const ByteSpan body = ByteSpan(commit).first(end).subspan(journal::kCommitHeaderBytes);
        std::size_t next = 0;
        journal::Record record;
        ASSERT_TRUE(journal::load_record(body, next, record));
        ASSERT_EQ(next, body.size());
        if (record.bytes == 0) {
            ASSERT_EQ(ByteVector(body.begin() + 6, body.end()), now);
        } else {
            ASSERT_TRUE(journal::apply_ranges(body.subspan(record.at, record.bytes), before));
            ASSERT_EQ(before, now);
        }
    }
}

}  // namespace
}  // namespace jet
