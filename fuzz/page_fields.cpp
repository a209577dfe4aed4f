#include "fuzz/page_fields.h"

#include <algorithm>

#include "jet/base/format.h"

namespace kvdb_fuzz {

using namespace jet;

namespace {

using enum Meaning;

class Collector {
public:
    explicit Collector(ByteSpan page) : page_(page), format_(format_of(page)) {}

    const Format& format() const { return format_; }

    void add(const char* name, std::size_t at, std::size_t bytes, Meaning meaning = kNumber, bool big_endian = false) {
        if (at + bytes <= page_.size()) fields_.push_back({name, at, bytes, meaning, big_endian});
    }
    std::uint16_t u16(std::size_t at) const { return at + 2 <= page_.size() ? load_u16(page_, at) : std::uint16_t{0}; }
    std::uint32_t u32(std::size_t at) const { return at + 4 <= page_.size() ? load_u32(page_, at) : 0; }
    std::uint8_t u8(std::size_t at) const { return at < page_.size() ? page_[at] : std::uint8_t{0}; }
    // A number in as many bytes.
    std::uint32_t number(std::size_t at, std::size_t bytes) const { return bytes == 1 ? u8(at) : u16(at); }
    std::vector<Field> take() { return std::move(fields_); }

private:
    ByteSpan page_;
    const Format& format_;
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
    to.add("sort order", to.format().header.sort_order, 4);
    if (to.format().header.has_creation_date) to.add("creation date", h::kCreationDate + 4, 4);
    to.add("commit word", to.format().header.commit_words, 2);
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
void long_value(Collector& to, std::size_t at, std::size_t end) {
    to.add("length of long value", at, 4);
    to.add("place of long value", at + 4, 4, kRow);
    to.add("stamp of long value", at + 8, 4);
    if (to.u32(at + 12) == to.format().properties_mark) property_blob(to, at + 12, end);
}

// The fields of a table row, from both ends; in the variable part, references to long values.
void table_row(Collector& to, std::size_t begin, std::size_t end) {
    const std::size_t width = to.format().data.row_number_bytes;
    to.add("count of columns", begin, width);
    for (std::size_t at = begin + width; at + 4 <= std::min(end, begin + width + 40); at += 4) {
        to.add("fixed value", at, 4, kRow);
    }
    const std::size_t mask = (to.number(begin, width) + 7u) / 8;
    if (begin + 2 * width + mask > end) return;
    for (std::size_t at = end - mask; at < end; ++at) to.add("null mask", at, 1);
    const std::size_t count_at = end - mask - width;
    const std::size_t count = to.number(count_at, width);
    to.add("count of offsets", count_at, width);
    // Where an offset has one byte, so many more tell which values begin 256 bytes further.
    const std::size_t jumps = width == 1 ? (end - begin - 1) / 256 : 0;
    if (begin + width * (count + 2) + jumps > count_at) return;
    for (std::size_t i = 0; i < jumps; ++i) to.add("jump", count_at - i - 1, 1);
    for (std::size_t i = 0; i <= count; ++i) {
        const std::size_t at = count_at - jumps - width * (i + 1);
        to.add("offset of value", at, width);
        const std::size_t value = begin + to.number(at, width);
        if (i == count || value + 12 > count_at || (to.u32(value + 8) != 0 && to.u32(value) >> 30 != 0)) continue;
        long_value(to, value, count_at);
    }
}

void data_page(Collector& to, PageNumber page_no) {
    namespace d = jet4::data;
    to.add("free bytes", d::kFree, 2);
    to.add("owner", d::kOwner, 4, kPage);
    if (to.format().long_value.stamp != 0) to.add("stamp", d::kStamp, 4);
    to.add("count of slots", to.format().data.slot_count, 2);
    const std::uint32_t owner = to.u32(d::kOwner);
    std::size_t end = to.format().page_size;
    for (std::size_t i = 0; i < std::min<std::size_t>(to.u16(to.format().data.slot_count), 256); ++i) {
        const std::size_t slot_at = to.format().slot_at(i);
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
            if (to.u32(begin) == to.format().properties_mark) property_blob(to, begin, end);
            if (to.u32(begin + 4) == to.format().properties_mark) property_blob(to, begin + 4, end);
        } else if (owner == d::kUsageMapOwner || page_no == jet4::kGlobalMapPage) {
            usage_map(to, begin, end);
        } else {
            table_row(to, begin, end);
        }
        end = begin;
    }
}

void columns_of_definition(Collector& to, std::size_t& at, std::size_t columns) {
    const Format::Column& c = to.format().column;
    for (std::size_t i = 0; i < columns; ++i, at += c.bytes) {
        to.add("type", at, 1);
        to.add("number", at + c.number, 2);
        to.add("variable index", at + c.variable_index, 2);
        to.add("ordinal", at + c.ordinal, 2);
        to.add("order of texts", at + c.lcid, 2);
        if (c.code_page != 0) to.add("code page of texts", at + c.code_page, 2);
        to.add("flags", at + c.flags, 1);
        if (c.ext_flags != 0) to.add("more flags", at + c.ext_flags, 1);
        to.add("fixed offset", at + c.fixed_offset, 2);
        to.add("length", at + c.length, 2);
    }
}

void names(Collector& to, std::size_t& at, std::size_t count) {
    const std::size_t width = to.format().definition.name_length_bytes;
    for (std::size_t i = 0; i < count && at < to.format().page_size; ++i) {
        to.add("length of name", at, width);
        to.add("name", at + width, 2);
        at += width + to.number(at, width);
    }
}

void definition(Collector& to) {
    namespace t = jet4::tdef;
    const Format::Definition& d = to.format().definition;
    if (d.free != 0) to.add("free bytes", d.free, 2);
    to.add("next page", t::kNext, 4, kPage);
    to.add("length", t::kLength, 4);
    if (d.magic != 0) to.add("mark", d.magic, 4);
    to.add("row count", d.row_count, 4);
    to.add("last number", d.last_autonumber, 4);
    to.add("most columns", d.max_columns, 2);
    to.add("variable columns", d.variable_columns, 2);
    to.add("columns", d.columns, 2);
    to.add("logical indexes", d.logical_indexes, 4);
    to.add("real indexes", d.real_indexes, 4);
    to.add("owned map", d.owned_map, 4, kRow);
    to.add("free map", d.free_map, 4, kRow);
    const std::size_t indexes = std::min(to.u32(d.real_indexes), 32u);
    const std::size_t columns = std::min<std::size_t>(to.u16(d.columns), 255);
    std::size_t at = d.fixed_header + indexes * d.index_statistics;
    columns_of_definition(to, at, columns);
    names(to, at, columns);
    const Format::RealIndex& real = to.format().real_index;
    for (std::size_t i = 0; i < indexes; ++i, at += real.bytes) {
        for (std::size_t key = 0; key < 3; ++key) to.add("key", at + real.keys + 3 * key, 2);
        to.add("map of index", at + real.map, 4, kRow);
        to.add("root", at + real.root, 4, kPage);
        to.add("flags of index", at + real.flags, 1);
    }
    const Format::LogicalIndex& logical = to.format().logical_index;
    const std::size_t shift = t::logical_index::kNumber - logical.number;
    const std::size_t count = std::min(to.u32(d.logical_indexes), 40u);
    for (std::size_t i = 0; i < count; ++i, at += logical.bytes) {
        to.add("index", at + t::logical_index::kRealIndex - shift, 4);
        to.add("other table", at + t::logical_index::kOtherTable - shift, 4, kPage);
    }
    names(to, at, count);
    for (; at + 10 <= to.format().page_size && to.u16(at) != t::kNoColumn; at += 10) {
        to.add("column of maps", at, 2);
        to.add("owned map of column", at + 2, 4, kRow);
        to.add("free map of column", at + 6, 4, kRow);
    }
    to.add("end of maps", at, 2);
}

void index_page(Collector& to, bool leaf) {
    const Format::IndexPage& x = to.format().index;
    to.add("free bytes", jet4::index::kFree, 2);
    to.add("owner", jet4::index::kOwner, 4, kPage);
    to.add("page before", x.previous, 4, kPage);
    to.add("next page", x.next, 4, kPage);
    to.add("tail", x.tail, 4, kPage);
    to.add("prefix", x.prefix, x.prefix_bytes);
    to.add("level", x.level, 1);
    std::size_t begin = 0;
    for (std::size_t bit = 0; bit < 8 * x.bitmap_bytes; ++bit) {
        if ((to.u8(x.bitmap + bit / 8) >> (bit % 8) & 1) == 0) continue;
        to.add("ends of entries", x.bitmap + bit / 8, 1);
        const std::size_t end = x.entries + bit;
        to.add("key", x.entries + begin, 1);
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
