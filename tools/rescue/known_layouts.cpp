#include "tools/rescue/known_layouts.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>

#include "db/upgrade/schema_history.h"

namespace tools {
namespace {

namespace tdef = jet::jet4::tdef;
using db::DatabaseFile;
using db::FieldKind;
using db::FieldSchema;
using db::TableSchema;
using jet::ColumnDef;
using jet::ColumnType;

constexpr std::uint16_t kTextCharacters = 255;
constexpr std::int32_t kOldest = 100000;

ColumnType type_of(FieldKind kind) {
    switch (kind) {
        case FieldKind::kKey:
        case FieldKind::kLong:
        case FieldKind::kPlainLong: return ColumnType::kLong;
        case FieldKind::kDate: return ColumnType::kDate;
        case FieldKind::kCurrency: return ColumnType::kCurrency;
        case FieldKind::kSingle: return ColumnType::kSingle;
        case FieldKind::kText:
        case FieldKind::kShortText:
        case FieldKind::kTextNotEmpty: return ColumnType::kText;
        case FieldKind::kMemo: break;
    }
    return ColumnType::kMemo;
}

std::uint16_t fixed_bytes(ColumnType type) {
    if (type == ColumnType::kText || type == ColumnType::kMemo) return 0;
    return type == ColumnType::kDate || type == ColumnType::kCurrency ? 8 : 4;
}

// Gives a definition its columns one by one, each its place in the row, as the engine does.
class LayoutMaker {
public:
    LayoutMaker(const StudioForm& form, const TableSchema& table) {
        def_.name = jet::from_utf8(table.name);
        def_.format = form.format;
        def_.code_page = form.code_page;
    }

    void add(const char* name, FieldKind kind) {
        ColumnDef column;
        column.name = jet::from_utf8(name);
        column.type = type_of(kind);
        column.number = column.ordinal = def_.max_columns++;
        column.flags = tdef::kFlagNullable;
        column.variable_index = def_.variable_columns;
        column.code_page = def_.code_page;
        if (const std::uint16_t bytes = fixed_bytes(column.type)) {
            column.flags |= tdef::kFlagFixed;
            column.fixed_offset = fixed_end_;
            column.length_bytes = bytes;
            fixed_end_ = static_cast<std::uint16_t>(fixed_end_ + bytes);
        } else {
            ++def_.variable_columns;
            const std::size_t bytes_of_text = def_.format->text_unit * kTextCharacters;
            column.length_bytes = column.type == ColumnType::kText ? static_cast<std::uint16_t>(bytes_of_text) : 0;
        }
        if (kind == FieldKind::kKey) column.flags |= tdef::kFlagAutoNumber;
        if (column.type == ColumnType::kText || column.type == ColumnType::kMemo) {
            if (!def_.format->is_jet3()) column.ext_flags = tdef::kExtCompressed;
        }
        column.allow_zero_length = kind == FieldKind::kText || kind == FieldKind::kMemo;
        def_.columns.push_back(std::move(column));
    }
    void remove(const char* name) {
        std::erase_if(def_.columns, [&](const ColumnDef& c) { return c.name == jet::from_utf8(name); });
    }
    const jet::TableDef& def() const { return def_; }

private:
    jet::TableDef def_;
    std::uint16_t fixed_end_ = 0;
};

// The fields that versions from `first` on have added to the table, in order.
std::vector<const char*> added_from(DatabaseFile file, const TableSchema& table, std::int32_t first) {
    std::vector<const char*> fields;
    for (const db::VersionAdditions& version : db::schema_history()) {
        if (version.version < first) continue;
        const auto all = file == DatabaseFile::kMain ? version.studio_fields : version.invoice_fields;
        for (const db::AddedFields& added : all) {
            if (std::strcmp(added.table, table.name) == 0) fields.insert(fields.end(), added.fields);
        }
    }
    return fields;
}

// The field that the table had once, before version 200000; null for most.
const db::RemovedField* removed_from(DatabaseFile file, const TableSchema& table) {
    for (const db::RemovedField& removed : db::removed_fields()) {
        if (file == DatabaseFile::kMain && std::strcmp(removed.table, table.name) == 0) return &removed;
    }
    return nullptr;
}

enum class TextDate { kNone, kInItsPlace, kAtTheEnd };

struct Origin {
    std::int32_t created = 0;  // version of the file when the table was created
    std::int32_t now = 0;      // version that it has been upgraded to
    TextDate date = TextDate::kNone;
};

KnownLayout make_layout(const StudioForm& form, const TableSchema& table, const Origin& origin) {
    const DatabaseFile file = form.file;
    const std::vector<const char*> later = added_from(file, table, origin.created + 1);
    const std::vector<const char*> too_late = added_from(file, table, origin.now + 1);
    const auto has = [](const std::vector<const char*>& names, const char* name) {
        return std::any_of(names.begin(), names.end(), [&](const char* n) { return std::strcmp(n, name) == 0; });
    };
    const db::RemovedField* const removed = removed_from(file, table);
    LayoutMaker maker(form, table);
    for (const FieldSchema& field : table.fields) {
        const bool is_date = removed != nullptr && std::strcmp(removed->became, field.name) == 0;
        if (is_date && origin.date == TextDate::kInItsPlace) maker.add(removed->field, FieldKind::kText);
        if (!has(later, field.name)) maker.add(field.name, field.kind);
    }
    if (origin.date == TextDate::kAtTheEnd) maker.add(removed->field, FieldKind::kText);
    for (const char* const name : later) {
        if (!has(too_late, name)) maker.add(name, db::find_field(table, name)->kind);
    }
    if (origin.date != TextDate::kNone && origin.now >= 200000) maker.remove(removed->field);
    return {&table, maker.def(), {origin.now}};
}

bool is_same_layout(const jet::TableDef& a, const jet::TableDef& b) {
    if (a.max_columns != b.max_columns || a.columns.size() != b.columns.size()) return false;
    for (std::size_t i = 0; i < a.columns.size(); ++i) {
        if (a.columns[i].name != b.columns[i].name || a.columns[i].number != b.columns[i].number) return false;
    }
    return true;
}

std::vector<KnownLayout> make_layouts(const StudioForm& form) {
    const DatabaseFile file = form.file;
    std::vector<std::int32_t> versions{kOldest};
    for (const db::VersionAdditions& version : db::schema_history()) versions.push_back(version.version);
    std::vector<KnownLayout> layouts;
    for (const TableSchema* const table : known_tables(file)) {
        const std::size_t first = layouts.size();
        const auto add = [&](const Origin& origin) {
            KnownLayout layout = make_layout(form, *table, origin);
            for (std::size_t i = first; i < layouts.size(); ++i) {
                if (!is_same_layout(layouts[i].def, layout.def)) continue;
                layouts[i].versions.push_back(origin.now);
                return;
            }
            layouts.push_back(std::move(layout));
        };
        // The newest first: most tables were created as they are.
        for (auto created = versions.rbegin(); created != versions.rend(); ++created) {
            for (auto now = versions.rbegin(); now != versions.rend() && *now >= *created; ++now) {
                const bool had_text_date = removed_from(file, *table) != nullptr && *created < 200000;
                if (!had_text_date) add({*created, *now, TextDate::kNone});
                if (had_text_date) add({*created, *now, TextDate::kInItsPlace});
                if (had_text_date) add({*created, *now, TextDate::kAtTheEnd});
            }
        }
    }
    return layouts;
}

}  // namespace

std::int32_t history_version(std::int32_t version) {
    std::int32_t at = kOldest;
    for (const db::VersionAdditions& additions : db::schema_history()) {
        if (additions.version <= version) at = additions.version;
    }
    return at;
}

const std::vector<KnownLayout>& known_layouts(const StudioForm& form) {
    static std::map<std::tuple<DatabaseFile, const jet::Format*, std::uint16_t>, std::vector<KnownLayout>> made;
    std::vector<KnownLayout>& layouts = made[{form.file, form.format, form.code_page}];
    if (layouts.empty()) layouts = make_layouts(form);
    return layouts;
}

jet::TableDef layout_at(const StudioForm& form, const TableSchema& table, std::int32_t version) {
    const bool has_text_date = removed_from(form.file, table) != nullptr && version < 200000;
    return make_layout(form, table, {version, version, has_text_date ? TextDate::kInItsPlace : TextDate::kNone}).def;
}

std::vector<const TableSchema*> known_tables(DatabaseFile file) {
    std::vector<const TableSchema*> tables;
    for (const TableSchema& table : file == DatabaseFile::kMain ? db::studio_tables() : db::invoice_tables()) {
        tables.push_back(&table);
    }
    if (file == DatabaseFile::kMain) tables.push_back(&db::engineers_table());
    return tables;
}

}  // namespace tools
