#include "db/schema.h"

#include <cstring>

#include "afx/dao_table_def.h"
#include "db/rows.h"

namespace db {
namespace {

constexpr LONG kTextSize = 255;

// The full field description that text and memo fields start from.
CDaoFieldInfo text_description(const char* name) {
    CDaoFieldInfo info;
    info.m_strName = name;
    info.m_nType = dbText;
    info.m_lSize = kTextSize;
    info.m_lAttributes = dbVariableField | dbUpdatableField;
    info.m_bAllowZeroLength = TRUE;
    return info;
}

}  // namespace

const TableSchema* find_table(std::span<const TableSchema> tables, const char* name) {
    for (const TableSchema& table : tables) {
        if (std::strcmp(table.name, name) == 0) return &table;
    }
    return nullptr;
}

const FieldSchema* find_field(const TableSchema& table, const char* name) {
    for (const FieldSchema& field : table.fields) {
        if (std::strcmp(field.name, name) == 0) return &field;
    }
    return nullptr;
}

void create_field(CDaoTableDef& table, const FieldSchema& field) {
    switch (field.kind) {
        case FieldKind::kKey: return table.CreateField(field.name, dbLong, 4, dbAutoIncrField);
        case FieldKind::kLong: return table.CreateField(field.name, dbLong, 4, dbUpdatableField);
        case FieldKind::kPlainLong: return table.CreateField(field.name, dbLong, 4, 0);
        case FieldKind::kDate: return table.CreateField(field.name, dbDate, 8, dbUpdatableField);
        case FieldKind::kCurrency: return table.CreateField(field.name, dbCurrency, 8, dbUpdatableField);
        case FieldKind::kSingle: return table.CreateField(field.name, dbSingle, 4, dbUpdatableField);
        case FieldKind::kShortText:
            return table.CreateField(field.name, dbText, kTextSize, dbVariableField | dbUpdatableField);
        case FieldKind::kText: {
            CDaoFieldInfo info = text_description(field.name);
            return table.CreateField(info);
        }
        case FieldKind::kTextNotEmpty: {
            CDaoFieldInfo info = text_description(field.name);
            info.m_bAllowZeroLength = FALSE;
            return table.CreateField(info);
        }
        case FieldKind::kMemo: {
            // The same description with another type; a memo ignores the size.
            CDaoFieldInfo info = text_description(field.name);
            info.m_nType = dbMemo;
            return table.CreateField(info);
        }
    }
}

void create_table(CDaoDatabase& database, const TableSchema& table) {
    CDaoTableDef definition(&database);
    definition.Create(table.name, 0);
    for (const FieldSchema& field : table.fields) create_field(definition, field);
    definition.Append();
    definition.Close();
}

void create_tables(CDaoDatabase& database, std::span<const TableSchema> tables) {
    for (const TableSchema& table : tables) create_table(database, table);
}

void create_gear_tables(CDaoDatabase& database) { create_tables(database, gear_tables()); }

}  // namespace db
