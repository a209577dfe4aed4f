#include "jet/storage/long_value.h"

#include <gtest/gtest.h>

#include "jet/storage/data_page.h"
#include "tests/jet/pager_fixture.h"

namespace jet {
namespace {

namespace lv = jet4::long_value;

// One column's long values in a new file, in one transaction for the whole test.
class LongValueTest : public PagerFixture {
protected:
    LongValueTest() {
        pager_ = open(rarely_synced());
        pager_->begin();
        PageNumber maps = 0;
        column_.name = u"Notes";
        column_.type = ColumnType::kMemo;
        column_.owned_map = allocator().create_map(&maps);
        column_.free_map = allocator().create_map(&maps);
        values_ = std::make_unique<LongValues>(*pager_, allocator());
    }
    PageAllocator& allocator() {
        if (!allocator_) allocator_ = std::make_unique<PageAllocator>(*pager_);
        return *allocator_;
    }
    static ByteVector pattern(std::size_t size) {
        ByteVector bytes(size);
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
        return bytes;
    }
    std::vector<PageNumber> pages(RowId map_row) {
        std::vector<PageNumber> found;
        const UsageMap map(*pager_, allocator(), map_row);
        for (auto page = map.next(0); page; page = map.next(*page + 1)) found.push_back(*page);
        return found;
    }
    std::vector<PageNumber> owned() { return pages(column_.owned_map); }
    std::vector<PageNumber> free_pages() { return pages(column_.free_map); }
    ByteVector write(std::size_t size) { return values_->write(column_, pattern(size)); }

    std::unique_ptr<Pager> pager_;
    std::unique_ptr<PageAllocator> allocator_;
    std::unique_ptr<LongValues> values_;
    ColumnDef column_;
};

TEST_F(LongValueTest, lengths_go_to_their_places) {
    struct Case {
        std::size_t size;
        std::uint32_t kind;
        std::size_t reference_bytes;
        std::size_t pages;
    };
    for (const Case& c : {Case{0, lv::kInline, 12, 0}, Case{1, lv::kInline, 13, 0}, Case{64, lv::kInline, 76, 0},
                          Case{65, lv::kSingle, 12, 1}, Case{4076, lv::kSingle, 12, 1}, Case{4077, 0, 12, 2},
                          Case{2 * 4072, 0, 12, 2}, Case{2 * 4072 + 1, 0, 12, 3}, Case{100000, 0, 12, 25}}) {
        SCOPED_TRACE(c.size);
        const ByteVector reference = write(c.size);
        EXPECT_EQ(reference.size(), c.reference_bytes);
        EXPECT_EQ(load_u32(reference, 0), c.size | c.kind);
        EXPECT_EQ(load_u32(reference, 4) != 0, c.pages > 0);
        EXPECT_EQ(owned().size(), c.pages);
        EXPECT_EQ(values_->read(reference), pattern(c.size));
        values_->release(column_, reference);
        EXPECT_TRUE(owned().empty());
        EXPECT_TRUE(free_pages().empty());
    }
}

TEST_F(LongValueTest, released_pages_are_free) {
    const std::uint32_t before = pager_->page_count();
    for (int round = 0; round < 4; ++round) {
        std::vector<ByteVector> references;
        for (const std::size_t size : {100, 3000, 50000, 4076, 4077}) references.push_back(write(size));
        for (const PageNumber page : owned()) EXPECT_FALSE(allocator().is_free(page));
        for (const ByteVector& reference : references) values_->release(column_, reference);
        for (PageNumber page = before; page < pager_->page_count(); ++page)
            EXPECT_TRUE(allocator().is_free(page)) << page;
    }
    EXPECT_LT(pager_->page_count(), before + 30) << "freed pages were to be used again";
}

TEST_F(LongValueTest, short_inline_value_can_be_put_on_a_page) {
    const ByteVector reference = values_->write(column_, pattern(10), false);
    EXPECT_EQ(load_u32(reference, 0), 10 | lv::kSingle);
    EXPECT_EQ(values_->read(reference), pattern(10));
    EXPECT_EQ(load_u32(values_->write(column_, {}, false), 0), lv::kInline) << "nothing needs no page";
}

TEST_F(LongValueTest, single_values_share_a_page_while_it_has_room) {
    std::vector<ByteVector> references;
    for (int i = 0; i < 8; ++i) references.push_back(write(500));
    EXPECT_EQ(owned().size(), 1u);
    const PageNumber page_no = owned().front();
    EXPECT_TRUE(DataPage::belongs_to(pager_->read(page_no).bytes(), jet4::data::kLongValueOwner));
    references.push_back(write(500));
    EXPECT_EQ(owned().size(), 2u);
    for (const ByteVector& reference : references) EXPECT_EQ(values_->read(reference), pattern(500));
    // Room given back is offered again.
    values_->release(column_, references[3]);
    EXPECT_EQ(RowId::unpack(load_u32(write(480), 4)).page, page_no);
    for (const std::size_t i : {0, 1, 2, 4, 5, 6, 7, 8}) EXPECT_EQ(values_->read(references[i]), pattern(500));
}

TEST_F(LongValueTest, column_without_a_map_of_free_pages_shares_none) {
    column_.free_map = {};
    const ByteVector one = write(100);
    const ByteVector two = write(100);
    EXPECT_EQ(owned().size(), 2u);
    values_->release(column_, one);
    EXPECT_EQ(owned().size(), 1u);
    EXPECT_EQ(values_->read(two), pattern(100));
}

TEST_F(LongValueTest, chains_have_pages_of_their_own_and_a_stamp_on_the_first) {
    write(100);
    const ByteVector reference = write(10000);
    const std::uint32_t stamp = load_u32(reference, 8);
    EXPECT_NE(stamp, 0u);
    RowId row = RowId::unpack(load_u32(reference, 4));
    std::vector<std::size_t> lengths;
    for (int piece = 0; !row.is_null(); ++piece) {
        const Page page = pager_->read(row.page);
        EXPECT_EQ(load_u32(page.bytes(), jet4::data::kStamp), piece == 0 ? stamp : 0);
        const DataPage data(page.bytes(), row.page);
        EXPECT_EQ(data.slot_count(), 1u);
        const ByteSpan bytes = data.row(data.slot(row.slot));
        lengths.push_back(bytes.size());
        row = RowId::unpack(load_u32(bytes, 0));
    }
    EXPECT_EQ(lengths, (std::vector<std::size_t>{4076, 4076, 4 + 10000 - 2 * 4072}));
    EXPECT_EQ(owned().size(), 4u);
    EXPECT_EQ(free_pages().size(), 1u) << "a page of a chain is never offered";
    EXPECT_NE(load_u32(write(5000), 8), stamp);
}

TEST_F(LongValueTest, chain_of_one_piece_and_empty_field_are_read) {
    const ByteVector single = write(200);
    EXPECT_EQ(values_->read({}), ByteVector());
    // As a stream written piecewise leaves it: pointer 0 in front of the data.
    const RowId row = RowId::unpack(load_u32(single, 4));
    ByteVector piece(4);
    append_bytes(piece, pattern(50));
    {
        const MutablePage page = pager_->modify(row.page);
        replace_row(page.bytes(), row.page, row.slot, piece);
    }
    ByteVector reference = single;
    store_u32(reference, 0, 50);
    EXPECT_EQ(values_->read(reference), pattern(50));
}

TEST_F(LongValueTest, memo_text_is_compressed_up_to_32_characters) {
    EXPECT_EQ(LongValues::encode_memo(column_, u"abc").size(), 5u);
    EXPECT_EQ(LongValues::encode_memo(column_, u"ab").size(), 4u);
    EXPECT_EQ(LongValues::encode_memo(column_, std::u16string(32, u'x')).size(), 34u);
    EXPECT_EQ(LongValues::encode_memo(column_, std::u16string(33, u'x')).size(), 66u);
    EXPECT_EQ(LongValues::encode_memo(column_, std::u16string(32, u'\u4e00')).size(), 64u);
}

TEST_F(LongValueTest, broken_references_are_damage) {
    const ByteVector chain = write(10000);
    const ByteVector single = write(100);
    const auto error_of = [&](ByteVector reference) { return error_number([&] { values_->read(reference); }); };
    const auto changed = [](ByteVector reference, std::size_t at, std::uint32_t value) {
        store_u32(reference, at, value);
        return reference;
    };
    EXPECT_EQ(error_of(ByteVector(11)), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 0, 100 | 0xC0000000)), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 0, 101 | lv::kSingle)), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 0, 5 | lv::kInline)), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 4, 0)), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 4, RowId{jet4::kObjectsPage, 0}.pack())), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 4, RowId{9999, 0}.pack())), errors::kDamaged);
    EXPECT_EQ(error_of(changed(single, 4, load_u32(single, 4) + 1)), errors::kDamaged);
    EXPECT_EQ(error_of(changed(chain, 0, lv::kLengthMask)), errors::kDamaged) << "longer than what is there";
    // A chain in a circle.
    const RowId first = RowId::unpack(load_u32(chain, 4));
    {
        const MutablePage page = pager_->modify(first.page);
        const Slot slot = DataPage(page.bytes(), first.page).slot(0);
        store_u32(page.bytes(), slot.offset, first.pack());
    }
    EXPECT_EQ(error_of(changed(chain, 0, lv::kLengthMask)), errors::kDamaged);
    EXPECT_EQ(error_number([&] { values_->release(column_, changed(chain, 0, lv::kLengthMask)); }), errors::kDamaged);
}

}  // namespace
}  // namespace jet
