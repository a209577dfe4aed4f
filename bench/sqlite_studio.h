// The peer of a whole studio: two SQLite files with the tables that the component declares for its own, under the same
// names and with the same columns, keys as rowids. Journal mode WAL, synchronous NORMAL.
#pragma once

#include <sqlite3.h>

#include <array>
#include <string>

namespace bench {

class SqliteStudio {
public:
    // The folder exists.
    explicit SqliteStudio(const std::string& folder);
    ~SqliteStudio() { close(); }
    SqliteStudio(const SqliteStudio&) = delete;
    SqliteStudio& operator=(const SqliteStudio&) = delete;

    // Makes both files, each in one transaction, and leaves them open.
    void create();
    // Opens both files and reads their versions, as the component does.
    void open();
    void close();
    // The open file that has the table.
    sqlite3* file_of(const char* table) const;
    const std::array<std::string, 2>& paths() const { return paths_; }

private:
    void open_files();

    const std::array<std::string, 2> paths_;  // of the studio, of the invoices
    std::array<sqlite3*, 2> files_{};
};

}  // namespace bench
