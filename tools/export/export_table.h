// What an export tells of a table: its columns with their types, its key, and the columns that lead to other tables.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/open_file.h"

namespace tools {

struct ExportColumn {
    std::string name;
    jet::ColumnType type = jet::ColumnType::kLong;
    std::uint16_t length_characters = 0;  // texts
    std::uint8_t precision = 0;           // numerics
    std::uint8_t scale = 0;
    bool is_autonumber = false;
    bool is_parent = false;  // holds another table's key
};

struct ExportTable {
    const jet::Table* table = nullptr;
    std::string name;       // unique in the export
    std::string file_name;  // the same as a name that every file system takes, without an ending
    std::string file;       // that it comes from, without the folder
    std::vector<ExportColumn> columns;
    std::optional<std::size_t> key;  // the column whose values tell the rows apart
    std::int32_t last_autonumber = 0;
    std::uint64_t rows = 0;  // as the file counts them

    // Looks at the rows to see whether the auto-number really is a key, as in a damaged file it need not be.
    ExportTable(const jet::Table& table, std::string table_name, std::string source);
};

// Of all files in their order, without those tables that cannot be read; a name that a file before it has gets the
// file's name in front. With names given, those tables alone: UsageError for one that is nowhere.
std::vector<ExportTable> export_tables(const std::vector<OpenedFile>& files, const std::vector<std::string>& wanted);

// The type in the engine's own words: "text(255)", "currency", "long auto-number".
std::string type_text(const ExportColumn& column);

// What no other program takes for a value of the type becomes Null: a date outside of the years 1 to 9999. True when it
// did.
bool make_exportable(jet::Value& value);

}  // namespace tools
