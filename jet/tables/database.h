// An open Jet 3 or Jet 4 file: catalogue, tables, schema changes, password.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/base/salvage.h"
#include "jet/pages/pager.h"
#include "jet/schema/catalog.h"
#include "jet/schema/empty_database.h"
#include "jet/schema/schema_editor.h"
#include "jet/storage/storage.h"
#include "jet/tables/table.h"

namespace jet {

struct OpenOptions {
    std::u16string password;
    bool read_only = false;
    bool ignore_password = false;  // tools below the gates only look
    DamageListener on_damage;      // with read_only alone: read on behind damage, see salvage.h
    PagerOptions pager;
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
    // Why there is no table of that name, in a sentence: a query, a link to elsewhere, or nothing at all.
    std::string why_no_table(std::u16string_view name);
    // Whether the file is one of a set of replicas, which other programs bring in line with each other.
    bool is_replica();
    // As above by identity, system tables included.
    Table* table_by_page(PageNumber page);

    // Why tables and columns cannot be added and taken away, in a sentence: the catalogue itself may be one that can
    // only be read. None when they can.
    std::optional<std::string> why_schema_is_fixed();
    // One transaction each. Errors as the framework's: 3010, 3012, 3125, 3264, 3191, 3259, 3190, 3211, 3265, 3280.
    void create_table(std::u16string_view name, std::span<const NewColumn> columns);
    void add_column(std::u16string_view table, const NewColumn& column);
    void delete_column(std::u16string_view table, std::u16string_view column);

    // 3031 when `old_password` is not the file's. At most 20 characters, no NUL.
    void change_password(std::u16string_view old_password, std::u16string_view new_password);

    // Of texts and names; 0: UTF-16.
    std::uint16_t code_page() const;
    const FileHeader& header() const;
    Storage& storage();
    Pager& pager() { return storage().pager(); }
    PageAllocator& allocator() { return storage().allocator(); }

private:
    struct Impl;
    explicit Database(std::unique_ptr<Impl> impl);
    void open_catalog();
    Table& keep(PageNumber page, const std::u16string& name);
    SchemaEditor schema_editor();
    std::unique_ptr<Impl> impl_;
};

}  // namespace jet
