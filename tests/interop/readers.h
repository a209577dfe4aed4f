// The output of two other Jet readers for a file: mdbtools and mdb-reader.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace interop {

// A value as the reader prints it, UTF-8; none for Null.
using Field = std::optional<std::string>;

struct ForeignColumn {
    std::string name;
    std::string type;        // in the reader's words; empty from mdb-export
    std::uint32_t size = 0;  // from mdb-reader only, as the next
    bool autonumber = false;
};

struct ForeignTable {
    std::string name;
    bool system = false;          // from mdb-reader only
    std::uint32_t row_count = 0;  // from mdb-reader only: the count in the definition
    std::string refusal;          // why the reader refused the table; empty: it did not
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

// Empty when both readers are installed; otherwise the reason, for GTEST_SKIP.
std::string why_readers_are_missing();

// First line of mdb-ver.
std::string mdbtools_version_of(const std::string& path);
// User tables as mdb-tables lists them.
std::vector<std::string> mdbtools_table_names(const std::string& path);
// Columns of every user table in order, by table, with their types in the words of mdb-schema.
std::map<std::string, std::vector<ForeignColumn>> mdbtools_schema(const std::string& path);
// The columns of a table for which mdb-prop says that they may, or may not, hold an empty text.
std::map<std::string, bool> mdbtools_zero_length(const std::string& path, const std::string& table);
// Columns and rows as mdb-export prints them; none when it fails. Dates read YYYY-MM-DD hh:mm:ss, bytes are
// hex digits.
std::optional<ForeignTable> read_with_mdbtools(const std::string& path, const std::string& table);
// Every table, system tables included; none when the reader fails. Dates are milliseconds since 1970-01-01,
// bytes are hex digits.
std::optional<ForeignFile> read_with_mdb_reader(const std::string& path);

}  // namespace interop
