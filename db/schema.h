// The tables of the studio file and of the invoice file: one list that creation, upgrade and checks read,
// and the operations that make tables from it.
//
// No table has an index, no field a default, a rule or the required flag. The engineers' list
// (Def_Engineers) is used where a file has it but is never created.
#pragma once

#include <cstdint>
#include <span>

class CDaoDatabase;
class CDaoTableDef;

namespace db {

// How a field is created. The text kinds differ in whether a zero-length text may be stored.
enum class FieldKind : std::uint8_t {
    kKey,  // auto-number
    kLong,
    kPlainLong,  // a long made without attributes
    kDate,
    kCurrency,
    kSingle,
    kText,          // 255 characters, zero length allowed
    kShortText,     // 255 characters, zero length disallowed (short form of CreateField)
    kTextNotEmpty,  // as kText, but zero length disallowed; only Equipment.Name
    kMemo,          // zero length allowed
};

struct FieldSchema {
    const char* name;
    FieldKind kind;
};

struct TableSchema {
    const char* name;
    std::span<const FieldSchema> fields;  // in creation order
};

// In creation order. The studio file's list ends with the gear tables.
std::span<const TableSchema> studio_tables();
std::span<const TableSchema> gear_tables();
std::span<const TableSchema> invoice_tables();
// Def_Engineers as current files have it; in neither list above.
const TableSchema& engineers_table();
// Null when the list has no such table or field.
const TableSchema* find_table(std::span<const TableSchema> tables, const char* name);
const FieldSchema* find_field(const TableSchema& table, const char* name);

// Adds a field to a definition being made or to an existing table. Throws CDaoException*.
void create_field(CDaoTableDef& table, const FieldSchema& field);

// The operations below throw CDaoException*, also when the database is not open; the failed table does not exist then.
void create_table(CDaoDatabase& database, const TableSchema& table);
// All tables in order. A failure stops the pass; the tables before it stay.
void create_tables(CDaoDatabase& database, std::span<const TableSchema> tables);
// The gear tables in one pass.
void create_gear_tables(CDaoDatabase& database);

}  // namespace db
