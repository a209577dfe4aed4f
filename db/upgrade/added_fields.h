// Fields that an upgrade adds to tables of older versions, as the schema lists them.
#pragma once

#include <initializer_list>
#include <span>

#include "db/schema.h"

namespace db {

// Fields of one table of the schema, in the order of adding.
struct AddedFields {
    const char* table;
    std::initializer_list<const char*> fields;
};

// False when the table has a field of that name, which stays as it is. Throws CDaoException*.
bool add_field(CDaoDatabase& database, const TableSchema& table, const char* field);
// Adds what is missing, table by table. A table that does not take all of its fields keeps none of the others from
// theirs; its error (CDaoException*) comes at the end.
void add_fields(CDaoDatabase& database, std::span<const TableSchema> schema, std::span<const AddedFields> added);

}  // namespace db
