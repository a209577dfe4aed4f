// What a studio's tables are to a person: names for them, and what belongs to what. No file says it; the program that
// fills the tables knows.
#pragma once

#include <span>
#include <string>

namespace tools {

struct KnownTable {
    const char* table;
    const char* view;  // its name for people
};
std::span<const KnownTable> known_tables();

// `column` of `table` holds the key of `parent`, which goes by `name`.
struct Relation {
    const char* table;
    const char* column;
    const char* parent;
    const char* name;
};
std::span<const Relation> relations();

// What a record of the table is called, as an expression on its columns.
const char* name_of(const std::string& table);
// A column's name without its slips.
std::string known_column(const std::string& column);

}  // namespace tools
