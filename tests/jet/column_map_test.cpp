// The ordered map of one column, against a set.
#include "jet/tables/column_map.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using jet::ColumnMap;
using Entry = ColumnMap::Entry;

std::vector<Entry> content(const ColumnMap& map) {
    std::vector<Entry> entries;
    auto entry = map.lower_bound(Entry{});
    while (entry) {
        entries.push_back(*entry);
        Entry after = *entry;
        if (++after.row == 0) ++after.key;
        entry = map.lower_bound(after);
    }
    return entries;
}

TEST(ColumnMap, long_keys_keep_the_order_of_the_numbers) {
    EXPECT_LT(ColumnMap::key_of_long(INT32_MIN), ColumnMap::key_of_long(-1));
    EXPECT_LT(ColumnMap::key_of_long(-1), ColumnMap::key_of_long(0));
    EXPECT_LT(ColumnMap::key_of_long(0), ColumnMap::key_of_long(1));
    EXPECT_LT(ColumnMap::key_of_long(1), ColumnMap::key_of_long(INT32_MAX));
}

TEST(ColumnMap, date_keys_are_chronological_before_day_zero_too) {
    // 29 December 1899 00:00, 06:00, 23:59; 30 December 00:00, 06:00; later days.
    const double days[] = {-657434.0, -2.0, -1.0, -1.25, -1.999, 0.0, 0.25, 1.0, 38412.0, 38412.5, 2958465.9};
    for (std::size_t i = 1; i < std::size(days); ++i) {
        EXPECT_LT(ColumnMap::key_of_date(days[i - 1]), ColumnMap::key_of_date(days[i])) << days[i];
    }
    EXPECT_EQ(ColumnMap::key_of_date(0.0), ColumnMap::key_of_date(-0.0));
    EXPECT_EQ(ColumnMap::key_of_date(0.25), ColumnMap::key_of_date(-0.25));
}

TEST(ColumnMap, only_longs_and_dates_have_keys) {
    EXPECT_EQ(ColumnMap::key_of_long(7), ColumnMap::key_of(jet::Value(std::int32_t{7})));
    EXPECT_EQ(ColumnMap::key_of_date(7), ColumnMap::key_of(jet::Value(jet::Date{7})));
    EXPECT_FALSE(ColumnMap::key_of(jet::Value()));
    EXPECT_FALSE(ColumnMap::key_of(jet::Value(7.0)));
    EXPECT_FALSE(ColumnMap::key_of(jet::Value(std::int16_t{7})));
    EXPECT_FALSE(ColumnMap::key_of(jet::Value(std::u16string(u"7"))));
}

TEST(ColumnMap, entries_come_in_order_of_key_and_row) {
    ColumnMap map;
    for (const Entry& entry : {Entry{5, 2}, Entry{3, 9}, Entry{5, 1}, Entry{3, 9}}) map.insert(entry);
    EXPECT_EQ(3u, map.size());
    EXPECT_EQ((std::vector<Entry>{{3, 9}, {5, 1}, {5, 2}}), content(map));
}

TEST(ColumnMap, of_no_entries_nothing_is_found) {
    const ColumnMap map;
    EXPECT_EQ(0u, map.size());
    EXPECT_FALSE(map.lower_bound({}));
}

// Keys that follow one on another are not spelt out; a gap, a second row or an earlier key changes that.
TEST(ColumnMap, runs_of_keys_may_be_broken_at_any_place) {
    for (const std::uint32_t at : {0u, 1u, 255u, 256u, 511u, 512u, 513u, 998u, 999u}) {
        std::set<Entry> expected;
        ColumnMap map;
        for (std::uint32_t i = 0; i < 1000; ++i) {
            map.insert({100 + i, 7});
            expected.insert({100 + i, 7});
        }
        map.erase({100 + at, 7});
        expected.erase({100 + at, 7});
        ASSERT_EQ((std::vector<Entry>(expected.begin(), expected.end())), content(map)) << at;
        for (const Entry& entry : {Entry{100 + at, 9}, Entry{100 + at, 3}, Entry{50, 1}, Entry{2000, 1}}) {
            map.insert(entry);
            expected.insert(entry);
            ASSERT_EQ((std::vector<Entry>(expected.begin(), expected.end())), content(map)) << at;
        }
    }
}

TEST(ColumnMap, double_insert_and_erase_of_absent_change_nothing) {
    ColumnMap map;
    map.insert({1, 1});
    map.insert({1, 1});
    EXPECT_EQ(1u, map.size());
    map.erase({1, 2});
    map.erase({0, 1});
    map.erase({9, 1});
    EXPECT_EQ(1u, map.size());
    map.erase({1, 1});
    EXPECT_EQ(0u, map.size());
    map.erase({1, 1});
    EXPECT_EQ(0u, map.size());
}

TEST(ColumnMap, growing_keys_are_all_found) {
    ColumnMap map;
    for (std::uint32_t i = 0; i < 100000; ++i) map.insert({i, i});
    EXPECT_EQ(100000u, map.size());
    for (std::uint32_t i = 0; i < 100000; i += 777) EXPECT_EQ((Entry{i, i}), map.lower_bound({i, 0}));
    EXPECT_FALSE(map.lower_bound({100000, 0}));
}

TEST(ColumnMap, random_changes_agree_with_a_set) {
    std::mt19937 random(99);
    const auto any = [&random](std::uint32_t below) { return static_cast<std::uint32_t>(random() % below); };
    for (const std::uint32_t keys : {5u, 300u, 100000u}) {
        std::set<Entry> expected;
        ColumnMap map;
        for (int i = 0; i < 2000; ++i) {
            const Entry entry{any(keys), any(1000)};
            map.insert(entry);
            expected.insert(entry);
        }
        for (int round = 0; round < 30000; ++round) {
            const Entry entry{any(keys), any(1000)};
            // Phases of growing and of shrinking, so that blocks split and vanish.
            const bool grow = (round / 5000) % 2 == 0 ? any(4) != 0 : any(4) == 0;
            if (grow) {
                map.insert(entry);
                expected.insert(entry);
            } else {
                const auto victim = expected.lower_bound(entry);
                const Entry gone = victim == expected.end() ? entry : *victim;
                map.erase(gone);
                expected.erase(gone);
            }
            const auto found = map.lower_bound(entry);
            const auto wanted = expected.lower_bound(entry);
            ASSERT_EQ(wanted != expected.end(), found.has_value());
            if (found) {
                ASSERT_EQ(*wanted, *found);
            }
        }
        EXPECT_EQ(expected.size(), map.size());
        EXPECT_EQ((std::vector<Entry>(expected.begin(), expected.end())), content(map));
    }
}

}  // namespace
