#include "jet/schema/schema_editor.h"

#include <algorithm>

#include "jet/base/code_page.h"
#include "jet/storage/data_page.h"
#include "os/system.h"

namespace jet {

namespace tdef = jet4::tdef;

namespace {

void check_name(std::u16string_view name, int number, const char* what) {
    const auto forbidden = [](char16_t c) {
        return c < u' ' || std::u16string_view(u".!`[]").find(c) != std::u16string_view::npos;
    };
    if (name.empty() || name.size() > jet4::kMaxNameCharacters || name.front() == u' ' ||
        std::any_of(name.begin(), name.end(), forbidden)) {
        fail(number, "'" + to_utf8(name) + "' is no valid name of a " + what + ".");
    }
}

std::uint16_t length_of(const NewColumn& column, const Format& format) {
    switch (column.type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte: return 1;
        case ColumnType::kInteger: return 2;
        case ColumnType::kLong:
        case ColumnType::kSingle: return 4;
        case ColumnType::kCurrency:
        case ColumnType::kDouble:
        case ColumnType::kDate: return 8;
        case ColumnType::kText:
            if (column.text_characters < 1 || column.text_characters > jet4::kMaxTextCharacters) {
                fail(errors::kSizeTooLong, "Column '" + to_utf8(column.name) + "': a text has 1 to 255 characters.");
            }
            return static_cast<std::uint16_t>(format.text_unit * column.text_characters);
        case ColumnType::kOle:
        case ColumnType::kMemo: return 0;
        default: fail(errors::kBadType, "Column '" + to_utf8(column.name) + "' is of a type that cannot be created.");
    }
}

bool is_text(ColumnType type) { return type == ColumnType::kText || type == ColumnType::kMemo; }
bool is_variable(ColumnType type) { return type == ColumnType::kText || is_long_value(type); }

// In a code page a name that it lacks letters of would be another one.
void check_encodable(std::u16string_view name, const FileHeader& header) {
    if (header.format->is_jet3() && !is_in_code_page(name, header.code_page)) {
        fail(errors::kUnnamedTable, "'" + to_utf8(name) + "' has a letter that the file's code page " +
                                        std::to_string(header.code_page) + " lacks.");
    }
}

// Takes the column into the definition: number, place in the row, flags.
ColumnDef& append_column(TableDef& def, const NewColumn& column, const FileHeader& header) {
    check_name(column.name, errors::kUnnamedTable, "column");
    if (def.find_column(column.name)) {
        fail(errors::kFieldTwice,
             "Column '" + to_utf8(column.name) + "' stands twice in table '" + to_utf8(def.name) + "'.");
    }
    if (def.max_columns >= jet4::kMaxColumns) {
        fail(errors::kTooManyFields, "Table '" + to_utf8(def.name) + "' would have more than 255 columns.");
    }
    if (column.autonumber && column.type != ColumnType::kLong) {
        fail(errors::kBadType, "Column '" + to_utf8(column.name) + "': only a Long can be an auto-number.");
    }
    ColumnDef added;
    added.name = column.name;
    added.type = column.type;
    added.length_bytes = length_of(column, *def.format);
    if (def.format->is_jet3()) {
        check_encodable(column.name, header);
        added.code_page = header.code_page;
        added.lcid = header.lcid;
        added.sort_sub_id = header.sort_sub_id;
    }
    added.number = def.max_columns++;
    added.ordinal = 0;
    for (const ColumnDef& other : def.columns)
        added.ordinal = std::max<std::uint16_t>(added.ordinal, other.ordinal + 1);
    added.variable_index = def.variable_columns;
    added.flags = tdef::kFlagNullable;
    if (is_variable(column.type)) {
        ++def.variable_columns;
    } else {
        added.flags |= tdef::kFlagFixed;
        for (const ColumnDef& other : def.columns) {
            if (!other.is_fixed() || other.type == ColumnType::kBoolean || column.type == ColumnType::kBoolean)
                continue;
            added.fixed_offset = std::max<std::uint16_t>(added.fixed_offset, other.fixed_offset + other.length_bytes);
        }
    }
    if (column.autonumber) added.flags |= tdef::kFlagAutoNumber;
    const bool has_short_form = is_text(column.type) && !def.format->is_jet3();  // Jet 3 texts are always short
    if (column.compressed && has_short_form) added.ext_flags |= tdef::kExtCompressed;
    added.allow_zero_length = column.allow_zero_length;
    def.columns.push_back(std::move(added));
    return def.columns.back();
}

// Zero length is allowed or not by a property alone, so every text says it. The property of the short form repeats the
// definition's flag.
void describe(PropertySet& properties, const ColumnDef& column) {
    if (!is_text(column.type)) return;
    properties.set_column_flag(column.name, u"AllowZeroLength", column.allow_zero_length);
    if (column.is_compressed()) properties.set_column_flag(column.name, u"UnicodeCompression", true);
}

}  // namespace

void SchemaEditor::create_table(std::u16string_view name, std::span<const NewColumn> columns) {
    check_name(name, errors::kUnnamedTable, "table");
    if (const Catalog::Object* other = catalog_.find(name)) {
        fail(other->entry.type == kTableObject ? errors::kTableExists : errors::kNameInUse,
             "'" + to_utf8(name) + "' exists already.");
    }
    if (columns.empty()) fail(errors::kNoFields, "Table '" + to_utf8(name) + "' has no column.");
    check_encodable(name, header_);
    TableDef def;
    def.format = &storage_.pager().format();
    def.code_page = header_.text_code_page();
    def.name = name;
    PropertySet properties = catalog_.no_properties();
    for (const NewColumn& column : columns) describe(properties, append_column(def, column, header_));
    if (std::count_if(columns.begin(), columns.end(), [](const NewColumn& c) { return c.autonumber; }) > 1) {
        fail(errors::kBadType, "Table '" + to_utf8(name) + "' would have more than one auto-number.");
    }
    PageAllocator& allocator = storage_.allocator();
    def.page = allocator.allocate().number();
    PageNumber maps = 0;
    def.owned_map = allocator.create_map(&maps);
    def.free_map = allocator.create_map(&maps);
    for (ColumnDef& column : def.columns) {
        if (!column.is_long()) continue;
        column.owned_map = allocator.create_map(&maps);
        column.free_map = allocator.create_map(&maps);
    }
    definitions_.store(def);
    catalog_.add_table(name, def.page, os::local_time_as_ole_date(), header_, properties);
}

bool SchemaEditor::add_column(const TableDef& old_def, const NewColumn& column) {
    TableDef def = old_def;
    if (column.autonumber &&
        std::any_of(def.columns.begin(), def.columns.end(), [](const ColumnDef& c) { return c.is_autonumber(); })) {
        fail(errors::kBadType, "Table '" + to_utf8(def.name) + "' has an auto-number already.");
    }
    ColumnDef& added = append_column(def, column, header_);
    if (added.is_long()) {
        PageNumber maps = def.owned_map.page;
        added.owned_map = storage_.allocator().create_map(&maps);
        added.free_map = storage_.allocator().create_map(&maps);
    }
    const Catalog::Object* object = catalog_.find(static_cast<std::int32_t>(def.page));
    PropertySet properties = object ? catalog_.properties(*object) : catalog_.no_properties();
    describe(properties, added);
    definitions_.store(def);
    if (object) catalog_.change_table(*object, os::local_time_as_ole_date(), properties);
    // Rows keep their old shape, which says that they lack the column. Three cases need them in the new one:
    // numbers to hand out; the first variable column, because some readers misread rows without their
    // offsets; and a longer null mask, because some read it past its end.
    const auto mask_bytes = [](const TableDef& d) { return (d.max_columns + 7) / 8; };
    return column.autonumber || (old_def.variable_columns == 0 && def.variable_columns > 0) ||
           mask_bytes(old_def) != mask_bytes(def);
}

void SchemaEditor::release_long_values(const ColumnDef& column) {
    UsageMap owned = storage_.map(column.owned_map);
    for (auto page = owned.next(0); page; page = owned.next(*page + 1)) {
        // What a damaged map names may hold somebody else's data.
        if (!DataPage::belongs_to(storage_.pager().read(*page).bytes(), jet4::data::kLongValueOwner)) {
            corrupt(*page, "the page belongs to a column of long values and holds none");
        }
        storage_.allocator().free(*page);
    }
    storage_.chain_owners().forget();
    owned.destroy();
    storage_.map(column.free_map).destroy();
}

void SchemaEditor::delete_column(const TableDef& old_def, std::u16string_view name) {
    TableDef def = old_def;
    const auto position = def.find_column(name);
    if (!position) {
        fail(errors::kNotInCollection, "Table '" + to_utf8(def.name) + "' has no column '" + to_utf8(name) + "'.");
    }
    const ColumnDef column = def.columns[*position];
    for (const RealIndex& index : def.real_indexes) {
        if (std::any_of(index.columns.begin(), index.columns.end(),
                        [&](const KeyColumn& key) { return key.column_number == column.number; })) {
            fail(errors::kFieldIndexed, "Column '" + to_utf8(name) + "' cannot be deleted: an index needs it.");
        }
    }
    if (def.columns.size() == 1)
        fail(errors::kNoFields, "Column '" + to_utf8(name) + "' is the only one of its table.");
    if (column.is_long()) release_long_values(column);
    def.columns.erase(def.columns.begin() + static_cast<std::ptrdiff_t>(*position));
    if (column.is_autonumber()) def.last_autonumber = 0;
    const Catalog::Object* object = catalog_.find(static_cast<std::int32_t>(def.page));
    PropertySet properties = object ? catalog_.properties(*object) : catalog_.no_properties();
    properties.remove_column(name);
    definitions_.store(def);
    if (object) catalog_.change_table(*object, os::local_time_as_ole_date(), properties);
}

}  // namespace jet
