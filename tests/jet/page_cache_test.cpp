#include "jet/pages/page_cache.h"

#include <gtest/gtest.h>

using namespace jet;

namespace {

constexpr std::size_t kLimit = 4;

class PageCacheTest : public testing::Test {
protected:
    void fill(PageNumber first, std::size_t count) {
        for (PageNumber page = first; page < first + count; ++page) cache_.add(page);
    }
    bool holds(PageNumber page) const { return static_cast<bool>(cache_.find(page)); }

    PageCache cache_{kLimit};
};

}  // namespace

TEST_F(PageCacheTest, page_that_was_added_is_found_with_its_bytes) {
    cache_.add(7).bytes[10] = 42;
    const FrameRef found = cache_.find(7);
    ASSERT_TRUE(found);
    EXPECT_EQ(found.frame->page_no, 7u);
    EXPECT_EQ(found.page()[10], 42);
    EXPECT_FALSE(holds(8));
}

TEST_F(PageCacheTest, full_cache_evicts_one_page_for_another) {
    fill(0, kLimit);
    cache_.add(100);
    std::size_t left = 0;
    for (PageNumber page = 0; page < kLimit; ++page) left += holds(page) ? 1 : 0;
    EXPECT_EQ(left, kLimit - 1);
    EXPECT_TRUE(holds(100));
}

TEST_F(PageCacheTest, pinned_dirty_and_changed_pages_are_not_evicted) {
    fill(0, kLimit);
    cache_.find(0).frame->pins = 1;
    cache_.find(1).frame->dirty = true;
    cache_.find(2).frame->saved_level = 1;
    for (PageNumber page = 100; page < 120; ++page) cache_.add(page);
    EXPECT_TRUE(holds(0));
    EXPECT_TRUE(holds(1));
    EXPECT_TRUE(holds(2));
    EXPECT_FALSE(holds(3));
}

TEST_F(PageCacheTest, cache_grows_while_no_page_can_be_evicted) {
    fill(0, kLimit);
    for (PageNumber page = 0; page < kLimit; ++page) cache_.find(page).frame->dirty = true;
    fill(100, 10);
    for (PageNumber page = 0; page < kLimit; ++page) EXPECT_TRUE(holds(page)) << page;
}

TEST_F(PageCacheTest, page_in_use_outlives_those_that_an_enumeration_passes) {
    fill(0, kLimit);
    for (PageNumber page = 100; page < 110; ++page) {
        cache_.use(0);
        cache_.use(1);
        cache_.add(page);
    }
    EXPECT_TRUE(holds(0));
    EXPECT_TRUE(holds(1));
}

TEST_F(PageCacheTest, removed_page_is_gone_and_its_pins_stay_counted) {
    Frame& frame = *cache_.add(5).frame;
    frame.pins = 2;
    frame.dirty = true;
    cache_.remove(frame);
    EXPECT_FALSE(holds(5));
    EXPECT_EQ(frame.pins, 2u);
    EXPECT_FALSE(frame.dirty);
}
