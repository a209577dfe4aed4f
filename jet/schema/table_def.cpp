// The two codecs of a table definition. Both work on the logical definition (the chain of pages joined);
// cutting it into pages is the schema editor's part.
//
// Whatever parse_table_def lets through keeps these promises to the code above it:
//  - no more columns, indexes and names of indexes than the format allows, and no longer names;
//  - column numbers are unique and below max_columns, the variable indexes of variable columns are unique and below
//    variable_columns, fixed columns lie inside a page and share no byte, long values are variable;
//  - every index names existing columns, every name of an index an existing one;
//  - every map has a row of its own, and every index a root of its own.
// Whether a map or a root is what its address says is seen where it is loaded (usage_map.cpp, index_page.cpp).
#include "jet/schema/table_def.h"

#include <algorithm>
#include <bitset>
#include <numeric>
#include <set>

#include "jet/base/code_page.h"
#include "jet/indexes/collation.h"

namespace jet {

namespace {

namespace tdef = jet4::tdef;

// Reads the definition front to back; every step is checked against the definition's end.
class DefReader {
public:
    DefReader(ByteSpan bytes, PageNumber page, const Format& format, std::uint16_t code_page)
        : bytes_(bytes), page_(page), format_(format), code_page_(code_page) {}

    const Format& format() const { return format_; }

    ByteSpan take(std::size_t count) {
        if (count > remaining()) damaged("the table definition ends inside a structure");
        const ByteSpan taken = bytes_.subspan(at_, count);
        at_ += count;
        return taken;
    }
    std::uint16_t take_u16() { return load_u16(take(2), 0); }
    RowId take_row() { return RowId::unpack(load_u32(take(4), 0)); }
    std::u16string take_name() {
        if (code_page_ != 0) return take_narrow_name();
        const std::size_t name_bytes = take_u16();
        if (name_bytes % 2 != 0) damaged("a name in the table definition has half a character");
        if (name_bytes > 2 * jet4::kMaxNameCharacters) damaged("a name in the table definition is too long");
        const ByteSpan text = take(name_bytes);
        std::u16string name(name_bytes / 2, u'\0');
        for (std::size_t i = 0; i < name.size(); ++i) name[i] = static_cast<char16_t>(load_u16(text, 2 * i));
        return name;
    }
    // For counts that announce records: none may be allocated for before it is known to be there.
    void require_records(std::uint64_t count, std::size_t record_bytes) const {
        if (count > remaining() / record_bytes) damaged("the table definition announces more entries than it holds");
    }
    std::size_t remaining() const { return bytes_.size() - at_; }
    [[noreturn]] void damaged(std::string_view rule) const { corrupt(page_, rule); }

private:
    std::u16string take_narrow_name() {
        const std::size_t name_bytes = load_u8(take(1), 0);
        std::u16string name;
        decode_narrow(take(name_bytes), code_page_, name);
        if (name.size() > jet4::kMaxNameCharacters) damaged("a name in the table definition is too long");
        return name;
    }

    ByteSpan bytes_;
    PageNumber page_;
    const Format& format_;
    std::uint16_t code_page_;
    std::size_t at_ = 0;
};

// Bytes of a value in the fixed area; 0 where the column itself says.
std::size_t natural_size(ColumnType type) {
    switch (type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte: return 1;
        case ColumnType::kInteger: return 2;
        case ColumnType::kLong:
        case ColumnType::kSingle:
        case ColumnType::kComplexId: return 4;
        case ColumnType::kCurrency:
        case ColumnType::kDouble:
        case ColumnType::kDate: return 8;
        case ColumnType::kGuid: return 16;
        case ColumnType::kNumeric: return 17;
        default: return 0;
    }
}

ColumnDef parse_column(ByteSpan record, const DefReader& reader, std::uint16_t code_page) {
    const Format::Column& at = reader.format().column;
    ColumnDef column;
    column.type = static_cast<ColumnType>(load_u8(record, tdef::column::kType));
    column.number = load_u16(record, at.number);
    column.variable_index = load_u16(record, at.variable_index);
    column.ordinal = load_u16(record, at.ordinal);
    if (column.type == ColumnType::kNumeric && at.ext_flags != 0) {
        column.precision = load_u8(record, at.lcid);
        column.scale = load_u8(record, tdef::column::kScale);
    } else {
        column.lcid = load_u16(record, at.lcid);
    }
    if (at.sort_version != 0 && column.type != ColumnType::kNumeric) {
        column.sort_version = load_u8(record, at.sort_version);
    }
    if (at.sort_sub_id != 0) column.sort_sub_id = load_u16(record, at.sort_sub_id);
    if (at.code_page != 0) {
        // A column of another kind may name none.
        const std::uint16_t own = load_u16(record, at.code_page);
        column.code_page = find_code_page(own) ? own : code_page;
    }
    column.flags = load_u8(record, at.flags);
    if (at.ext_flags != 0) column.ext_flags = load_u8(record, at.ext_flags);
    // Variable columns carry garbage here.
    column.fixed_offset = column.is_fixed() ? load_u16(record, at.fixed_offset) : std::uint16_t{0};
    column.length_bytes = load_u16(record, at.length);
    return column;
}

void append_column(ByteVector& to, const ColumnDef& column, const Format& format) {
    const Format::Column& at = format.column;
    ByteVector record(at.bytes);
    store_u8(record, tdef::column::kType, static_cast<std::uint8_t>(column.type));
    if (at.magic != 0) store_u32(record, at.magic, tdef::kMagicValue);
    store_u16(record, at.number, column.number);
    store_u16(record, at.variable_index, column.variable_index);
    store_u16(record, at.ordinal, column.ordinal);
    if (column.type == ColumnType::kNumeric) {
        store_u8(record, at.lcid, column.precision);
        store_u8(record, tdef::column::kScale, column.scale);
    } else {
        store_u16(record, at.lcid, column.lcid);
        if (at.sort_version != 0) store_u8(record, at.sort_version, column.sort_version);
    }
    if (at.sort_sub_id != 0) store_u16(record, at.sort_sub_id, column.sort_sub_id);
    if (at.code_page != 0) store_u16(record, at.code_page, column.code_page);
    store_u8(record, at.flags, column.flags);
    if (at.ext_flags != 0) store_u8(record, at.ext_flags, column.ext_flags);
    store_u16(record, at.fixed_offset, column.fixed_offset);
    store_u16(record, at.length, column.length_bytes);
    append_bytes(to, record);
}

RealIndex parse_real_index(ByteSpan record, const Format& format) {
    const Format::RealIndex& at = format.real_index;
    RealIndex index;
    for (std::size_t i = 0; i < tdef::kKeyColumns; ++i) {
        const std::size_t key = at.keys + tdef::real_index::kKeyBytes * i;
        const std::uint16_t number = load_u16(record, key);
        if (number == tdef::kNoColumn) continue;
        index.columns.push_back({number, load_u8(record, key + tdef::real_index::kKeyOrder) != 0});
    }
    index.map = RowId::unpack(load_u32(record, at.map));
    index.root = load_u32(record, at.root);
    index.flags = load_u8(record, at.flags);
    return index;
}

void append_real_index(ByteVector& to, const RealIndex& index, const Format& format) {
    const Format::RealIndex& at = format.real_index;
    ByteVector record(at.bytes);
    if (at.keys != 0) store_u32(record, tdef::real_index::kMagic, tdef::kIndexMagicValue);
    for (std::size_t i = 0; i < tdef::kKeyColumns; ++i) {
        const bool used = i < index.columns.size();
        const std::size_t key = at.keys + tdef::real_index::kKeyBytes * i;
        store_u16(record, key, used ? index.columns[i].column_number : tdef::kNoColumn);
        store_u8(record, key + tdef::real_index::kKeyOrder, used && index.columns[i].ascending ? 1 : 0);
    }
    store_u32(record, at.map, index.map.pack());
    store_u32(record, at.root, index.root);
    store_u8(record, at.flags, index.flags);
    append_bytes(to, record);
}

// The fields of a logical index stand in the same order in all versions.
LogicalIndex parse_logical_index(ByteSpan record, const Format& format) {
    const auto at = [&](std::size_t field) {
        return field - tdef::logical_index::kNumber + format.logical_index.number;
    };
    LogicalIndex index;
    index.number = load_u32(record, at(tdef::logical_index::kNumber));
    index.real_index = load_u32(record, at(tdef::logical_index::kRealIndex));
    index.relation_side = load_u8(record, at(tdef::logical_index::kRelationSide));
    index.other_index = load_i32(record, at(tdef::logical_index::kOtherIndex));
    index.other_table = load_u32(record, at(tdef::logical_index::kOtherTable));
    index.cascade_update = load_u8(record, at(tdef::logical_index::kCascadeUpdate));
    index.cascade_delete = load_u8(record, at(tdef::logical_index::kCascadeDelete));
    index.type = load_u8(record, at(tdef::logical_index::kType));
    return index;
}

void append_logical_index(ByteVector& to, const LogicalIndex& index, const Format& format) {
    const auto at = [&](std::size_t field) {
        return field - tdef::logical_index::kNumber + format.logical_index.number;
    };
    ByteVector record(format.logical_index.bytes);
    if (format.logical_index.number != 0) store_u32(record, tdef::logical_index::kMagic, tdef::kMagicValue);
    store_u32(record, at(tdef::logical_index::kNumber), index.number);
    store_u32(record, at(tdef::logical_index::kRealIndex), index.real_index);
    store_u8(record, at(tdef::logical_index::kRelationSide), index.relation_side);
    store_u32(record, at(tdef::logical_index::kOtherIndex), static_cast<std::uint32_t>(index.other_index));
    store_u32(record, at(tdef::logical_index::kOtherTable), index.other_table);
    store_u8(record, at(tdef::logical_index::kCascadeUpdate), index.cascade_update);
    store_u8(record, at(tdef::logical_index::kCascadeDelete), index.cascade_delete);
    store_u8(record, at(tdef::logical_index::kType), index.type);
    append_bytes(to, record);
}

void append_name(ByteVector& to, std::u16string_view name, std::uint16_t code_page) {
    if (code_page != 0) {
        const ByteVector bytes = encode_narrow(name, code_page);
        append_u8(to, static_cast<std::uint8_t>(bytes.size()));
        append_bytes(to, bytes);
        return;
    }
    append_u16(to, static_cast<std::uint16_t>(2 * name.size()));
    for (const char16_t unit : name) append_u16(to, unit);
}

void check_columns(const TableDef& def, const DefReader& reader) {
    std::set<std::uint16_t> numbers;
    std::set<std::uint16_t> variable_indexes;
    for (const ColumnDef& column : def.columns) {
        if (column.number >= def.max_columns) reader.damaged("a column number exceeds the table's columns");
        if (!numbers.insert(column.number).second) reader.damaged("two columns have one number");
        if (!column.is_fixed()) {
            if (column.variable_index >= def.variable_columns) {
                reader.damaged("a column's place among the variable columns exceeds their number");
            }
            if (!variable_indexes.insert(column.variable_index).second) {
                reader.damaged("two variable columns have one place");
            }
            continue;
        }
        if (column.is_long()) reader.damaged("a long value column is marked as of fixed length");
        const std::size_t natural = natural_size(column.type);
        if (natural != 0 && column.length_bytes != natural) reader.damaged("a column's length is not its type's");
        if (std::size_t{column.fixed_offset} + column.length_bytes > def.format->page_size) {
            reader.damaged("a fixed column lies outside of any row");
        }
    }
}

void check_indexes(const TableDef& def, const DefReader& reader) {
    for (const RealIndex& index : def.real_indexes) {
        if (index.columns.empty()) reader.damaged("an index has no columns");
        for (const KeyColumn& key : index.columns) {
            if (!def.column_by_number(key.column_number)) reader.damaged("an index names a column that is not there");
        }
    }
    for (const LogicalIndex& index : def.logical_indexes) {
        if (index.real_index >= def.real_indexes.size()) reader.damaged("an index name has no index");
    }
}

void check_fixed_area(const TableDef& def, const DefReader& reader) {
    std::bitset<jet4::kPageSize> taken;
    for (const ColumnDef& column : def.columns) {
        if (!column.is_fixed() || column.type == ColumnType::kBoolean) continue;
        for (std::size_t i = 0; i < column.length_bytes; ++i) {
            if (taken.test(column.fixed_offset + i)) reader.damaged("two columns share bytes of the row");
            taken.set(column.fixed_offset + i);
        }
    }
}

// A map or a tree that served two purposes would be changed for the one behind the back of the other.
void check_owned_structures(const TableDef& def, const DefReader& reader) {
    std::set<RowId> maps;
    const auto add = [&](RowId map) {
        if (map.is_null()) return;
        if (map.page == jet4::kHeaderPage || map.page >= jet4::kMaxPages) reader.damaged("a map lies outside the file");
        if (map.page == jet4::kGlobalMapPage && map.slot < 2) reader.damaged("a map is one of the file itself");
        if (!maps.insert(map).second) reader.damaged("two maps of the table are one");
    };
    add(def.owned_map);
    add(def.free_map);
    for (const ColumnDef& column : def.columns) {
        add(column.owned_map);
        add(column.free_map);
    }
    std::set<PageNumber> roots;
    for (const RealIndex& index : def.real_indexes) {
        add(index.map);
        if (index.root <= jet4::kRelationshipsPage || index.root >= jet4::kMaxPages) {
            reader.damaged("the root of an index cannot be where it says");
        }
        if (!roots.insert(index.root).second) reader.damaged("two indexes have one root");
    }
}

// The list of long value maps, up to and including its end mark.
void parse_long_value_maps(TableDef& def, DefReader& reader) {
    std::set<std::uint16_t> seen;
    for (std::uint16_t number = reader.take_u16(); number != tdef::kNoColumn; number = reader.take_u16()) {
        const std::optional<std::size_t> position = def.column_by_number(number);
        if (!position || !def.columns[*position].is_long()) reader.damaged("page maps belong to no long value column");
        if (!seen.insert(number).second) reader.damaged("a long value column has its page maps twice");
        def.columns[*position].owned_map = reader.take_row();
        def.columns[*position].free_map = reader.take_row();
    }
}

// How many records of each kind follow the head.
struct Counts {
    std::uint32_t columns = 0;
    std::uint32_t logical_indexes = 0;
    std::uint32_t real_indexes = 0;
};

Counts parse_head(TableDef& def, DefReader& reader) {
    const Format::Definition& at = def.format->definition;
    const ByteSpan head = reader.take(at.fixed_header);
    if (at.magic != 0 && load_u32(head, at.magic) != tdef::kMagicValue) {
        reader.damaged("the table definition lacks its mark");
    }
    def.row_count = load_u32(head, at.row_count);
    def.last_autonumber = load_i32(head, at.last_autonumber);
    if (at.autonumber_flag != 0) def.change_counter = load_u64(head, tdef::kFiller);
    def.kind = load_u8(head, at.kind);
    def.max_columns = load_u16(head, at.max_columns);
    def.variable_columns = load_u16(head, at.variable_columns);
    def.owned_map = RowId::unpack(load_u32(head, at.owned_map));
    def.free_map = RowId::unpack(load_u32(head, at.free_map));
    const Counts counts{load_u16(head, at.columns), load_u32(head, at.logical_indexes),
                        load_u32(head, at.real_indexes)};
    if (def.max_columns > jet4::kMaxColumns || counts.columns > jet4::kMaxColumns ||
        def.variable_columns > jet4::kMaxColumns) {
        reader.damaged("the table has more columns than it can have");
    }
    if (counts.real_indexes > jet4::kMaxIndexes || counts.logical_indexes > jet4::kMaxLogicalIndexes) {
        reader.damaged("the table has more indexes than it can have");
    }
    return counts;
}

std::vector<ByteSpan> take_records(DefReader& reader, std::uint32_t count, std::size_t bytes) {
    reader.require_records(count, bytes);
    std::vector<ByteSpan> records(count);
    for (ByteSpan& record : records) record = reader.take(bytes);
    return records;
}

}  // namespace

std::optional<std::size_t> TableDef::find_column(std::u16string_view column_name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (same_name(columns[i].name, column_name)) return i;
    }
    return std::nullopt;
}

std::string described_column(const TableDef& def, const ColumnDef& column) {
    return "column '" + to_utf8(column.name) + "' of table '" + to_utf8(def.name) + "'";
}

TableDef parse_table_def(ByteSpan bytes, PageNumber page, const Format& format, std::uint16_t code_page) {
    const std::size_t fixed_header = format.definition.fixed_header;
    if (bytes.size() < fixed_header) corrupt(page, "the table definition is too short");
    if (load_u8(bytes, 0) != jet4::kTableDefPage) corrupt(page, "a table definition is expected here");
    const std::uint32_t length = load_u32(bytes, tdef::kLength);
    if (length < fixed_header || length > bytes.size()) corrupt(page, "the table definition's length is wrong");
    DefReader reader(bytes.first(length), page, format, code_page);

    TableDef def;
    def.format = &format;
    def.code_page = code_page;
    def.page = page;
    const Counts counts = parse_head(def, reader);
    std::vector<std::uint32_t> distinct_keys;
    for (const ByteSpan record : take_records(reader, counts.real_indexes, format.definition.index_statistics)) {
        distinct_keys.push_back(load_u32(record, tdef::kDistinctKeys));
    }
    for (const ByteSpan record : take_records(reader, counts.columns, format.column.bytes)) {
        def.columns.push_back(parse_column(record, reader, code_page));
    }
    for (ColumnDef& column : def.columns) column.name = reader.take_name();
    for (const ByteSpan record : take_records(reader, counts.real_indexes, format.real_index.bytes)) {
        def.real_indexes.push_back(parse_real_index(record, format));
        def.real_indexes.back().distinct_keys = distinct_keys[def.real_indexes.size() - 1];
    }
    for (const ByteSpan record : take_records(reader, counts.logical_indexes, format.logical_index.bytes)) {
        def.logical_indexes.push_back(parse_logical_index(record, format));
    }
    for (LogicalIndex& index : def.logical_indexes) index.name = reader.take_name();

    check_columns(def, reader);
    check_indexes(def, reader);
    check_fixed_area(def, reader);
    parse_long_value_maps(def, reader);
    check_owned_structures(def, reader);
    if (reader.remaining() != 0) reader.damaged("the table definition continues after its end");

    std::sort(def.columns.begin(), def.columns.end(), [](const ColumnDef& a, const ColumnDef& b) {
        return a.ordinal != b.ordinal ? a.ordinal < b.ordinal : a.number < b.number;
    });
    return def;
}

namespace {

ByteVector build_head(const TableDef& def) {
    const Format::Definition& at = def.format->definition;
    ByteVector bytes(at.fixed_header);
    bytes[0] = jet4::kTableDefPage;
    bytes[jet4::kPageKindMark] = 1;
    if (at.free == 0) store_u16(bytes, tdef::kFree, tdef::kJet3Mark);
    if (at.magic != 0) store_u32(bytes, at.magic, tdef::kMagicValue);
    store_u32(bytes, at.row_count, def.row_count);
    store_u32(bytes, at.last_autonumber, static_cast<std::uint32_t>(def.last_autonumber));
    if (at.autonumber_flag != 0) {
        store_u32(bytes, at.autonumber_flag, 1);
        store_u64(bytes, tdef::kFiller, def.change_counter);
    }
    store_u8(bytes, at.kind, def.kind);
    store_u16(bytes, at.max_columns, def.max_columns);
    store_u16(bytes, at.variable_columns, def.variable_columns);
    store_u16(bytes, at.columns, static_cast<std::uint16_t>(def.columns.size()));
    store_u32(bytes, at.logical_indexes, static_cast<std::uint32_t>(def.logical_indexes.size()));
    store_u32(bytes, at.real_indexes, static_cast<std::uint32_t>(def.real_indexes.size()));
    store_u32(bytes, at.owned_map, def.owned_map.pack());
    store_u32(bytes, at.free_map, def.free_map.pack());
    return bytes;
}

// Where the caller has no order of its own: Jet 3 has the records by number, Jet 4 takes any.
std::vector<std::size_t> usual_order(const TableDef& def) {
    std::vector<std::size_t> order(def.columns.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (!def.format->is_jet3()) return order;
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return def.columns[a].number < def.columns[b].number; });
    return order;
}

}  // namespace

ByteVector build_table_def(const TableDef& def, const std::vector<std::size_t>& record_order) {
    const Format& format = *def.format;
    const std::vector<std::size_t> order = record_order.empty() ? usual_order(def) : record_order;
    ByteVector bytes = build_head(def);
    for (const RealIndex& index : def.real_indexes) {
        bytes.resize(bytes.size() + format.definition.index_statistics);
        const std::size_t at = bytes.size() - format.definition.index_statistics;
        store_u32(bytes, at + tdef::kDistinctKeys, index.distinct_keys);
    }
    for (const std::size_t position : order) append_column(bytes, def.columns[position], format);
    for (const std::size_t position : order) append_name(bytes, def.columns[position].name, def.code_page);
    for (const RealIndex& index : def.real_indexes) append_real_index(bytes, index, format);
    for (const LogicalIndex& index : def.logical_indexes) append_logical_index(bytes, index, format);
    for (const LogicalIndex& index : def.logical_indexes) append_name(bytes, index.name, def.code_page);

    for (const std::size_t position : order) {
        const ColumnDef& column = def.columns[position];
        if (!column.is_long()) continue;
        append_u16(bytes, column.number);
        append_u32(bytes, column.owned_map.pack());
        append_u32(bytes, column.free_map.pack());
    }
    append_u16(bytes, tdef::kNoColumn);
    store_u32(bytes, tdef::kLength, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

}  // namespace jet
