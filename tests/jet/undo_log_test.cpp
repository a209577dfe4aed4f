#include "jet/pages/undo_log.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace jet;

namespace {

// A cache with one page, and a log over it.
class UndoLogTest : public testing::Test {
protected:
    UndoLogTest() {
        std::fill_n(place_.bytes, jet4::kPageSize, std::uint8_t{0});  // a new frame holds whatever the memory held
        place_.bytes[0] = 1;
    }

    void begin() { log_.begin(1); }
    void change(std::uint8_t value) {
        log_.save(place_);
        place_.bytes[0] = value;
    }
    FrameRef add_page(PageNumber page_no) {
        log_.make_room_for_new();
        const FrameRef added = cache_.add(page_no);
        log_.add_new(added);
        return added;
    }
    int content() const { return place_.bytes[0]; }

    PageCache cache_{8};
    FrameRef place_ = cache_.add(0);
    UndoLog log_;
};

}  // namespace

TEST_F(UndoLogTest, rolling_back_gives_the_bytes_of_the_level_s_beginning) {
    begin();
    change(2);
    change(3);
    log_.roll_back(cache_);
    EXPECT_EQ(content(), 1);
    EXPECT_EQ(log_.depth(), 0);
    EXPECT_EQ(place_.frame->saved_level, 0);
}

TEST_F(UndoLogTest, inner_level_rolled_back_leaves_the_outer_one_s_change) {
    begin();
    change(2);
    begin();
    change(3);
    log_.roll_back(cache_);
    EXPECT_EQ(content(), 2);
    EXPECT_EQ(place_.frame->saved_level, 1);
    log_.roll_back(cache_);
    EXPECT_EQ(content(), 1);
}

TEST_F(UndoLogTest, merged_level_is_rolled_back_with_the_outer_one) {
    begin();
    begin();
    change(3);
    log_.merge();
    EXPECT_EQ(content(), 3);
    EXPECT_EQ(log_.entries().size(), 1u);
    log_.roll_back(cache_);
    EXPECT_EQ(content(), 1);
}

TEST_F(UndoLogTest, page_that_both_levels_changed_keeps_the_outer_image) {
    begin();
    change(2);
    begin();
    change(3);
    log_.merge();
    EXPECT_EQ(log_.entries().size(), 1u);
    log_.roll_back(cache_);
    EXPECT_EQ(content(), 1);
}

TEST_F(UndoLogTest, accepted_changes_stand) {
    begin();
    change(2);
    log_.accept();
    EXPECT_EQ(content(), 2);
    EXPECT_EQ(log_.depth(), 0);
    EXPECT_EQ(place_.frame->saved_level, 0);
}

TEST_F(UndoLogTest, added_page_leaves_the_cache_when_it_is_rolled_back) {
    begin();
    add_page(9);
    log_.roll_back(cache_);
    EXPECT_FALSE(cache_.find(9));
}

TEST_F(UndoLogTest, page_changed_back_is_no_change) {
    begin();
    change(2);
    place_.bytes[0] = 1;
    EXPECT_FALSE(log_.find_changes());
    EXPECT_FALSE(log_.entries()[0].changed);
    place_.bytes[4095] = 1;
    EXPECT_TRUE(log_.find_changes());
    log_.accept();
}

TEST_F(UndoLogTest, added_page_is_a_change_whatever_it_holds) {
    begin();
    add_page(9);
    EXPECT_TRUE(log_.find_changes());
    log_.accept();
}

TEST_F(UndoLogTest, level_knows_how_long_the_file_was) {
    log_.begin(10);
    log_.begin(12);
    EXPECT_EQ(log_.page_count_before(), 12u);
    log_.merge();
    EXPECT_EQ(log_.page_count_before(), 10u);
    log_.accept();
}
