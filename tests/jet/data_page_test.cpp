#include "jet/storage/data_page.h"

#include <gtest/gtest.h>

#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

namespace data = jet4::data;

constexpr PageNumber kPageNo = 9;

struct ModelRow {
    ByteVector bytes;
    std::uint16_t flags = 0;
};

// Both invariants of the header, worked out from the bytes alone, and the rows themselves.
void expect_is(ByteSpan page, const std::vector<ModelRow>& rows) {
    ASSERT_EQ(load_u16(page, data::kSlotCount), rows.size());
    std::size_t end = page.size();
    const DataPage view(page, kPageNo);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::uint16_t entry = load_u16(page, data::kSlots + 2 * i);
        const std::size_t offset = entry & data::kOffsetMask;
        ASSERT_EQ(end - offset, rows[i].bytes.size()) << i;
        ASSERT_EQ(entry & ~data::kOffsetMask, rows[i].flags) << i;
        const ByteSpan row = view.row(view.slot(i));
        ASSERT_EQ(ByteVector(row.begin(), row.end()), rows[i].bytes) << i;
        end = offset;
    }
    ASSERT_EQ(load_u16(page, data::kFree), end - (data::kSlots + 2 * rows.size()));
    ASSERT_EQ(view.gap(), load_u16(page, data::kFree));
}

TEST(DataPage, new_page_is_empty_and_belongs_to_its_owner) {
    ByteVector page(jet4::kPageSize, 0xCC);
    format_data_page(page, 0x1234);
    expect_is(page, {});
    EXPECT_EQ(load_u16(page, data::kFree), 4082);
    EXPECT_TRUE(DataPage::belongs_to(page, 0x1234));
    EXPECT_FALSE(DataPage::belongs_to(page, 0x1235));
    EXPECT_EQ(DataPage(page, kPageNo).owner(), 0x1234u);
    EXPECT_TRUE(DataPage(page, kPageNo).has_room(4080));
    EXPECT_FALSE(DataPage(page, kPageNo).has_room(4081));
}

TEST(DataPage, invariants_hold_under_random_changes) {
    Random random(7);
    int full = 0;
    for (int round = 0; round < 60; ++round) {
        ByteVector page(jet4::kPageSize);
        format_data_page(page, 5);
        std::vector<ModelRow> rows;
        const auto some_bytes = [&](std::size_t most) {
            ByteVector bytes(random() % (most + 1));
            for (std::uint8_t& byte : bytes) byte = random.byte();
            return bytes;
        };
        for (int step = 0; step < 250; ++step) {
            const std::size_t at = rows.empty() ? 0 : random() % rows.size();
            switch (rows.empty() ? 0 : random() % 4) {
                case 0: {
                    const ByteVector bytes = some_bytes(round < 30 ? 60 : 600);
                    if (!DataPage(page, kPageNo).has_room(bytes.size())) {
                        ++full;
                        break;
                    }
                    const std::uint16_t flags = random() % 3 == 0 ? data::kBodyFlag : std::uint16_t{0};
                    ASSERT_EQ(add_row(page, kPageNo, bytes, flags), rows.size());
                    rows.push_back({bytes, flags});
                    break;
                }
                case 1: {
                    const ByteVector bytes = some_bytes(300);
                    if (bytes.size() > rows[at].bytes.size() + DataPage(page, kPageNo).gap()) break;
                    replace_row(page, kPageNo, at, bytes);
                    rows[at].bytes = bytes;
                    break;
                }
                case 2:
                    delete_row(page, kPageNo, at);
                    rows[at] = {{}, data::kDeletedFlags};
                    break;
                default:
                    set_slot_flags(page, kPageNo, at, data::kMovedFlag);
                    rows[at].flags = data::kMovedFlag;
                    break;
            }
            expect_is(page, rows);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_GT(full, 100);
}

TEST(DataPage, page_takes_255_rows_and_no_more) {
    ByteVector page(jet4::kPageSize);
    format_data_page(page, 5);
    const ByteVector row{1, 2, 3, 4};
    for (std::size_t i = 0; i < data::kMaxSlots; ++i) {
        ASSERT_TRUE(DataPage(page, kPageNo).has_room(row.size()));
        EXPECT_EQ(add_row(page, kPageNo, row), i);
    }
    EXPECT_GT(DataPage(page, kPageNo).gap(), 1000u);
    EXPECT_FALSE(DataPage(page, kPageNo).has_room(0));
    EXPECT_EQ(error_number([&] { add_row(page, kPageNo, row); }), errors::kDamaged);
    for (std::size_t i = 0; i < data::kMaxSlots; ++i) {
        EXPECT_FALSE(DataPage(page, kPageNo).all_deleted());
        delete_row(page, kPageNo, i);
    }
    EXPECT_TRUE(DataPage(page, kPageNo).all_deleted());
    EXPECT_FALSE(DataPage(page, kPageNo).has_room(0)) << "a slot was to be used twice";
}

TEST(DataPage, growth_beyond_the_gap_is_refused_and_changes_nothing) {
    ByteVector page(jet4::kPageSize);
    format_data_page(page, 5);
    add_row(page, kPageNo, ByteVector(2000, 1));
    add_row(page, kPageNo, ByteVector(2000, 2));
    const ByteVector before = page;
    const std::size_t gap = DataPage(page, kPageNo).gap();
    EXPECT_EQ(error_number([&] { replace_row(page, kPageNo, 0, ByteVector(2001 + gap)); }), errors::kDamaged);
    EXPECT_EQ(error_number([&] { add_row(page, kPageNo, ByteVector(gap - 1)); }), errors::kDamaged);
    EXPECT_EQ(page, before);
    replace_row(page, kPageNo, 0, ByteVector(2000 + gap, 3));
    EXPECT_EQ(DataPage(page, kPageNo).gap(), 0u);
}

TEST(DataPage, pages_that_cannot_be_followed_are_damage) {
    ByteVector page(jet4::kPageSize);
    format_data_page(page, 5);
    add_row(page, kPageNo, ByteVector(8, 1));
    add_row(page, kPageNo, ByteVector(8, 2));
    const auto damaged = [&](auto&& change, auto&& use) {
        ByteVector copy = page;
        change(copy);
        return error_number([&] { use(DataPage(copy, kPageNo)); }) == errors::kDamaged;
    };
    const auto open = [](const DataPage&) {};
    const auto second = [](const DataPage& p) { p.slot(1); };
    EXPECT_TRUE(damaged([](ByteVector& p) { p[0] = 2; }, open));
    EXPECT_TRUE(damaged([](ByteVector& p) { store_u16(p, data::kSlotCount, 2042); }, open));
    EXPECT_TRUE(damaged([](ByteVector&) {}, [](const DataPage& p) { p.slot(2); }));
    EXPECT_TRUE(damaged([](ByteVector& p) { store_u16(p, data::kSlots + 2, 4095); }, second));  // above its neighbour
    EXPECT_TRUE(damaged([](ByteVector& p) { store_u16(p, data::kSlots + 2, 10); }, second));    // inside the head
    EXPECT_TRUE(damaged([](ByteVector& p) { store_u16(p, data::kSlots, 0x1FFF); }, second));    // behind the page
    EXPECT_FALSE(damaged([](ByteVector& p) { store_u16(p, data::kSlots, 0x1000); }, second));   // empty at the end
}

}  // namespace
}  // namespace jet
