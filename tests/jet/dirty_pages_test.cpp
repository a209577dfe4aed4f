#include "jet/pages/dirty_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "tests/support/fault_file_system.h"

using namespace jet;
using testing_support::Operation;

namespace {

constexpr char kDirtyPath[] = "x.mdb";

class DirtyPagesTest : public testing::Test {
protected:
    // Every page holds its own number.
    void add(PageNumber page_no) {
        const FrameRef place = cache_.add(page_no);
        std::fill_n(place.bytes, jet4::kPageSize, static_cast<std::uint8_t>(page_no));
        dirty_.make_room(1);
        dirty_.add(*place.frame);
    }
    bool is_dirty(PageNumber page_no) const { return cache_.find(page_no).frame->dirty; }
    int stored(PageNumber page_no) const { return disk_.content(kDirtyPath).at(page_no * jet4::kPageSize + 100); }

    testing_support::FaultFileSystem disk_;
    std::unique_ptr<os::File> file_ = disk_.open(kDirtyPath, os::OpenMode::kCreateExclusive);
    PageCache cache_{256};
    DirtyPages dirty_;
};

}  // namespace

TEST_F(DirtyPagesTest, every_page_is_written_to_its_place_and_clean_after_it) {
    for (const PageNumber page_no : {9, 2, 5}) add(page_no);
    dirty_.write_to(*file_, cache_);
    for (const PageNumber page_no : {9, 2, 5}) {
        EXPECT_EQ(stored(page_no), static_cast<int>(page_no));
        EXPECT_FALSE(is_dirty(page_no));
    }
    EXPECT_EQ(dirty_.written(), 3u);
}

TEST_F(DirtyPagesTest, neighbours_go_in_one_write) {
    for (const PageNumber page_no : {4, 3, 2, 20}) add(page_no);
    disk_.reset_counts();
    dirty_.write_to(*file_, cache_);
    EXPECT_EQ(disk_.count(Operation::kWrite), 2u);
    EXPECT_EQ(stored(3), 3);
}

TEST_F(DirtyPagesTest, page_that_is_dirty_already_is_written_once) {
    add(7);
    dirty_.add(*cache_.find(7).frame);
    dirty_.write_to(*file_, cache_);
    EXPECT_EQ(dirty_.written(), 1u);
}

TEST_F(DirtyPagesTest, nothing_dirty_writes_nothing) {
    disk_.reset_counts();
    dirty_.write_to(*file_, cache_);
    EXPECT_EQ(disk_.count(Operation::kWrite), 0u);
}

TEST_F(DirtyPagesTest, refused_write_leaves_all_of_them_dirty) {
    for (const PageNumber page_no : {2, 9}) add(page_no);
    disk_.plan({.operation = Operation::kWrite, .nth = 2});
    EXPECT_THROW(dirty_.write_to(*file_, cache_), os::FileError);
    EXPECT_TRUE(is_dirty(2));
    EXPECT_TRUE(is_dirty(9));
    disk_.clear_faults();
    dirty_.write_to(*file_, cache_);
    EXPECT_EQ(stored(2), 2);
    EXPECT_EQ(stored(9), 9);
}
