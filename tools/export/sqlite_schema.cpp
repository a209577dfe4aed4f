#include "tools/export/sqlite_schema.h"

#include <charconv>
#include <cmath>

#include "tools/export/relations.h"
#include "tools/export/sql_text.h"
#include "tools/names.h"
#include "tools/value_text.h"

namespace tools {
namespace {

std::string sqlite_type(const ExportColumn& column) {
    switch (column.type) {
        case jet::ColumnType::kBoolean:
        case jet::ColumnType::kByte:
        case jet::ColumnType::kInteger:
        case jet::ColumnType::kLong:
        case jet::ColumnType::kComplexId: return " INTEGER";
        case jet::ColumnType::kSingle:
        case jet::ColumnType::kDouble: return " REAL";
        case jet::ColumnType::kDate:
        case jet::ColumnType::kGuid:
        case jet::ColumnType::kText:
        case jet::ColumnType::kMemo: return " TEXT";
        case jet::ColumnType::kCurrency:
        case jet::ColumnType::kNumeric: return "";
        case jet::ColumnType::kBinary:
        case jet::ColumnType::kOle:
        case jet::ColumnType::kFixedBinary: break;
    }
    return " BLOB";
}

double double_of(const std::string& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// A number with all its digits: as a double where that keeps them.
SqliteValue exact(const std::string& digits) {
    std::size_t count = 0;
    bool leads = true;
    for (const char c : digits) {
        leads = leads && (c == '0' || c == '.' || c == '-');
        count += c >= '0' && c <= '9' && !leads ? 1 : 0;
    }
    constexpr std::size_t kDigitsOfDouble = 15;
    if (count > kDigitsOfDouble) return digits;
    return double_of(digits);
}

struct ToSqlite {
    SqliteValue operator()(jet::Null) const { return {}; }
    SqliteValue operator()(bool v) const { return std::int64_t{v ? 1 : 0}; }
    SqliteValue operator()(std::uint8_t v) const { return std::int64_t{v}; }
    SqliteValue operator()(std::int16_t v) const { return std::int64_t{v}; }
    SqliteValue operator()(std::int32_t v) const { return std::int64_t{v}; }
    SqliteValue operator()(jet::Currency v) const { return exact(plain_text(v)); }
    // The number that a person typed, not the nearest one that the column could hold.
    SqliteValue operator()(float v) const {
        return std::isfinite(v) ? double_of(plain_text(v)) : static_cast<double>(v);
    }
    SqliteValue operator()(double v) const { return v; }
    SqliteValue operator()(jet::Date v) const { return plain_text(v); }
    SqliteValue operator()(const std::u16string& v) const { return jet::to_utf8(v); }
    SqliteValue operator()(const std::vector<std::uint8_t>& v) const { return v; }
    SqliteValue operator()(const jet::Guid& v) const { return plain_text(v); }
    SqliteValue operator()(const jet::Numeric& v) const { return exact(plain_text(v)); }
};

const ExportTable* find(std::span<const ExportTable> tables, const std::string& name) {
    for (const ExportTable& table : tables) {
        if (table.name == name) return &table;
    }
    return nullptr;
}

bool has_column(const ExportTable& table, const std::string& name) {
    for (const ExportColumn& column : table.columns) {
        if (column.name == name) return true;
    }
    return false;
}

}  // namespace

std::string sqlite_create_table(const ExportTable& table) {
    std::string columns;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        columns += (i == 0 ? "\n    " : ",\n    ") + sql_name(table.columns[i].name) + sqlite_type(table.columns[i]);
        if (table.key == i) columns += " PRIMARY KEY";
    }
    return "CREATE TABLE " + sql_name(table.name) + " (" + columns + "\n)";
}

std::vector<std::string> sqlite_indexes(const ExportTable& table) {
    std::vector<std::string> statements;
    for (const ExportColumn& column : table.columns) {
        if (!column.is_parent) continue;
        statements.push_back("CREATE INDEX " + sql_name(table.name + "_" + column.name) + " ON " +
                             sql_name(table.name) + " (" + sql_name(column.name) + ")");
    }
    return statements;
}

std::vector<std::string> sqlite_views(std::span<const ExportTable> tables) {
    std::vector<std::string> statements;
    for (const KnownTable& known : known_tables()) {
        const ExportTable* const table = find(tables, known.table);
        if (table == nullptr) continue;
        std::string columns;
        for (const ExportColumn& column : table->columns) {
            columns += (columns.empty() ? "t." : ", t.") + sql_name(column.name);
            if (const std::string name = known_column(column.name); name != column.name)
                columns += " AS " + sql_name(name);
        }
        for (const Relation& relation : relations()) {
            if (table->name != relation.table || !has_column(*table, relation.column)) continue;
            const ExportTable* const parent = find(tables, relation.parent);
            if (parent == nullptr || !parent->key) continue;
            // A subquery and not a join: no record comes twice or is missing, whatever the keys.
            columns += ", (SELECT " + std::string(name_of(relation.parent)) + " FROM " + sql_name(parent->name) +
                       " p WHERE p." + sql_name(parent->columns[*parent->key].name) + " = t." +
                       sql_name(relation.column) + ") AS " + sql_name(relation.name);
        }
        statements.push_back("CREATE VIEW " + sql_name(known.view) + " AS SELECT " + columns + " FROM " +
                             sql_name(table->name) + " t");
    }
    return statements;
}

std::vector<std::string> sqlite_column_list(std::span<const ExportTable> tables) {
    std::vector<std::string> statements{
        "CREATE TABLE kvdb_columns (file TEXT, table_name TEXT, position INTEGER, column_name TEXT, type TEXT, "
        "is_key INTEGER)"};
    for (const ExportTable& table : tables) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            statements.push_back("INSERT INTO kvdb_columns VALUES (" + sql_string(table.file) + ", " +
                                 sql_string(table.name) + ", " + std::to_string(i + 1) + ", " +
                                 sql_string(table.columns[i].name) + ", " + sql_string(type_text(table.columns[i])) +
                                 ", " + (table.key == i ? "1" : "0") + ")");
        }
    }
    return statements;
}

SqliteValue sqlite_value(const jet::Value& value) { return std::visit(ToSqlite{}, value); }

}  // namespace tools
