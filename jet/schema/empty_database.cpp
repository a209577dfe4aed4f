// A new file, page by page: header, global map, the four catalogue tables with their rows and indexes. The
// result is byte for byte what the format's own engine writes, with zeros where that leaves filler.
#include "jet/schema/empty_database.h"

#include <algorithm>

#include "jet/indexes/index_key.h"
#include "jet/indexes/index_page.h"
#include "jet/pages/header.h"
#include "jet/pages/page_cipher.h"
#include "jet/schema/catalog.h"
#include "jet/schema/table_def.h"
#include "jet/storage/data_page.h"
#include "jet/storage/row_codec.h"

namespace jet {
namespace {

namespace tdef = jet4::tdef;

constexpr std::size_t kMapRows = 31;
constexpr PageNumber kMapsPage = 6;  // the first of as many as the rows take
constexpr std::uint32_t kSystemFlags = 0x80000000;
constexpr std::uint16_t kSortSubId = 1;  // Jet 3: of the last builds

// Where things stand in the new file: after the maps the roots of the indexes, then the rows.
struct Layout {
    explicit Layout(const Format& of) : format(of) {}

    const Format& format;
    std::size_t maps_of_a_page() const {
        return (format.page_size - format.data.slots) / (format.usage.default_row + 2);
    }
    PageNumber first_root() const {
        return kMapsPage + static_cast<PageNumber>((kMapRows + maps_of_a_page() - 1) / maps_of_a_page());
    }
    PageNumber objects_rows() const { return first_root() + 7; }
    PageNumber aces_rows() const { return objects_rows() + 1; }
    PageNumber pages() const { return aces_rows() + 1; }
    RowId map_row(std::size_t row) const {
        return {kMapsPage + static_cast<PageNumber>(row / maps_of_a_page()),
                static_cast<std::uint8_t>(row % maps_of_a_page())};
    }
};

struct SystemColumn {
    const char16_t* name;
    ColumnType type;
    std::uint16_t number;
    std::uint16_t variable_index;
    std::uint8_t flags;
    std::uint16_t offset;
    std::uint16_t length;
};

constexpr std::uint8_t kFixed = 0x13;
constexpr std::uint8_t kVariable = 0x12;
constexpr std::uint8_t kSid = 0x32;

using enum ColumnType;

// Columns in the order of their records, by name.
constexpr SystemColumn kObjectsColumns[] = {
    {u"Connect", kMemo, 9, 3, kVariable, 0, 0},
    {u"Database", kMemo, 8, 2, kVariable, 0, 0},
    {u"DateCreate", kDate, 4, 1, kFixed, 10, 8},
    {u"DateUpdate", kDate, 5, 1, kFixed, 18, 8},
    {u"Flags", kLong, 7, 2, kFixed, 26, 4},
    {u"ForeignName", kText, 10, 4, kVariable, 0, 510},
    {u"Id", kLong, 0, 0, kFixed, 0, 4},
    {u"Lv", kOle, 13, 7, kVariable, 0, 0},
    {u"LvExtra", kOle, 16, 10, kVariable, 0, 0},
    {u"LvModule", kOle, 15, 9, kVariable, 0, 0},
    {u"LvProp", kOle, 14, 8, kVariable, 0, 0},
    {u"Name", kText, 2, 0, kVariable, 0, 510},
    {u"Owner", kBinary, 6, 1, kSid, 0, 510},
    {u"ParentId", kLong, 1, 0, kFixed, 4, 4},
    {u"RmtInfoLong", kOle, 12, 6, kVariable, 0, 0},
    {u"RmtInfoShort", kBinary, 11, 5, kVariable, 0, 510},
    {u"Type", kInteger, 3, 1, kFixed, 8, 2},
};
constexpr SystemColumn kAcesColumns[] = {
    {u"ACM", kLong, 2, 1, kFixed, 4, 4},
    {u"FInheritable", kBoolean, 3, 1, kFixed, 0, 1},
    {u"ObjectId", kLong, 0, 0, kFixed, 0, 4},
    {u"SID", kBinary, 1, 0, kSid, 0, 510},
};
constexpr SystemColumn kQueriesColumns[] = {
    {u"Attribute", kByte, 1, 0, kFixed, 4, 1},  {u"Expression", kMemo, 5, 3, kVariable, 0, 0},
    {u"Flag", kInteger, 6, 4, kFixed, 5, 2},    {u"LvExtra", kLong, 7, 4, kFixed, 7, 4},
    {u"Name1", kText, 3, 1, kVariable, 0, 510}, {u"Name2", kText, 4, 2, kVariable, 0, 510},
    {u"ObjectId", kLong, 0, 0, kFixed, 0, 4},   {u"Order", kBinary, 2, 0, kVariable, 0, 510},
};
constexpr SystemColumn kRelationshipsColumns[] = {
    {u"ccolumn", kLong, 2, 1, kFixed, 4, 4},
    {u"grbit", kLong, 1, 1, kFixed, 0, 4},
    {u"icolumn", kLong, 3, 1, kFixed, 8, 4},
    {u"szColumn", kText, 5, 2, kVariable, 0, 510},
    {u"szObject", kText, 4, 1, kVariable, 0, 510},
    {u"szReferencedColumn", kText, 7, 4, kVariable, 0, 510},
    {u"szReferencedObject", kText, 6, 3, kVariable, 0, 510},
    {u"szRelationship", kText, 0, 0, kVariable, 0, 510},
};

struct SystemIndex {
    std::vector<std::uint16_t> columns;  // numbers, all ascending
    std::uint8_t flags;
    std::uint8_t map_row;
    std::uint32_t distinct_keys;
};
struct SystemLogicalIndex {
    std::uint32_t number;  // its real index has the same
    std::uint8_t type;
    const char16_t* name;
};

// A catalogue table: its first map row is "owned", the next "free".
struct SystemTable {
    PageNumber page;
    std::span<const SystemColumn> columns;
    std::uint8_t maps;
    std::uint32_t rows;
    std::vector<SystemIndex> indexes;
    std::vector<SystemLogicalIndex> logical;  // by name
    PageNumber first_root;                    // counted from the first of all
};

const std::vector<SystemTable>& system_tables() {
    static const std::vector<SystemTable> tables = {
        {jet4::kObjectsPage,
         kObjectsColumns,
         0,
         8,
         {{{1, 2}, 0x81, 16, 8}, {{0}, 0x81, 17, 8}},
         {{1, 1, u"Id"}, {0, 0, u"ParentIdName"}},
         0},
        {jet4::kAcesPage, kAcesColumns, 18, 16, {{{0}, 0x88, 20, 8}}, {{0, 0, u"ObjectId"}}, 2},
        {jet4::kQueriesPage, kQueriesColumns, 21, 0, {{{0, 1, 2}, 0x81, 25, 0}}, {{0, 1, u"ObjectIdAttribute"}}, 3},
        {jet4::kRelationshipsPage,
         kRelationshipsColumns,
         26,
         0,
         {{{0}, 0x82, 28, 0}, {{4}, 0x82, 29, 0}, {{6}, 0x82, 30, 0}},
         {{1, 0, u"szObject"}, {2, 0, u"szReferencedObject"}, {0, 0, u"szRelationship"}},
         4},
    };
    return tables;
}

// Columns that Jet 4 has added.
bool is_later(const SystemTable& table, const SystemColumn& column, const Format& format) {
    return format.is_jet3() && table.page == jet4::kQueriesPage && std::u16string_view(column.name) == u"LvExtra";
}

ColumnDef column_of(const SystemColumn& column, const FileHeader& header) {
    ColumnDef made;
    made.name = column.name;
    made.type = column.type;
    made.number = column.number;
    made.variable_index = column.variable_index;
    made.flags = column.flags;
    made.fixed_offset = column.offset;
    made.length_bytes = column.length;
    if (!header.format->is_jet3()) return made;
    made.code_page = header.code_page;
    made.lcid = header.lcid;
    made.sort_sub_id = header.sort_sub_id;
    // Texts and binaries: as many bytes as Jet 4 has characters.
    if (made.length_bytes > jet4::kMaxTextCharacters) made.length_bytes = jet4::kMaxTextCharacters;
    return made;
}

TableDef definition_of(const SystemTable& table, const FileHeader& header) {
    const Layout layout(*header.format);
    TableDef def;
    def.format = header.format;
    def.code_page = header.text_code_page();
    def.page = table.page;
    def.kind = tdef::kSystemTable;
    def.row_count = table.rows;
    def.owned_map = layout.map_row(table.maps);
    def.free_map = layout.map_row(table.maps + 1u);
    for (const SystemColumn& column : table.columns) {
        if (is_later(table, column, *header.format)) continue;
        def.columns.push_back(column_of(column, header));
        if (!def.columns.back().is_fixed()) ++def.variable_columns;
    }
    def.max_columns = static_cast<std::uint16_t>(def.columns.size());
    // Long columns have their pairs of maps behind the table's own, by column number.
    std::vector<ColumnDef*> long_columns;
    for (ColumnDef& column : def.columns) {
        if (column.is_long()) long_columns.push_back(&column);
    }
    std::sort(long_columns.begin(), long_columns.end(), [](auto* a, auto* b) { return a->number < b->number; });
    std::size_t row = table.maps + 2u;
    for (ColumnDef* column : long_columns) {
        column->owned_map = layout.map_row(row++);
        column->free_map = layout.map_row(row++);
    }
    PageNumber root = layout.first_root() + table.first_root;
    for (const SystemIndex& index : table.indexes) {
        RealIndex real;
        for (std::uint16_t number : index.columns) real.columns.push_back({number, true});
        real.flags = static_cast<std::uint8_t>((index.flags & ~tdef::kIndexAlways) | header.format->real_index.always);
        real.map = layout.map_row(index.map_row);
        real.root = root++;
        real.distinct_keys = index.distinct_keys;
        def.real_indexes.push_back(std::move(real));
    }
    for (const SystemLogicalIndex& logical : table.logical) {
        LogicalIndex l;
        l.name = logical.name;
        l.number = l.real_index = logical.number;
        l.type = logical.type;
        def.logical_indexes.push_back(std::move(l));
    }
    return def;
}

struct Row {
    RowId id;
    std::vector<Value> values;  // by position in the definition
};

class Builder {
public:
    explicit Builder(const CreateOptions& options)
        : layout_(*options.format), bytes_(layout_.pages() * options.format->page_size) {
        header_.format = options.format;
        header_.code_page = options.code_page;
        header_.encryption_key = options.encryption_key;
        if (options.format->is_jet3()) {
            header_.sort_sub_id = kSortSubId;
            header_.lcid = options.lcid;
        }
        header_.build = options.engine_build;
        header_.creation_date = options.creation_date;
        header_.password = options.password;
        row_date_ = options.row_date != 0 ? options.row_date : options.creation_date;
    }

    ByteVector build() {
        build_header(page(jet4::kHeaderPage), header_);
        build_global_map();
        build_maps();
        for (const SystemTable& table : system_tables()) build_table(table);
        const PageCipher cipher(header_.encryption_key);
        for (PageNumber page_no = 0; page_no < layout_.pages(); ++page_no) cipher.apply(page_no, page(page_no));
        return std::move(bytes_);
    }

private:
    const Format& format() const { return layout_.format; }
    MutableByteSpan page(PageNumber page_no) {
        return MutableByteSpan(bytes_).subspan(page_no * format().page_size, format().page_size);
    }

    void build_global_map() {
        const MutableByteSpan map_page = page(jet4::kGlobalMapPage);
        format_data_page(map_page, 1);  // the one page that is its own owner
        ByteVector free_pages(format().usage.default_row);
        for (std::size_t bit = layout_.pages(); bit < 8 * (free_pages.size() - jet4::usage::kBitmap); ++bit) {
            free_pages[jet4::usage::kBitmap + bit / 8] |= static_cast<std::uint8_t>(1 << (bit % 8));
        }
        add_row(map_page, jet4::kGlobalMapPage, free_pages);
        add_row(map_page, jet4::kGlobalMapPage, ByteVector(format().usage.default_row));
    }

    void build_maps() {
        std::vector<ByteVector> rows(kMapRows, ByteVector(format().usage.default_row));
        const auto put = [&](std::size_t row, PageNumber member) {
            rows[row][jet4::usage::kBitmap + member / 8] |= static_cast<std::uint8_t>(1 << (member % 8));
        };
        for (const SystemTable& table : system_tables()) {
            PageNumber root = layout_.first_root() + table.first_root;
            for (const SystemIndex& index : table.indexes) put(index.map_row, root++);
        }
        for (std::size_t row : {0, 1}) put(row, layout_.objects_rows());
        for (std::size_t row : {18, 19}) put(row, layout_.aces_rows());
        for (std::size_t row = 0; row < kMapRows; ++row) {
            const PageNumber page_no = layout_.map_row(row).page;
            if (layout_.map_row(row).slot == 0) format_data_page(page(page_no), jet4::data::kUsageMapOwner);
            add_row(page(page_no), page_no, rows[row]);
        }
    }

    void build_table(const SystemTable& table) {
        const TableDef def = definition_of(table, header_);
        const MutableByteSpan def_page = page(def.page);
        const ByteVector definition = build_table_def(def);
        store_bytes(def_page, 0, definition);
        if (format().definition.free != 0) {
            store_u16(def_page, tdef::kFree,
                      static_cast<std::uint16_t>(format().page_size - definition.size() - tdef::kPageHeader));
        }
        std::vector<Row> rows;
        if (def.page == jet4::kObjectsPage) rows = object_rows(def);
        if (def.page == jet4::kAcesPage) rows = ace_rows(def);
        for (const RealIndex& index : def.real_indexes) build_index(index, def, rows);
    }

    std::vector<Row> object_rows(const TableDef& def) {
        struct Object {
            std::int32_t id;
            std::int32_t parent;
            const char16_t* name;
            std::int16_t type;
            ByteSpan owner;
        };
        const Object objects[] = {
            {jet4::kTablesContainer, jet4::kRootContainer, u"Tables", 3, kEngineSid},
            {jet4::kDatabasesContainer, jet4::kRootContainer, u"Databases", 3, kEngineSid},
            {jet4::kRelationshipsContainer, jet4::kRootContainer, u"Relationships", 3, kEngineSid},
            {jet4::kDatabaseObject, jet4::kDatabasesContainer, u"MSysDb", 2, kAdminSid},
            {2, jet4::kTablesContainer, u"MSysObjects", kTableObject, kEngineSid},
            {3, jet4::kTablesContainer, u"MSysACEs", kTableObject, kEngineSid},
            {4, jet4::kTablesContainer, u"MSysQueries", kTableObject, kEngineSid},
            {5, jet4::kTablesContainer, u"MSysRelationships", kTableObject, kEngineSid},
        };
        format_data_page(page(layout_.objects_rows()), def.page);
        std::vector<Row> rows;
        for (const Object& object : objects) {
            rows.push_back(add(def, layout_.objects_rows(),
                               {{u"Id", object.id},
                                {u"ParentId", object.parent},
                                {u"Name", std::u16string(object.name)},
                                {u"Type", object.type},
                                {u"DateCreate", Date{row_date_}},
                                {u"DateUpdate", Date{row_date_}},
                                {u"Flags", static_cast<std::int32_t>(kSystemFlags)},
                                {u"Owner", masked(object.owner)}}));
        }
        return rows;
    }

    std::vector<Row> ace_rows(const TableDef& def) {
        struct Ace {
            std::int32_t object;
            ByteSpan sid;
            std::int32_t rights;
            bool inheritable;
        };
        const Ace aces[] = {
            {2, kAdminSid, 0x060000, false},
            {3, kAdminSid, 0x060000, false},
            {4, kAdminSid, 0x060000, false},
            {5, kAdminSid, 0x0E0000, false},
            {jet4::kTablesContainer, kCreatorSid, 0x0F00FE, true},
            {jet4::kTablesContainer, kAdminSid, 0x060001, false},
            {jet4::kRelationshipsContainer, kCreatorSid, 0x0F00FE, true},
            {jet4::kRelationshipsContainer, kAdminSid, 0x060001, false},
            {jet4::kDatabasesContainer, kAdminSid, 0x060000, false},
            {jet4::kDatabaseObject, kAdminSid, 0x06000E, false},
            {jet4::kDatabaseObject, kUsersSid, 0x00000E, false},
            {4, kUsersSid, 0x000014, false},
            {5, kUsersSid, 0x000014, false},
            {2, kUsersSid, 0x000014, false},
            {jet4::kTablesContainer, kUsersSid, 0x0FFEFF, true},
            {jet4::kRelationshipsContainer, kUsersSid, 0x0FFFFF, true},
        };
        format_data_page(page(layout_.aces_rows()), def.page);
        std::vector<Row> rows;
        for (const Ace& ace : aces) {
            rows.push_back(add(def, layout_.aces_rows(),
                               {{u"ObjectId", ace.object},
                                {u"SID", masked(ace.sid)},
                                {u"ACM", ace.rights},
                                {u"FInheritable", ace.inheritable}}));
        }
        return rows;
    }

    Row add(const TableDef& def, PageNumber page_no, const std::vector<std::pair<const char16_t*, Value>>& values) {
        Row row;
        row.values.resize(def.columns.size());
        std::vector<StoredValue> stored(def.columns.size());
        for (const auto& [name, value] : values) {
            const std::size_t position = *def.find_column(name);
            row.values[position] = value;
            stored[position] = encode_value(value, def.columns[position]);
        }
        row.id = {page_no, add_row(page(page_no), page_no, encode_row(def, stored))};
        return row;
    }

    ByteVector masked(ByteSpan sid) const {
        ByteVector bytes(sid.begin(), sid.end());
        mask_sid(bytes, header_);
        return bytes;
    }

    // One leaf holds all entries of a new file.
    void build_index(const RealIndex& index, const TableDef& def, const std::vector<Row>& rows) {
        std::vector<ByteVector> entries;
        for (const Row& row : rows) {
            ByteVector entry = make_index_key(index, def, row.values);
            append_be(entry, row.id.pack(), jet4::index::kRowPointer);
            entries.push_back(std::move(entry));
        }
        std::sort(entries.begin(), entries.end());
        IndexPage leaf(true, 0, def.page, format());
        for (const ByteVector& entry : entries) leaf.insert(leaf.size(), entry);
        leaf.write(page(index.root));
    }

    Layout layout_;
    ByteVector bytes_;
    FileHeader header_;
    double row_date_ = 0;
};

}  // namespace

ByteVector build_empty_database(const CreateOptions& options) { return Builder(options).build(); }

}  // namespace jet
