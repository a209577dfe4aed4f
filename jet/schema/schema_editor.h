// Changes of table definitions, in the pages and in the catalogue. Every function runs inside the caller's transaction;
// whoever has the table open reads its definition again.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "jet/pages/header.h"
#include "jet/schema/catalog.h"
#include "jet/schema/definition_store.h"
#include "jet/storage/storage.h"

namespace jet {

// What a new column looks like to whoever creates it.
struct NewColumn {
    std::u16string name;
    ColumnType type = ColumnType::kLong;
    std::uint16_t text_characters = 255;  // kText only, 1..255
    bool autonumber = false;              // kLong only
    bool allow_zero_length = false;       // kText and kMemo only
    bool compressed = false;              // kText and kMemo only: may take one byte a character
};

class SchemaEditor {
public:
    SchemaEditor(Storage& storage, DefinitionStore& definitions, Catalog& catalog, const FileHeader& header)
        : storage_(storage), definitions_(definitions), catalog_(catalog), header_(header) {}

    void create_table(std::u16string_view name, std::span<const NewColumn> columns);
    // Whether the rows that are there must be brought into the new shape.
    [[nodiscard]] bool add_column(const TableDef& old_def, const NewColumn& column);
    void delete_column(const TableDef& old_def, std::u16string_view column);

private:
    void release_long_values(const ColumnDef& column);

    Storage& storage_;
    DefinitionStore& definitions_;
    Catalog& catalog_;
    const FileHeader& header_;
};

}  // namespace jet
