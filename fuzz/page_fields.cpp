#include "fuzz/page_fields.h"

#include <algorithm>

#include "jet/base/jet4.h"

namespace kvdb_fuzz {

using namespace jet;

namespace {

using enum Meaning;

class Collector {
public:
    explicit Collector(ByteSpan page) : page_(page) {}

    void add(const char* name, std::size_t at, std::size_t bytes, Meaning meaning = kNumber, bool big_endian = false) {
        if (at + bytes <= page_.size()) fields_.push_back({name, at, bytes, meaning, big_endian});
    }
    std::uint16_t u16(std::size_t at) const { return at + 2 <= page_.size() ? load_u16(page_, at) : std::uint16_t{0}; }
    std::uint32_t u32(std::size_t at) const { return at + 4 <= page_.size() ? load_u32(page_, at) : 0; }
    std::uint8_t u8(std::size_t at) const { return at < page_.size() ? page_[at] : std::uint8_t{0}; }
    std::vector<Field> take() { return std::move(fields_); }

private:
    ByteSpan page_;
    std::vector<Field> fields_;
};

void header(Collector& to) {
    namespace h = jet4::header;
    to.add("version", h::kVersion, 4);
    to.add("map of free pages", h::kGlobalMap, 4, kRow);
    to.add("second map", h::kSecondMap, 4, kRow);
    for (std::size_t i = 0; i < 4; ++i) to.add("catalogue table", h::kCatalogTables + 4 * i, 4, kPage);
    to.add("code page", h::kCodePage, 2);
    to.add("encryption key", h::kEncryptionKey, 4);
    to.add("password", h::kPassword, 4);
    to.add("sort order", h::kSortOrder, 4);
    to.add("creation date", h::kCreationDate + 4, 4);
    to.add("commit word", h::kCommitWords, 2);
}

void usage_map(Collector& to, std::size_t begin, std::size_t end) {
    namespace u = jet4::usage;
    to.add("kind of map", begin, 1);
    if (to.u8(begin) == u::kInline) {
        to.add("start of window", begin + u::kStart, 4, kPage);
        for (std::size_t at = begin + u::kBitmap; at < std::min(end, begin + u::kBitmap + 8); ++at) {
            to.add("bits of map", at, 1);
        }
    } else {
        for (std::size_t at = begin + 1; at + 4 <= end; at += 4) to.add("page of bits", at, 4, kPage);
    }
}

void property_blob(Collector& to, std::size_t begin, std::size_t end) {
    to.add("mark of properties", begin, 4);
    for (std::size_t at = begin + 4; at + 6 <= end;) {
        const std::uint32_t block = to.u32(at);
        to.add("length of block", at, 4);
        to.add("type of block", at + 4, 2);
        for (std::size_t inside = at + 6; inside + 2 <= std::min<std::size_t>(end, at + std::min(block, 120u));
             inside += 2) {
            to.add("word of block", inside, 2);
        }
        if (block < 6) return;
        at += block;
    }
}

// The fields of a table row, from both ends; in the variable part, references to long values.
void table_row(Collector& to, std::size_t begin, std::size_t end) {
    to.add("count of columns", begin, 2);
    for (std::size_t at = begin + 2; at + 4 <= std::min(end, begin + 42); at += 4) to.add("fixed value", at, 4, kRow);
    const std::size_t mask = (to.u16(begin) + 7u) / 8;
    if (begin + 4 + mask > end) return;
    for (std::size_t at = end - mask; at < end; ++at) to.add("null mask", at, 1);
    const std::size_t count_at = end - mask - 2;
    const std::size_t count = to.u16(count_at);
    to.add("count of offsets", count_at, 2);
    if (begin + 2 * (count + 2) > count_at) return;
    for (std::size_t i = 0; i <= count; ++i) {
        const std::size_t at = count_at - 2 * (i + 1);
        to.add("offset of value", at, 2);
        const std::size_t value = begin + to.u16(at);
        if (i == count || value + 12 > count_at || (to.u32(value + 8) != 0 && to.u32(value) >> 30 != 0)) continue;
        to.add("length of long value", value, 4);
        to.add("place of long value", value + 4, 4, kRow);
        to.add("stamp of long value", value + 8, 4);
        if (to.u32(value + 12) == jet4::properties::kMagicValue) property_blob(to, value + 12, count_at);
    }
}

void data_page(Collector& to, PageNumber page_no) {
    namespace d = jet4::data;
    to.add("free bytes", d::kFree, 2);
    to.add("owner", d::kOwner, 4, kPage);
    to.add("stamp", d::kStamp, 4);
    to.add("count of slots", d::kSlotCount, 2);
    const std::uint32_t owner = to.u32(d::kOwner);
    std::size_t end = jet4::kPageSize;
    for (std::size_t i = 0; i < std::min<std::size_t>(to.u16(d::kSlotCount), 256); ++i) {
        const std::size_t slot_at = d::kSlots + 2 * i;
        to.add("slot", slot_at, 2);
        const std::uint16_t slot = to.u16(slot_at);
        const std::size_t begin = slot & d::kOffsetMask;
        if (begin > end || begin < slot_at) return;
        const bool deleted = (slot & d::kDeletedFlags) == d::kDeletedFlags;
        if (deleted || begin == end) {
        } else if ((slot & d::kDeletedFlags) == d::kMovedFlag) {
            to.add("place of moved row", begin, 4, kRow);
        } else if (owner == d::kLongValueOwner) {
            to.add("next piece", begin, 4, kRow);
            if (to.u32(begin) == jet4::properties::kMagicValue) property_blob(to, begin, end);
            if (to.u32(begin + 4) == jet4::properties::kMagicValue) property_blob(to, begin + 4, end);
        } else if (owner == d::kUsageMapOwner || page_no == jet4::kGlobalMapPage) {
            usage_map(to, begin, end);
        } else {
            table_row(to, begin, end);
        }
        end = begin;
    }
}

void definition(Collector& to) {
    namespace t = jet4::tdef;
    to.add("free bytes", t::kFree, 2);
    to.add("next page", t::kNext, 4, kPage);
    to.add("length", t::kLength, 4);
    to.add("mark", t::kMagic, 4);
    to.add("row count", t::kRowCount, 4);
    to.add("last number", t::kLastAutoNumber, 4);
    to.add("most columns", t::kMaxColumns, 2);
    to.add("variable columns", t::kVariableColumns, 2);
    to.add("columns", t::kColumns, 2);
    to.add("logical indexes", t::kLogicalIndexes, 4);
    to.add("real indexes", t::kRealIndexes, 4);
    to.add("owned map", t::kOwnedMap, 4, kRow);
    to.add("free map", t::kFreeMap, 4, kRow);
    const std::size_t indexes = std::min(to.u32(t::kRealIndexes), 32u);
    const std::size_t columns = std::min<std::size_t>(to.u16(t::kColumns), 255);
    std::size_t at = t::kFixedHeader + indexes * t::kIndexStatistics;
    for (std::size_t i = 0; i < columns; ++i, at += t::kColumnRecord) {
        to.add("type", at + t::column::kType, 1);
        to.add("number", at + t::column::kNumber, 2);
        to.add("variable index", at + t::column::kVariableIndex, 2);
        to.add("ordinal", at + t::column::kOrdinal, 2);
        to.add("order of texts", at + t::column::kLcid, 2);
        to.add("flags", at + t::column::kFlags, 1);
        to.add("more flags", at + t::column::kExtFlags, 1);
        to.add("fixed offset", at + t::column::kFixedOffset, 2);
        to.add("length", at + t::column::kLength, 2);
    }
    for (std::size_t i = 0; i < columns && at < jet4::kPageSize; ++i) {
        to.add("length of name", at, 2);
        to.add("name", at + 2, 2);
        at += 2u + to.u16(at);
    }
    for (std::size_t i = 0; i < indexes; ++i, at += t::kRealIndexRecord) {
        for (std::size_t key = 0; key < 3; ++key) to.add("key", at + t::real_index::kKeys + 3 * key, 2);
        to.add("map of index", at + t::real_index::kMap, 4, kRow);
        to.add("root", at + t::real_index::kRoot, 4, kPage);
        to.add("flags of index", at + t::real_index::kFlags, 1);
    }
    const std::size_t names = std::min(to.u32(t::kLogicalIndexes), 40u);
    for (std::size_t i = 0; i < names; ++i, at += t::kLogicalIndexRecord) {
        to.add("index", at + t::logical_index::kRealIndex, 4);
        to.add("other table", at + t::logical_index::kOtherTable, 4, kPage);
    }
    for (std::size_t i = 0; i < names && at < jet4::kPageSize; ++i) {
        to.add("length of name", at, 2);
        at += 2u + to.u16(at);
    }
    for (; at + 10 <= jet4::kPageSize && to.u16(at) != t::kNoColumn; at += 10) {
        to.add("column of maps", at, 2);
        to.add("owned map of column", at + 2, 4, kRow);
        to.add("free map of column", at + 6, 4, kRow);
    }
    to.add("end of maps", at, 2);
}

void index_page(Collector& to, bool leaf) {
    namespace x = jet4::index;
    to.add("free bytes", x::kFree, 2);
    to.add("owner", x::kOwner, 4, kPage);
    to.add("page before", x::kPrevious, 4, kPage);
    to.add("next page", x::kNext, 4, kPage);
    to.add("tail", x::kTail, 4, kPage);
    to.add("prefix", x::kPrefix, 2);
    to.add("level", x::kLevel, 1);
    std::size_t begin = 0;
    for (std::size_t bit = 0; bit < 8 * x::kBitmapBytes; ++bit) {
        if ((to.u8(x::kBitmap + bit / 8) >> (bit % 8) & 1) == 0) continue;
        to.add("ends of entries", x::kBitmap + bit / 8, 1);
        const std::size_t end = x::kEntries + bit;
        to.add("key", x::kEntries + begin, 1);
        if (bit < 8) continue;
        if (!leaf) to.add("child", end - 4, 4, kPage, true);
        to.add("row", end - (leaf ? 4 : 8), 4, kRow, true);
        begin = bit;
    }
}

}  // namespace

std::vector<Field> fields_of(ByteSpan page, PageNumber page_no) {
    Collector to(page);
    to.add("kind", 0, 1);
    if (page_no == jet4::kHeaderPage) {
        header(to);
        return to.take();
    }
    switch (page[0]) {
        case jet4::kDataPage: data_page(to, page_no); break;
        case jet4::kTableDefPage: definition(to); break;
        case jet4::kIndexNodePage: index_page(to, false); break;
        case jet4::kIndexLeafPage: index_page(to, true); break;
        case jet4::kUsageBitmapPage:
            for (std::size_t at = 0; at < 16; ++at) to.add("bits", jet4::usage::kPagePrefix + at, 1);
            break;
        default: to.add("any word", 4, 4, kPage);
    }
    return to.take();
}

}  // namespace kvdb_fuzz
