// A studio as a database of SQLite, written by SQLite itself.
#include <sqlite3.h>

#include "tools/errors.h"
#include "tools/export/export_writer.h"
#include "tools/export/sql_text.h"
#include "tools/export/sqlite_schema.h"

namespace tools {
namespace {

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

class SqliteWriter final : public ExportWriter {
public:
    explicit SqliteWriter(const std::string& path) : path_(path) {
        sqlite3* database = nullptr;
        const int result = sqlite3_open(path.c_str(), &database);
        database_.reset(database);
        require(result == SQLITE_OK);
        // A draft that does not come to its end is thrown away: it needs no journal.
        execute("PRAGMA journal_mode = OFF");
        execute("PRAGMA encoding = 'UTF-8'");
        execute("BEGIN");
    }

    void begin(const ExportTable& table) override {
        execute(sqlite_create_table(table));
        std::string placeholders;
        for (std::size_t i = 0; i < table.columns.size(); ++i) placeholders += i == 0 ? "?" : ", ?";
        const std::string text = "INSERT INTO " + sql_name(table.name) + " VALUES (" + placeholders + ")";
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v2(database_.get(), text.c_str(), -1, &statement, nullptr) == SQLITE_OK);
        insert_.reset(statement);
    }

    void row(const ExportTable&, std::span<const jet::Value> values) override {
        for (std::size_t i = 0; i < values.size(); ++i) bind(static_cast<int>(i + 1), sqlite_value(values[i]));
        require(sqlite3_step(insert_.get()) == SQLITE_DONE);
        sqlite3_reset(insert_.get());
    }

    void end(const ExportTable& table) override {
        insert_.reset();
        for (const std::string& statement : sqlite_indexes(table)) execute(statement);
    }

    void finish(std::span<const ExportTable> tables) override {
        for (const std::string& statement : sqlite_views(tables)) execute(statement);
        for (const std::string& statement : sqlite_column_list(tables)) execute(statement);
        execute("COMMIT");
        const int result = sqlite3_close(database_.get());
        static_cast<void>(database_.release());
        if (result != SQLITE_OK) throw CommandError(path_ + " cannot be written");
    }

private:
    void execute(const std::string& statement) {
        require(sqlite3_exec(database_.get(), statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
    }

    void bind(int place, const SqliteValue& value) {
        sqlite3_stmt* const statement = insert_.get();
        if (const auto* const number = std::get_if<std::int64_t>(&value)) {
            require(sqlite3_bind_int64(statement, place, *number) == SQLITE_OK);
        } else if (const auto* const real = std::get_if<double>(&value)) {
            require(sqlite3_bind_double(statement, place, *real) == SQLITE_OK);
        } else if (const auto* const text = std::get_if<std::string>(&value)) {
            require(sqlite3_bind_text64(statement, place, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8) ==
                    SQLITE_OK);
        } else if (const auto* const bytes = std::get_if<std::vector<std::uint8_t>>(&value)) {
            require((bytes->empty() ? sqlite3_bind_zeroblob(statement, place, 0)
                                    : sqlite3_bind_blob64(statement, place, bytes->data(), bytes->size(),
                                                          SQLITE_TRANSIENT)) == SQLITE_OK);
        } else {
            require(sqlite3_bind_null(statement, place) == SQLITE_OK);
        }
    }

    void require(bool succeeded) const {
        if (!succeeded) throw CommandError(path_ + " cannot be written: " + sqlite3_errmsg(database_.get()));
    }

    std::string path_;
    std::unique_ptr<sqlite3, CloseDatabase> database_;
    std::unique_ptr<sqlite3_stmt, FinalizeStatement> insert_;
};

}  // namespace

std::unique_ptr<ExportWriter> make_sqlite_writer(const std::string& path, const std::optional<std::string>&) {
    return std::make_unique<SqliteWriter>(path);
}

}  // namespace tools
