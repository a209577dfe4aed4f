#include "db/added_fields.h"

#include "afx/dao_table_def.h"
#include "db/rows.h"

namespace db {
namespace {

constexpr LONG kNotInCollection = 3265;

bool has_field(CDaoTableDef& table, const char* name) {
    try {
        CDaoFieldInfo info;
        table.GetFieldInfo(name, info);
        return true;
    } catch (CDaoException* e) {
        if (e->m_pErrorInfo->m_lErrorCode != kNotInCollection) throw;
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

int add_fields(CDaoDatabase& database, std::span<const TableSchema> schema, std::span<const AddedFields> added) {
    int result = 0;
    for (const AddedFields& one : added) {
        const TableSchema& table = *find_table(schema, one.table);
        const int done = guarded([&] {
            for (const char* const field : one.fields) add_field(database, table, field);
        });
        if (done != 0) result = -1;
    }
    return result;
}

}  // namespace db
