// An open Jet 4 file: catalogue, tables, schema changes, password.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/base/salvage.h"
#include "jet/pages/pager.h"
#include "jet/schema/table_def.h"
#include "jet/storage/chain_owners.h"
#include "jet/storage/usage_map.h"
#include "jet/tables/table.h"

namespace jet {

// What a new column looks like to whoever creates it.
struct NewColumn {
    std::u16string name;
    ColumnType type = ColumnType::kLong;
    std::uint16_t text_characters = 255;  // kText only, 1..255
    bool autonumber = false;              // kLong only
    bool allow_zero_length = false;       // kText and kMemo only
};

// Everything a new file takes from the outside, so that tests can fix it.
struct CreateOptions {
    std::u16string password;   // at most 20 characters; empty: none
    double creation_date = 0;  // OLE date, local time; 0: now
    double row_date = 0;       // dates of the catalogue rows; 0: creation_date
    std::uint32_t engine_build = 9756;
};

struct OpenOptions {
    std::u16string password;
    bool read_only = false;
    bool ignore_password = false;  // tools below the gates only look
    DamageListener on_damage;      // with read_only alone: read on behind damage, see salvage.h
    PagerOptions pager;
};

// A name in the catalogue's container of tables.
struct CatalogEntry {
    std::u16string name;
    std::int32_t id = 0;
    std::int16_t type = 0;  // on disk: 1 table, 4 and 6 linked, 5 query
    std::uint32_t flags = 0;
    bool is_system() const { return (flags & jet4::kSystemObjectFlags) != 0; }
};

class Database {
public:
    // 3204 when the name is there, and nothing happens to it; 3044, 3055 and 3051 for the path, 3026 for a full disk.
    // A file that could not be made whole is removed again.
    static std::unique_ptr<Database> create(const std::string& path, const CreateOptions& options);
    // The database is the file that `name` leads to through links, and its journal lies beside that file.
    // 3024, 3044, 3055, 3051, 3045, 3356, 3343, 3041, 3049, 3031.
    static std::unique_ptr<Database> open(const std::string& name, const OpenOptions& options);
    ~Database();

    const std::string& path() const;
    // Writes everything back and releases the file. Errors are thrown, the file is released all the same.
    void close();

    // Whole catalogue container of tables, system tables and queries included, in scan order.
    std::vector<CatalogEntry> catalog() const;
    // User tables' names in scan order.
    std::vector<std::u16string> table_names() const;
    // The open table of that name (any case); null when there is none. Stays valid until the table is
    // dropped or the database closed.
    Table* find_table(std::u16string_view name);
    // As above by identity, system tables included.
    Table* table_by_page(PageNumber page);

    // One transaction each. Errors as the framework's: 3010, 3012, 3125, 3264, 3191, 3259, 3190, 3211, 3265, 3280.
    void create_table(std::u16string_view name, std::span<const NewColumn> columns);
    void add_column(std::u16string_view table, const NewColumn& column);
    void delete_column(std::u16string_view table, std::u16string_view column);

    // 3031 when `old_password` is not the file's. At most 20 characters, no NUL.
    void change_password(std::u16string_view old_password, std::u16string_view new_password);

    Pager& pager();
    PageAllocator& allocator();
    ChainOwners& chain_owners();
    // The definition on `page`, its properties included. 3049 when there is none.
    TableDef load_table_def(PageNumber page, const std::u16string& name) const;
    // Tells the listener of `on_damage` that `page`, or what lies on it, cannot be read. False when there is none, or
    // the error is no damage: then it is to be thrown on.
    bool passes_over(PageNumber page, const Error& error) const;
    // Pages of definitions are about to change hands.
    void forget_definition_pages();

private:
    struct Impl;
    explicit Database(std::unique_ptr<Impl> impl);
    void open_catalog();
    std::unique_ptr<Impl> impl_;
    friend class SchemaEditor;
};

// The pages of a new empty file, 16 of them.
ByteVector build_empty_database(const CreateOptions& options);

}  // namespace jet
