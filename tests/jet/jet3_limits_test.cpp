// Where a Jet 3 file ends, and how its map of free pages gets there.
#include <gtest/gtest.h>

#include <set>

#include "jet/storage/data_page.h"
#include "jet/storage/usage_map.h"
#include "tests/jet/engine_fixture.h"
#include "tests/jet/sparse_file_system.h"

namespace jet {
namespace {

namespace usage = jet4::usage;

class Jet3Limits : public ::testing::Test {
protected:
    // A file of so many pages, with that row as its map of free pages.
    void make_file(PageNumber pages, ByteSpan map_row) {
        auto file = sparse_.open(kPath, os::OpenMode::kCreateExclusive);
        CreateOptions options;
        options.creation_date = 42329.5;
        options.format = &kJet3;
        file->write(0, build_empty_database(options));
        file->truncate(std::uint64_t{pages} * kJet3.page_size);
        ByteVector map_page(kJet3.page_size);
        format_data_page(map_page, 1);
        add_row(map_page, 1, map_row);
        file->write(std::uint64_t{jet4::kGlobalMapPage} * kJet3.page_size, map_page);
    }
    void start() {
        PagerOptions options;
        options.sync_interval = std::chrono::hours(24);
        pager_ = std::make_unique<Pager>(sparse_, sparse_.open(kPath, os::OpenMode::kExclusive), kPath, options);
        allocator_ = std::make_unique<PageAllocator>(*pager_);
        pager_->set_rollback_listener([this] { allocator_->forget(); });
    }
    // Takes pages until the file refuses, at most so many; returns the error, or 0.
    int take(std::size_t most) {
        for (std::size_t i = 0; i < most; ++i) {
            pager_->begin();
            const int error = error_number([&] { EXPECT_TRUE(taken_.insert(allocator_->allocate().number()).second); });
            error == 0 ? pager_->commit() : pager_->rollback();
            if (error != 0) return error;
        }
        return 0;
    }

    static constexpr char kPath[] = "a.mdb";
    static constexpr std::uint32_t kPerBitmap = 16352;
    SparseFileSystem sparse_;
    testing_support::UseFileSystem use_{sparse_};
    std::unique_ptr<PageAllocator> allocator_;
    std::unique_ptr<Pager> pager_;
    std::set<PageNumber> taken_;
};

TEST_F(Jet3Limits, map_of_free_pages_goes_to_bitmap_pages_after_page_1023) {
    ByteVector row(kJet3.usage.default_row, 0xFF);
    row[0] = usage::kInline;
    store_u32(row, usage::kStart, 0);
    constexpr PageNumber kBefore = 1000;
    for (PageNumber page = 0; page < kBefore; ++page) {
        row[usage::kBitmap + page / 8] &= static_cast<std::uint8_t>(~(1u << (page % 8)));
    }
    make_file(kBefore, row);
    start();
    EXPECT_EQ(take(20000), 0);
    const std::vector<PageNumber> bitmaps = allocator_->bitmap_pages();
    EXPECT_EQ(bitmaps.size(), 2u);
    for (const PageNumber page : bitmaps) EXPECT_FALSE(taken_.contains(page));
    EXPECT_EQ(*taken_.begin(), kBefore);
    EXPECT_EQ(*taken_.rbegin(), kBefore + 20000 + bitmaps.size() - 1);
}

TEST_F(Jet3Limits, file_ends_at_one_gigabyte) {
    constexpr PageNumber kBefore = 523000;
    constexpr PageNumber kFirstBitmap = 20;
    constexpr std::uint32_t kBitmaps = 32;
    ByteVector row(kJet3.usage.default_row);
    row[0] = usage::kReference;
    for (std::uint32_t k = 0; k < kBitmaps; ++k) store_u32(row, 1 + 4 * k, kFirstBitmap + k);
    make_file(kBefore, row);
    {
        auto file = sparse_.open(kPath, os::OpenMode::kExclusive);
        ByteVector bitmap(kJet3.page_size);
        bitmap[0] = jet4::kUsageBitmapPage;
        bitmap[1] = 1;
        for (std::uint32_t k = 0; k < kBitmaps; ++k) {
            for (std::uint32_t page = kBefore; k + 1 == kBitmaps && page < kBitmaps * kPerBitmap; ++page) {
                bitmap[usage::kPagePrefix + page % kPerBitmap / 8] |= static_cast<std::uint8_t>(1u << (page % 8));
            }
            file->write(std::uint64_t{kFirstBitmap + k} * kJet3.page_size, bitmap);
        }
    }
    start();
    EXPECT_EQ(take(10000), errors::kFileTooLarge);
    EXPECT_EQ(std::uint64_t{pager_->page_count()} * kJet3.page_size, std::uint64_t{1} << 30);
    EXPECT_EQ(taken_.size(), jet4::kMaxPages - kBefore - 1) << "one page went to the last bitmap";
    EXPECT_EQ(allocator_->bitmap_pages().size(), kBitmaps + 1);
    pager_->begin();
    allocator_->free(400000);
    pager_->commit();
    EXPECT_EQ(take(1), 0);
    EXPECT_TRUE(taken_.contains(400000));
}

}  // namespace
}  // namespace jet
