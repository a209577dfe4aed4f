#include "jet/pages/header.h"

#include <gtest/gtest.h>

#include <bit>

#include "jet/base/jet4.h"
#include "jet/base/rc4.h"
#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

// Dates as their bytes in memory order.
double date_of(std::uint64_t little_endian) { return std::bit_cast<double>(little_endian); }
constexpr std::uint64_t kDate2016 = 0x40E4AB3E3BD3853E;

ByteVector page_of(const FileHeader& header) {
    ByteVector page(jet4::kPageSize);
    build_header(page, header);
    return page;
}

// The masked part in the clear; offsets are those of the page.
ByteVector plain(const ByteVector& page) {
    ByteVector clear = page;
    const std::uint8_t key[] = {0xC7, 0xDA, 0x39, 0x6B};
    Rc4(key).apply(MutableByteSpan(clear).subspan(0x18, 128));
    return clear;
}

TEST(Header, every_value_comes_back) {
    FileHeader header;
    header.build = 4518;
    header.creation_date = 42329.5;
    header.password = u"Geheim-Ünïcödé\u4e00";
    const FileHeader back = parse_header(page_of(header), "a.mdb");
    EXPECT_EQ(back.build, 4518u);
    EXPECT_EQ(back.creation_date, 42329.5);
    EXPECT_EQ(back.password, header.password);
    EXPECT_EQ(back.code_page, 1252);
    EXPECT_EQ(back.encryption_key, 0u);
}

TEST(Header, masked_part_and_password_mask_are_those_of_the_format) {
    FileHeader header;
    header.creation_date = 42329.75;
    const ByteVector page = page_of(header);
    // The first bytes of the constant stream over 00 01 00 00.
    EXPECT_EQ(ByteVector(page.begin() + 0x18, page.begin() + 0x1C), (ByteVector{0xB5, 0x6E, 0x03, 0x62}));
    const ByteVector clear = plain(page);
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(load_u32(clear, 0x42 + 4 * i), 42329u) << i;
    EXPECT_EQ(load_u32(clear, 0x6E), 0x0409u);
    EXPECT_EQ(load_u32(page, 0x98), 1620u);
    EXPECT_EQ(load_u16(page, 0xE00), 0x0101);
    EXPECT_EQ(load_u16(page, 0xFFE), 0x0100);
}

TEST(Header, password_is_masked_with_the_day_of_creation) {
    FileHeader header;
    header.creation_date = -2.75;  // truncated towards zero
    header.password = u"ab";
    const ByteVector clear = plain(page_of(header));
    EXPECT_EQ(load_u32(clear, 0x42), 0x00620061u ^ 0xFFFFFFFEu);
    EXPECT_EQ(load_u32(clear, 0x46), 0xFFFFFFFEu);
}

TEST(Header, another_password_changes_its_bytes_alone) {
    FileHeader header;
    header.creation_date = 42329.5;
    header.password = u"twenty characters!!!";
    ByteVector page = page_of(header);
    const ByteVector before = plain(page);
    store_password(page, header, u"new");
    const ByteVector after = plain(page);
    for (std::size_t i = 0; i < page.size(); ++i) {
        if (i >= 0x42 && i < 0x42 + 40) continue;
        EXPECT_EQ(before[i], after[i]) << i;
    }
    EXPECT_EQ(parse_header(page, "").password, u"new");
    store_password(page, header, u"");
    EXPECT_EQ(parse_header(page, "").password, u"");
    EXPECT_EQ(error_number([&] { store_password(page, header, std::u16string(21, u'x')); }), errors::kBadConversion);
    EXPECT_EQ(error_number([&] { store_password(page, header, std::u16string(u"a\0b", 3)); }), errors::kBadConversion);
    EXPECT_EQ(parse_header(page, "").password, u"");
}

TEST(Header, sid_streams_are_the_known_ones) {
    FileHeader header;
    header.build = 9756;
    header.creation_date = date_of(kDate2016);
    ByteVector stream(8);
    mask_sid(stream, header);
    EXPECT_EQ(stream, (ByteVector{0x67, 0x8A, 0x66, 0x8E, 0xCF, 0xF0, 0xDC, 0x10}));
    ByteVector engine{0x02, 0x03};
    mask_sid(engine, header);
    EXPECT_EQ(engine, (ByteVector{0x65, 0x89}));
    mask_sid(engine, header);
    EXPECT_EQ(engine, (ByteVector{0x02, 0x03}));

    header.build = 4518;
    header.creation_date = date_of(0x40E5C315A957BF9B);
    header.password = u"password";
    ByteVector with_password(8);
    mask_sid(with_password, header);
    EXPECT_EQ(with_password, (ByteVector{0x93, 0xAD, 0x53, 0xBC, 0xC0, 0xDA, 0x69, 0x1B}));
}

TEST(Header, files_of_other_kinds_are_told_apart) {
    const ByteVector good = page_of({});
    const auto error_of = [&](std::size_t at, std::uint8_t value) {
        ByteVector page = good;
        page[at] = value;
        return error_number([&] { parse_header(page, "a.mdb"); });
    };
    EXPECT_EQ(error_of(0, 1), errors::kNotADatabase);
    EXPECT_EQ(error_of(jet4::header::kMagic, 'X'), errors::kNotADatabase);
    EXPECT_EQ(error_of(jet4::header::kVersion, 0), 0) << "a header of Jet 3 says the same in the same places";
    FileHeader unknown;
    unknown.format = &kJet3;
    ByteVector page = page_of(unknown);
    // The mask is a stream: what is turned in it is turned in what it covers.
    page[jet4::header::kCodePage] ^= (1252 ^ 437) & 0xFF;
    page[jet4::header::kCodePage + 1] ^= (1252 ^ 437) >> 8;
    EXPECT_EQ(error_number([&] { parse_header(page, "a.mdb"); }), errors::kOldFormat);
    EXPECT_EQ(error_of(jet4::header::kVersion, 2), errors::kNotADatabase);
    EXPECT_EQ(error_of(jet4::header::kCatalogTables, 0), errors::kDamaged);
    for (const std::size_t size : {0u, 1u, 4u, 100u, 2047u}) {
        EXPECT_EQ(error_number([&] { parse_header(ByteSpan(good).first(size), ""); }), errors::kNotADatabase) << size;
    }
    EXPECT_EQ(error_number([&] { parse_header(ByteSpan(good).first(4095), ""); }), errors::kDamaged);
}

TEST(Header, hostile_dates_do_not_overflow) {
    for (const double date : {1e300, -1e300, std::bit_cast<double>(0x7FF8000000000000), 2147483647.0, -2147483648.5}) {
        FileHeader header;
        header.creation_date = date;
        header.password = u"x";
        EXPECT_EQ(parse_header(page_of(header), "").password, u"x") << date;
    }
}

}  // namespace
}  // namespace jet
