#include "jet/storage/usage_map.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>

#include "jet/storage/data_page.h"
#include "tests/jet/pager_fixture.h"
#include "tests/jet/sparse_file_system.h"

namespace jet {
namespace {

namespace usage = jet4::usage;

// A pager over a new file, in one transaction for the whole test.
class UsageMapTest : public ::testing::Test {
protected:
    UsageMapTest() {
        auto file = sparse_.open(kPath, os::OpenMode::kCreateExclusive);
        CreateOptions options;
        options.creation_date = 42329.5;
        file->write(0, build_empty_database(options));
    }
    void start() {
        PagerOptions options;
        options.sync_interval = std::chrono::hours(24);
        options.cache_pages = 2000;
        pager_ = std::make_unique<Pager>(sparse_, sparse_.open(kPath, os::OpenMode::kExclusive), kPath, options);
        allocator_ = std::make_unique<PageAllocator>(*pager_);
        pager_->set_rollback_listener([this] { allocator_->forget(); });
        pager_->begin();
    }
    void start_again() {
        pager_.reset();
        start();
    }
    // As much work as one transaction should hold has been done.
    void commit() {
        pager_->commit();
        pager_->begin();
    }
    void extend_to(std::uint32_t pages) {
        while (pager_->page_count() < pages) pager_->extend();
    }
    UsageMap new_map() { return {*pager_, *allocator_, allocator_->create_map(&map_page_)}; }
    ByteVector bytes_of(const UsageMap& map) {
        const Page page = pager_->read(map.row().page);
        const DataPage data(page.bytes(), map.row().page);
        const ByteSpan row = data.row(data.slot(map.row().slot));
        return {row.begin(), row.end()};
    }
    static std::set<PageNumber> members(const UsageMap& map) {
        std::set<PageNumber> found;
        for (auto page = map.next(0); page; page = map.next(*page + 1)) found.insert(*page);
        return found;
    }

    static constexpr char kPath[] = "a.mdb";
    SparseFileSystem sparse_;
    testing_support::UseFileSystem use_{sparse_};
    std::unique_ptr<PageAllocator> allocator_;
    std::unique_ptr<Pager> pager_;
    PageNumber map_page_ = 0;
};

TEST_F(UsageMapTest, new_map_is_an_empty_inline_row) {
    start();
    const UsageMap map = new_map();
    EXPECT_EQ(bytes_of(map), ByteVector(usage::kDefaultRow));
    EXPECT_FALSE(map.next(0));
    EXPECT_FALSE(map.contains(0));
    EXPECT_TRUE(map.bitmap_pages().empty());
}

TEST_F(UsageMapTest, map_made_with_a_member_has_it) {
    start();
    const UsageMap map(*pager_, *allocator_, allocator_->create_map(&map_page_, 1003));
    EXPECT_EQ(members(map), std::set<PageNumber>{1003});
    EXPECT_EQ(load_u32(bytes_of(map), usage::kStart), 1000u);
}

TEST_F(UsageMapTest, inline_bits_lie_where_the_format_has_them) {
    start();
    UsageMap map = new_map();
    map.add(0);
    map.add(9);
    map.add(511);
    ByteVector expected(usage::kDefaultRow);
    expected[usage::kBitmap] = 0x01;
    expected[usage::kBitmap + 1] = 0x02;
    expected[usage::kBitmap + 63] = 0x80;
    EXPECT_EQ(bytes_of(map), expected);
    map.add(9);
    map.remove(10);
    EXPECT_EQ(bytes_of(map), expected);
    map.remove(9);
    EXPECT_EQ(members(map), (std::set<PageNumber>{0, 511}));
    EXPECT_EQ(map.next(1), 511u);
    EXPECT_FALSE(map.next(512));
}

TEST_F(UsageMapTest, window_moves_while_the_members_fit) {
    start();
    extend_to(1200);
    UsageMap map = new_map();
    map.add(700);
    EXPECT_EQ(load_u32(bytes_of(map), usage::kStart), 696u);
    map.add(1100);
    map.add(693);
    EXPECT_EQ(load_u32(bytes_of(map), usage::kStart), 688u);
    EXPECT_EQ(members(map), (std::set<PageNumber>{693, 700, 1100}));
    EXPECT_EQ(bytes_of(map)[0], usage::kInline);
    map.remove(693);
    map.add(1199);
    EXPECT_EQ(members(map), (std::set<PageNumber>{700, 1100, 1199}));
    EXPECT_EQ(bytes_of(map)[0], usage::kInline);
}

TEST_F(UsageMapTest, members_too_far_apart_go_to_bitmap_pages) {
    start();
    extend_to(1200);
    UsageMap map = new_map();
    map.add(300);
    map.add(807);
    EXPECT_EQ(bytes_of(map)[0], usage::kInline);
    map.add(808);
    const ByteVector row = bytes_of(map);
    EXPECT_EQ(row[0], usage::kReference);
    ASSERT_EQ(map.bitmap_pages().size(), 1u);
    const PageNumber bitmap = map.bitmap_pages().front();
    EXPECT_EQ(load_u32(row, 1), bitmap);
    EXPECT_FALSE(allocator_->is_free(bitmap));
    const Page page = pager_->read(bitmap);
    EXPECT_EQ(load_u32(page.bytes(), 0), 0x00000105u);
    EXPECT_EQ(page.bytes()[usage::kPagePrefix + 300 / 8], 1u << (300 % 8));
    EXPECT_EQ(members(map), (std::set<PageNumber>{300, 807, 808}));
    map.remove(807);
    EXPECT_EQ(members(map), (std::set<PageNumber>{300, 808}));
    EXPECT_EQ(map.next(301), 808u);
}

// Each bitmap page begins anew with its first bit, also after one without members and after one that is not there.
TEST_F(UsageMapTest, next_goes_on_in_the_next_bitmap_page_across_a_gap) {
    start();
    constexpr PageNumber kBlock = usage::kPagesPerBitmap;
    const std::set<PageNumber> pages = {5, 900, kBlock + 2, 3 * kBlock + 1, 3 * kBlock + 2000};
    UsageMap map = new_map();
    for (const PageNumber page : pages) map.add(page);
    EXPECT_EQ(map.bitmap_pages().size(), 3u);
    EXPECT_EQ(members(map), pages);
    EXPECT_EQ(map.next(901), kBlock + 2);
    EXPECT_EQ(map.next(kBlock - 1), kBlock + 2);
    EXPECT_EQ(map.next(kBlock + 3), 3 * kBlock + 1);
    EXPECT_EQ(map.next(2 * kBlock + 7000), 3 * kBlock + 1);
    EXPECT_FALSE(map.next(3 * kBlock + 2001));
    map.remove(kBlock + 2);
    EXPECT_EQ(map.next(901), 3 * kBlock + 1);
}

TEST_F(UsageMapTest, every_form_holds_exactly_its_members) {
    start();
    extend_to(3000);
    Random random(3);
    for (const std::uint32_t spread : {100u, 500u, 3000u}) {
        UsageMap map = new_map();
        std::set<PageNumber> model;
        const PageNumber base = random() % (3001 - spread);
        for (int step = 0; step < 3000; ++step) {
            const PageNumber page = base + random.below(spread);
            if (random() % 3 == 0) {
                map.remove(page);
                model.erase(page);
            } else {
                map.add(page);
                model.insert(page);
            }
            ASSERT_EQ(map.contains(page), model.contains(page));
            const PageNumber from = random() % 3000;
            const auto expected = model.lower_bound(from);
            ASSERT_EQ(map.next(from), expected == model.end() ? std::nullopt : std::optional(*expected));
        }
        EXPECT_EQ(members(map), model);
    }
}

TEST_F(UsageMapTest, destroyed_map_gives_back_its_pages) {
    start();
    extend_to(1200);
    UsageMap keeper = new_map();
    UsageMap map = new_map();
    map.add(20);
    map.add(1100);
    const PageNumber bitmap = map.bitmap_pages().front();
    map.destroy();
    EXPECT_TRUE(allocator_->is_free(bitmap));
    EXPECT_FALSE(allocator_->is_free(map_page_));
    EXPECT_TRUE(map.row().is_null());
    keeper.destroy();
    EXPECT_TRUE(allocator_->is_free(map_page_));
}

TEST_F(UsageMapTest, map_that_is_not_there_is_empty_and_takes_nothing) {
    start();
    UsageMap map(*pager_, *allocator_, {});
    EXPECT_FALSE(map.next(0));
    EXPECT_FALSE(map.contains(5));
    map.remove(5);
    map.destroy();
    EXPECT_EQ(error_number([&] { map.add(5); }), errors::kDamaged);
}

// Numbers of a map that no file can have: whatever is asked of the map is damage, and nothing is written.
TEST_F(UsageMapTest, impossible_map_is_damage_in_every_use) {
    struct Case {
        const char* name;
        std::function<void(MutableByteSpan page, std::size_t row)> make;
    };
    const Case cases[] = {
        {"window that wraps around",
         [](MutableByteSpan page, std::size_t row) {
             store_u32(page, row + usage::kStart, 0xFFFFFFF8);
             page[row + usage::kBitmap + 2] = 0xFF;
         }},
        {"window behind the largest file",
         [](MutableByteSpan page, std::size_t row) { store_u32(page, row + usage::kStart, jet4::kMaxPages); }},
        {"unknown kind", [](MutableByteSpan page, std::size_t row) { page[row] = 2; }},
        {"bits on the header", [](MutableByteSpan page, std::size_t row) { page[row] = page[row + 2] = 1; }},
        {"bits on the catalogue",
         [](MutableByteSpan page, std::size_t row) { page[row] = 1, page[row + 1] = jet4::kObjectsPage; }},
        {"bits behind the largest file",
         [](MutableByteSpan page, std::size_t row) { page[row] = 1, store_u32(page, row + 1, jet4::kMaxPages); }},
        {"bits twice", [](MutableByteSpan page, std::size_t row) { page[row] = 1, page[row + 1] = page[row + 5] = 7; }},
        {"row of a table", [](MutableByteSpan page, std::size_t) { store_u32(page, jet4::data::kOwner, 3); }},
        {"deleted row",
         [](MutableByteSpan page, std::size_t row) {
             store_u16(page, jet4::data::kSlots, static_cast<std::uint16_t>(row | jet4::data::kDeletedFlags));
         }},
        {"page of another kind", [](MutableByteSpan page, std::size_t) { page[0] = jet4::kIndexLeafPage; }},
    };
    start();
    extend_to(30);
    UsageMap map = new_map();
    ASSERT_EQ(0, map.row().slot);
    for (const Case& damage : cases) {
        SCOPED_TRACE(damage.name);
        Transaction transaction(*pager_);
        {
            const MutablePage page = pager_->modify(map.row().page);
            damage.make(page.bytes(), DataPage(page.bytes(), map.row().page).slot(0).offset);
        }
        const auto content = [&] {
            const ByteSpan bytes = pager_->read(map.row().page).bytes();
            return ByteVector(bytes.begin(), bytes.end());
        };
        const ByteVector before = content();
        EXPECT_EQ(errors::kDamaged, error_number([&] { map.next(0); }));
        EXPECT_EQ(errors::kDamaged, error_number([&] { map.contains(8); }));
        EXPECT_EQ(errors::kDamaged, error_number([&] { map.add(25); }));
        EXPECT_EQ(errors::kDamaged, error_number([&] { map.remove(25); }));
        EXPECT_EQ(errors::kDamaged, error_number([&] { map.bitmap_pages(); }));
        EXPECT_EQ(errors::kDamaged, error_number([&] { UsageMap(map).destroy(); }));
        EXPECT_EQ(before, content());
    }
}

TEST_F(UsageMapTest, last_window_of_the_largest_file_holds_its_pages_and_no_more) {
    start();
    UsageMap map = new_map();
    {
        const MutablePage page = pager_->modify(map.row().page);
        const Slot slot = DataPage(page.bytes(), map.row().page).slot(map.row().slot);
        store_u32(page.bytes(), slot.offset + usage::kStart, jet4::kMaxPages - 8);
        page.bytes()[slot.offset + usage::kBitmap] = 0x80;
        page.bytes()[slot.offset + usage::kBitmap + 1] = 0x01;
    }
    EXPECT_EQ(jet4::kMaxPages - 1, map.next(0));
    EXPECT_FALSE(map.next(jet4::kMaxPages));
    EXPECT_EQ(errors::kDamaged, error_number([&] { map.add(20); }));  // one of its members cannot be
}

TEST_F(UsageMapTest, freed_pages_come_back_lowest_first_and_zeroed) {
    start();
    std::vector<PageNumber> pages;
    for (int i = 0; i < 40; ++i) {
        const MutablePage page = allocator_->allocate();
        page.bytes()[17] = 1;
        pages.push_back(page.number());
    }
    EXPECT_TRUE(std::is_sorted(pages.begin(), pages.end()));
    const std::uint32_t size = pager_->page_count();
    for (const std::size_t i : {30, 3, 17}) allocator_->free(pages[i]);
    EXPECT_TRUE(allocator_->is_free(pages[3]));
    for (const std::size_t i : {3, 17, 30}) {
        const MutablePage page = allocator_->allocate();
        EXPECT_EQ(page.number(), pages[i]);
        EXPECT_EQ(page.bytes()[17], 0);
        EXPECT_FALSE(allocator_->is_free(page.number()));
    }
    EXPECT_EQ(allocator_->allocate().number(), size);
}

TEST_F(UsageMapTest, rolled_back_pages_are_free_again) {
    start();
    const PageNumber first = allocator_->allocate().number();
    {
        const Transaction inner(*pager_);
        EXPECT_EQ(allocator_->allocate().number(), first + 1);
    }
    EXPECT_EQ(allocator_->allocate().number(), first + 1);
}

TEST_F(UsageMapTest, pages_the_file_cannot_do_without_are_not_freed) {
    start();
    for (const PageNumber page :
         {PageNumber{0}, jet4::kGlobalMapPage, jet4::kObjectsPage, jet4::kRelationshipsPage, pager_->page_count()}) {
        EXPECT_EQ(error_number([&] { allocator_->free(page); }), errors::kDamaged) << page;
    }
}

TEST_F(UsageMapTest, map_of_free_pages_that_offers_the_catalogue_is_damage) {
    start();
    {
        const MutablePage page = pager_->modify(jet4::kGlobalMapPage);
        const Slot slot = DataPage(page.bytes(), jet4::kGlobalMapPage).slot(0);
        page.bytes()[slot.offset + usage::kBitmap] |= 1u << jet4::kObjectsPage;
    }
    EXPECT_EQ(error_number([&] { allocator_->allocate(); }), errors::kDamaged);
}

TEST_F(UsageMapTest, map_of_free_pages_goes_to_bitmap_pages_behind_page_511) {
    start();
    std::set<PageNumber> taken;
    while (pager_->page_count() < 512) EXPECT_TRUE(taken.insert(allocator_->allocate().number()).second);
    EXPECT_TRUE(allocator_->bitmap_pages().empty());
    EXPECT_EQ(allocator_->allocate().number(), 512u);
    EXPECT_EQ(allocator_->bitmap_pages(), std::vector<PageNumber>{513});
    EXPECT_FALSE(allocator_->is_free(512));
    EXPECT_FALSE(allocator_->is_free(513));
    for (const PageNumber page : taken) EXPECT_FALSE(allocator_->is_free(page)) << page;
    EXPECT_TRUE(allocator_->is_free(514));
    allocator_->free(100);
    EXPECT_EQ(allocator_->allocate().number(), 100u);
    EXPECT_EQ(allocator_->allocate().number(), 514u);
}

// A file that another program has grown: what lies before the window of its map of free pages is in use, and so is what
// lies after it inside the file.
TEST_F(UsageMapTest, map_of_free_pages_may_be_a_window_anywhere) {
    std::mt19937 random(20);
    const auto pick = [&random](std::uint32_t below) { return static_cast<std::uint32_t>(random() % below); };
    for (int round = 0; round < 60; ++round) {
        sparse_.remove(kPath);
        auto file = sparse_.open(kPath, os::OpenMode::kCreateExclusive);
        CreateOptions options;
        options.creation_date = 42329.5;
        file->write(0, build_empty_database(options));
        // Some windows lie across the border of two bitmap pages.
        const bool at_border = round % 3 == 0;
        const PageNumber start = at_border ? usage::kPagesPerBitmap - 8 * pick(64) : 8 * pick(300);
        const std::size_t bytes = 64 + 4 * pick(100);
        const PageNumber end = start + 8 * static_cast<PageNumber>(bytes);
        // The file ends inside the window, at its end or after it.
        const PageNumber pages =
            std::max<PageNumber>(end - pick(8 * static_cast<PageNumber>(bytes)), 20) + (round % 4 == 0 ? 700 : 0);
        std::set<PageNumber> free_pages;
        ByteVector row(usage::kBitmap + bytes);
        store_u32(row, usage::kStart, start);
        for (PageNumber page = start; page < end; ++page) {
            const bool is_free = page >= pages || (page > jet4::kRelationshipsPage && pick(20) == 0);
            if (!is_free) continue;
            row[usage::kBitmap + (page - start) / 8] |= static_cast<std::uint8_t>(1u << (page % 8));
            if (page < pages) free_pages.insert(page);
        }
        ByteVector map_page(jet4::kPageSize);
        format_data_page(map_page, 1);
        add_row(map_page, 1, row);
        file->truncate(std::uint64_t{pages} * jet4::kPageSize);
        file->write(std::uint64_t{jet4::kGlobalMapPage} * jet4::kPageSize, map_page);
        file.reset();
        start_again();
        std::set<PageNumber> taken;
        const std::size_t wanted = free_pages.size() + 8 * bytes + 50;
        while (taken.size() < wanted) {
            const PageNumber page = allocator_->allocate().number();
            ASSERT_TRUE(taken.insert(page).second) << page;
            ASSERT_TRUE(page >= pages || free_pages.count(page) == 1) << page << " was in use, round " << round;
        }
        for (const PageNumber page : free_pages) EXPECT_EQ(taken.count(page), 1u) << page;
        // A page before the window is given back, and handed out again.
        if (start > 8) {
            allocator_->free(7);
            EXPECT_TRUE(allocator_->is_free(7));
            EXPECT_EQ(allocator_->allocate().number(), 7u);
        }
        for (PageNumber page = 0; page < pager_->page_count(); ++page) ASSERT_FALSE(allocator_->is_free(page)) << page;
    }
}

TEST_F(UsageMapTest, page_before_the_window_of_free_pages_is_given_back) {
    {
        auto file = sparse_.open(kPath, os::OpenMode::kExclusive);
        ByteVector map_page(jet4::kPageSize);
        format_data_page(map_page, 1);
        ByteVector row(usage::kDefaultRow, 0xFF);
        row[0] = usage::kInline;
        store_u32(row, usage::kStart, 600);
        add_row(map_page, 1, row);
        file->truncate(600 * jet4::kPageSize);
        file->write(std::uint64_t{jet4::kGlobalMapPage} * jet4::kPageSize, map_page);
    }
    start();
    allocator_->free(7);
    EXPECT_TRUE(allocator_->is_free(7));
    EXPECT_FALSE(allocator_->is_free(8));
    EXPECT_EQ(allocator_->allocate().number(), 7u);
    // The page of bits has taken the first one behind the end.
    EXPECT_EQ(allocator_->allocate().number(), 601u);
}

TEST_F(UsageMapTest, file_ends_at_two_gigabytes) {
    // A file of 523 700 pages, all in use, its map of free pages on 16 bitmap pages.
    constexpr std::uint32_t kBefore = 523700;
    constexpr PageNumber kFirstBitmap = 20;
    {
        auto file = sparse_.open(kPath, os::OpenMode::kExclusive);
        file->truncate(std::uint64_t{kBefore} * jet4::kPageSize);
        ByteVector map_page(jet4::kPageSize);
        format_data_page(map_page, 1);
        ByteVector row(usage::kDefaultRow);
        row[0] = usage::kReference;
        ByteVector bitmap(jet4::kPageSize);
        bitmap[0] = jet4::kUsageBitmapPage;
        bitmap[1] = 1;
        for (std::uint32_t k = 0; k < 16; ++k) {
            store_u32(row, 1 + 4 * k, kFirstBitmap + k);
            if (k == 15) {
                for (std::uint32_t page = kBefore; page < 16 * usage::kPagesPerBitmap; ++page) {
                    bitmap[usage::kPagePrefix + page % usage::kPagesPerBitmap / 8] |=
                        static_cast<std::uint8_t>(1u << (page % 8));
                }
            }
            file->write(std::uint64_t{kFirstBitmap + k} * jet4::kPageSize, bitmap);
        }
        add_row(map_page, 1, row);
        file->write(std::uint64_t{jet4::kGlobalMapPage} * jet4::kPageSize, map_page);
    }
    start();
    std::set<PageNumber> taken;
    int error = 0;
    while (error == 0) {
        pager_->begin();
        error = error_number([&] { EXPECT_TRUE(taken.insert(allocator_->allocate().number()).second); });
        error == 0 ? pager_->commit() : pager_->rollback();
    }
    EXPECT_EQ(error, errors::kFileTooLarge);
    EXPECT_EQ(pager_->page_count(), jet4::kMaxPages);
    EXPECT_EQ(taken.size(), jet4::kMaxPages - kBefore - 1) << "one page went to the seventeenth bitmap";
    EXPECT_EQ(allocator_->bitmap_pages().size(), 17u);
    for (PageNumber page = kBefore; page < jet4::kMaxPages; ++page) ASSERT_FALSE(allocator_->is_free(page)) << page;
    allocator_->free(400000);
    EXPECT_EQ(allocator_->allocate().number(), 400000u);
    // No page is left for the bitmap pages of another map.
    allocator_->free(400000);
    UsageMap map = new_map();
    map.add(30);
    EXPECT_EQ(error_number([&] { map.add(jet4::kMaxPages - 1); }), errors::kFileTooLarge);
}

class UsageMapSlow : public UsageMapTest {};

TEST_F(UsageMapSlow, maps_hold_files_of_more_than_one_bitmap_page) {
    start();
    UsageMap map = new_map();
    std::set<PageNumber> taken;
    constexpr std::uint32_t kMany = 70000;
    while (taken.size() < kMany) {
        const PageNumber page = allocator_->allocate().number();
        ASSERT_TRUE(taken.insert(page).second) << page;
        map.add(page);
        if (taken.size() % 1000 == 0) commit();
    }
    EXPECT_EQ(allocator_->bitmap_pages().size(), 3u);
    EXPECT_EQ(map.bitmap_pages().size(), 3u);
    EXPECT_EQ(members(map), taken);
    pager_->commit();
    pager_->close();
    start();
    EXPECT_EQ(members(UsageMap(*pager_, *allocator_, map.row())), taken);
    for (PageNumber page = 0; page < pager_->page_count(); ++page) ASSERT_FALSE(allocator_->is_free(page)) << page;
}

}  // namespace
}  // namespace jet
