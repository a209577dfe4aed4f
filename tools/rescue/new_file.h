// A new database file in the making: nobody sees it before it is whole, checked and on the disk.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "jet/tables/database.h"

namespace tools {

class NewFile {
public:
    // CommandError when `path` is there. The draft lies beside it.
    NewFile(const std::string& path, const std::u16string& password);
    // Takes the draft away, unless it was published.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    jet::Database& database() { return *database_; }
    const std::string& draft() const { return draft_; }

    // Says which number a table gives next, less one. Before the table is first used.
    void set_last_number(std::u16string_view table, std::int32_t number);
    // Rows are added in one transaction for each some hundreds.
    jet::RowId insert(jet::Table& table, std::vector<jet::Value> values);

    // Closes the draft and looks at it with the structural check; CommandError where that finds fault.
    void finish();
    // Gives it its name. CommandError when that is taken meanwhile.
    void publish();

private:
    void commit();

    std::string path_;
    std::string draft_;
    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<jet::Transaction> filling_;
    std::size_t waiting_ = 0;
    bool is_published_ = false;
};

// A column as another file has it, as far as it can be created: other types come as close as possible. `is_same` tells
// whether it is the same type.
jet::NewColumn new_column_like(const jet::ColumnDef& column, bool& is_same);

}  // namespace tools
