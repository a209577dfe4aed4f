#include "db/upgrade/added_fields.h"

#include "afx/dao_table_def.h"
#include "afx/engine_errors.h"
#include "db/rows.h"

namespace db {
namespace {

bool has_field(CDaoTableDef& table, const char* name) {
    try {
        CDaoFieldInfo info;
        table.GetFieldInfo(name, info);
        return true;
    } catch (CDaoException* e) {
        if (e->m_pErrorInfo->m_lErrorCode != afx::errors::kNotInCollection) throw;
        e->Delete();
        return false;
    }
}

}  // namespace

bool add_field(CDaoDatabase& database, const TableSchema& table, const char* field) {
    CDaoTableDef definition(&database);
    definition.Open(table.name);
    const bool missing = !has_field(definition, field);
    if (missing) create_field(definition, *find_field(table, field));
    definition.Close();
    return missing;
}

void add_fields(CDaoDatabase& database, std::span<const TableSchema> schema, std::span<const AddedFields> added) {
    EachForItself each;
    for (const AddedFields& one : added) {
        const TableSchema& table = *find_table(schema, one.table);
        each.run([&] {
            for (const char* const field : one.fields) add_field(database, table, field);
        });
    }
    each.finish();
}

}  // namespace db
