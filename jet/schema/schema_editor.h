// Changes of table definitions. Every function runs inside the caller's transaction.
#pragma once

#include <span>
#include <string_view>

#include "jet/pages/header.h"
#include "jet/schema/catalog.h"
#include "jet/tables/database.h"

namespace jet {

class SchemaEditor {
public:
    SchemaEditor(Database& database, Catalog& catalog, const FileHeader& header)
        : database_(database), catalog_(catalog), header_(header) {}

    void create_table(std::u16string_view name, std::span<const NewColumn> columns);
    void add_column(Table& table, const NewColumn& column);
    void delete_column(Table& table, std::u16string_view column);

private:
    void store_definition(const TableDef& def);
    void rewrite_rows(Table& table, const TableDef& old_def, std::size_t number_from);

    Database& database_;
    Catalog& catalog_;
    const FileHeader& header_;
};

}  // namespace jet
