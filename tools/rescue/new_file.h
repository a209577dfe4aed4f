// A new database file in the making: nobody sees it before it is whole, checked and on the disk.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "jet/tables/database.h"

namespace tools {

class NewFile {
public:
    enum class Place {
        kNew,      // CommandError when `path` is there
        kReplace,  // it takes the place of the file that is there, in one step
    };
    // The draft lies beside `path`. It is accessible to whom the file at `like` is, before a row is in it.
    NewFile(const std::string& path, const std::string& like, const jet::CreateOptions& options,
            Place place = Place::kNew);
    // Takes the draft away, unless it was published.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    jet::Database& database() { return *database_; }
    const std::string& draft() const { return draft_; }

    // Says which number a table gives next, less one. Before the table is first used.
    void set_last_number(std::u16string_view table, std::int32_t number);
    // Adds a row, in one transaction with some hundreds of others.
    jet::RowId insert(jet::Table& table, std::vector<jet::Value> values);

    // Commits what was inserted.
    void commit();
    // Closes the draft and looks at it with the structural check; CommandError where that finds fault.
    void finish();
    // Gives it its name. CommandError when that is taken meanwhile. `replaced`: the file whose place it takes, locked.
    void publish(std::unique_ptr<os::File> replaced = nullptr);

private:
    std::string path_;
    std::string draft_;
    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<jet::Transaction> filling_;
    Place place_;
    std::size_t waiting_ = 0;
    bool is_published_ = false;
};

// The format of a new file whose texts come from one in `format` and `code_page`: the same, or Jet 4 where the order of
// that code page, in which a Jet 3 file would keep its catalogue, is not known for every letter.
const jet::Format& format_like(const jet::Format& format, std::uint16_t code_page);

// A column as another file has it, as far as it can be created: other types come as close as possible. `is_same` tells
// whether it is the same type.
jet::NewColumn new_column_like(const jet::ColumnDef& column, bool& is_same);

}  // namespace tools
