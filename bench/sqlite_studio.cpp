#include "bench/sqlite_studio.h"

#include <span>
#include <stdexcept>

#include "bench/sqlite_statement.h"
#include "db/content.h"
#include "db/schema.h"
#include "os/system.h"

namespace bench {
namespace {

const char* type_of(db::FieldKind kind) {
    switch (kind) {
        case db::FieldKind::kKey: return " INTEGER PRIMARY KEY";
        case db::FieldKind::kLong:
        case db::FieldKind::kPlainLong: return " INTEGER";
        case db::FieldKind::kDate:
        case db::FieldKind::kCurrency:
        case db::FieldKind::kSingle: return " REAL";
        case db::FieldKind::kText:
        case db::FieldKind::kShortText:
        case db::FieldKind::kTextNotEmpty:
        case db::FieldKind::kMemo: return " TEXT";
    }
    return "";
}

void make_tables(sqlite3* file, std::span<const db::TableSchema> tables) {
    execute(file, "BEGIN");
    for (const db::TableSchema& table : tables) {
        std::string columns;
        for (const db::FieldSchema& field : table.fields) {
            columns += std::string(columns.empty() ? "" : ", ") + field.name + type_of(field.kind);
        }
        execute(file, std::string("CREATE TABLE ") + table.name + "(" + columns + ")");
    }
    execute(file, "INSERT INTO DBHeader(DBversion) VALUES(" + std::to_string(db::kCurrentVersion) + ")");
    execute(file, "COMMIT");
}

}  // namespace

SqliteStudio::SqliteStudio(const std::string& folder)
    : paths_{os::join_path(folder, "studio.sqlite"), os::join_path(folder, "invoices.sqlite")} {}

void SqliteStudio::open_files() {
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        if (sqlite3_open(paths_[i].c_str(), &files_[i]) != SQLITE_OK) {
            throw std::runtime_error("cannot open " + paths_[i]);
        }
        execute(files_[i], "PRAGMA journal_mode=WAL");
        execute(files_[i], "PRAGMA synchronous=NORMAL");
    }
}

void SqliteStudio::create() {
    open_files();
    make_tables(files_[0], db::studio_tables());
    make_tables(files_[1], db::invoice_tables());
}

void SqliteStudio::open() {
    open_files();
    for (sqlite3* file : files_) {
        const Statement version(file, "SELECT DBversion FROM DBHeader");
        if (!version.step() || sqlite3_column_int(version.get(), 0) != db::kCurrentVersion) {
            throw std::runtime_error("a file of another version");
        }
    }
}

void SqliteStudio::close() {
    for (sqlite3*& file : files_) {
        sqlite3_close(file);
        file = nullptr;
    }
}

sqlite3* SqliteStudio::file_of(const char* table) const {
    return files_[db::find_table(db::invoice_tables(), table) != nullptr ? 1 : 0];
}

}  // namespace bench
