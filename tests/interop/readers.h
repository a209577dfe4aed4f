// What two Jet readers of other makers say of a file: mdbtools and mdb-reader.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace interop {

// A value as the reader prints it, UTF-8; nothing for Null.
using Field = std::optional<std::string>;

struct ForeignColumn {
    std::string name;
    std::string type;        // as the reader words it; mdb-export does not
    std::uint32_t size = 0;  // mdb-reader's alone, as the next
    bool autonumber = false;
};

struct ForeignTable {
    std::string name;
    bool system = false;          // mdb-reader's alone
    std::uint32_t row_count = 0;  // mdb-reader's alone: what the definition says
    std::string refusal;          // why the reader would not read the table; empty: it did
    std::vector<ForeignColumn> columns;
    std::vector<std::vector<Field>> rows;

    // Position of a column, or none.
    std::optional<std::size_t> find_column(const std::string& column) const;
};

struct ForeignFile {
    Field password;
    std::vector<ForeignTable> tables;

    const ForeignTable* find_table(const std::string& name) const;
};

// Empty when both readers can be run; else why not, for GTEST_SKIP.
std::string why_readers_are_missing();

// First line of mdb-ver.
std::string mdbtools_version_of(const std::string& path);
// User tables as mdb-tables lists them.
std::vector<std::string> mdbtools_table_names(const std::string& path);
// Columns of every user table in order, with their types as mdb-schema words them, by table.
std::map<std::string, std::vector<ForeignColumn>> mdbtools_schema(const std::string& path);
// The columns of a table that mdb-prop says may, or may not, hold an empty text.
std::map<std::string, bool> mdbtools_zero_length(const std::string& path, const std::string& table);
// Columns and rows as mdb-export prints them; none when it fails. Dates read YYYY-MM-DD hh:mm:ss, bytes are
// hex digits.
std::optional<ForeignTable> read_with_mdbtools(const std::string& path, const std::string& table);
// Every table, system tables included; none when the reader fails. Dates are milliseconds since 1970-01-01,
// bytes are hex digits.
std::optional<ForeignFile> read_with_mdb_reader(const std::string& path);

}  // namespace interop
