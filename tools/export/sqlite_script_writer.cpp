// A studio as a script for SQLite's shell: sqlite3 FILE < SCRIPT.
#include <charconv>
#include <cmath>
#include <string_view>

#include "tools/export/draft.h"
#include "tools/export/export_writer.h"
#include "tools/export/sql_text.h"
#include "tools/export/sqlite_schema.h"
#include "tools/value_text.h"

namespace tools {
namespace {

struct ToLiteral {
    std::string operator()(std::monostate) const { return "NULL"; }
    std::string operator()(std::int64_t v) const { return std::to_string(v); }
    std::string operator()(double v) const {
        if (std::isnan(v)) return "NULL";
        if (std::isinf(v)) return v > 0 ? "9e999" : "-9e999";
        const std::string digits = plain_text(v);
        return digits.find_first_of(".e") == std::string::npos ? digits + ".0" : digits;
    }
    std::string operator()(const std::string& v) const {
        // A statement of the shell ends at a character 0, and its lines end at one return or two characters alike.
        return v.find_first_of(std::string_view("\0\r", 2)) == std::string::npos
                   ? sql_string(v)
                   : "CAST(" + (*this)(std::vector<std::uint8_t>(v.begin(), v.end())) + " AS TEXT)";
    }
    std::string operator()(const std::vector<std::uint8_t>& v) const { return "X'" + plain_text(v) + "'"; }
};

class SqliteScriptWriter final : public ExportWriter {
public:
    explicit SqliteScriptWriter(const std::string& path) : out_(path) {
        out_.write("-- A studio's tables for SQLite: sqlite3 NEW.sqlite < FILE\nBEGIN;\n");
    }
    void begin(const ExportTable& table) override { execute(sqlite_create_table(table)); }
    void row(const ExportTable& table, std::span<const jet::Value> values) override {
        std::string statement = "INSERT INTO " + sql_name(table.name) + " VALUES (";
        for (std::size_t i = 0; i < values.size(); ++i) {
            statement += (i == 0 ? "" : ", ") + std::visit(ToLiteral{}, sqlite_value(values[i]));
        }
        execute(statement += ")");
    }
    void end(const ExportTable& table) override { execute_all(sqlite_indexes(table)); }
    void finish(std::span<const ExportTable> tables) override {
        execute_all(sqlite_views(tables));
        execute_all(sqlite_column_list(tables));
        execute("COMMIT");
        out_.close();
    }

private:
    void execute(const std::string& statement) { out_.write(statement + ";\n"); }
    void execute_all(const std::vector<std::string>& statements) {
        for (const std::string& statement : statements) execute(statement);
    }

    OutFile out_;
};

}  // namespace

std::unique_ptr<ExportWriter> make_sqlite_script_writer(const std::string& path, const std::optional<std::string>&) {
    return std::make_unique<SqliteScriptWriter>(path);
}

}  // namespace tools
