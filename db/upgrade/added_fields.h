// Adds fields of the schema to tables of older versions.
#pragma once

#include <initializer_list>
#include <span>

#include "db/schema.h"

namespace db {

// Fields of one table of the schema, in the order in which they are added.
struct AddedFields {
    const char* table;
    std::initializer_list<const char*> fields;
};

// False when the table already has a field of that name, which stays as it is. Throws CDaoException*.
bool add_field(CDaoDatabase& database, const TableSchema& table, const char* field);
// Adds the missing fields, table by table. A failure in one table does not stop the others; its error (CDaoException*)
// is thrown at the end.
void add_fields(CDaoDatabase& database, std::span<const TableSchema> schema, std::span<const AddedFields> added);

}  // namespace db
