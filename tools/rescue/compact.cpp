#include "tools/rescue/compact.h"

#include <memory>
#include <random>

#include "jet/indexes/text_order.h"
#include "jet/pages/header.h"
#include "jet/tables/database.h"
#include "os/file.h"
#include "tools/errors.h"
#include "tools/long_work.h"
#include "tools/open_file.h"
#include "tools/rescue/checked_copy.h"
#include "tools/rescue/finding.h"
#include "tools/rescue/new_file.h"
#include "tools/rescue/same_data.h"

namespace tools {
namespace {

std::unique_ptr<jet::Database> open_exclusively(const std::string& path) {
    jet::OpenOptions options;
    options.ignore_password = true;
    options.pager.cache_pages = kToolCachePages;
    try {
        return jet::Database::open(path, options);
    } catch (const jet::Error& error) {
        if (is_in_use(error.number())) throw CommandError(in_use_text(path));
        if (error.number() == jet::errors::kDamaged) throw DamagedFile(path, error);
        throw;
    }
}

[[noreturn]] void cannot(const std::string& path, const std::string& why) {
    throw CommandError(path + " cannot be made anew without loss: " + why + "; it is as it was");
}

bool has_rows(jet::Database& database, jet::PageNumber page) {
    const jet::Table* const table = database.table_by_page(page);
    return table != nullptr && table->next_row({}).has_value();
}

// What the engine reads and does not make itself would be lost.
void require_plain(jet::Database& database, const std::string& path) {
    for (const jet::CatalogEntry& entry : database.catalog()) {
        const std::string name = jet::to_utf8(entry.name);
        if (entry.is_system() || name.starts_with("MSys")) continue;
        if (entry.type != 1) cannot(path, "it holds a query or a link by the name of " + name);
        const jet::TableDef& def = database.find_table(entry.name)->def();
        if (!def.real_indexes.empty() || !def.logical_indexes.empty()) cannot(path, "table " + name + " has an index");
        for (const jet::ColumnDef& column : def.columns) {
            bool is_same = true;
            new_column_like(column, is_same);
            const bool is_plain = is_same && !column.required &&
                                  (column.ext_flags & ~jet::jet4::tdef::kExtCompressed) == 0 &&
                                  (!column.is_autonumber() || column.type == jet::ColumnType::kLong);
            if (!is_plain)
                cannot(path, "column " + jet::to_utf8(column.name) + " of table " + name + " is of another kind");
        }
    }
    if (has_rows(database, jet::jet4::kRelationshipsPage)) cannot(path, "its tables have relationships");
}

std::size_t copy_table(jet::Database& from, NewFile& to, const std::u16string& name, LongWork& work) {
    jet::Table& table = *from.find_table(name);
    jet::Table& copy = *to.database().find_table(name);
    std::size_t rows = 0;
    jet::RowView view;
    for (auto id = table.next_row({}); id; id = table.next_row(*id), ++rows) {
        if (!table.read(*id, view)) jet::fail(jet::errors::kDamaged, "A row cannot be read.");
        std::vector<jet::Value> values(table.def().columns.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            view.value(i, values[i]);
            if (table.def().columns[i].is_autonumber() && jet::is_null(values[i])) {
                cannot(from.path(), "a row of " + jet::to_utf8(name) + " has no number");
            }
        }
        to.insert(copy, std::move(values));
        work.step();
    }
    return rows;
}

std::uint64_t row_count(jet::Database& database) {
    std::uint64_t rows = 0;
    for (const std::u16string& name : database.table_names()) rows += database.find_table(name)->def().row_count;
    return rows;
}

void make_tables(jet::Database& from, NewFile& to) {
    for (const std::u16string& name : from.table_names()) {
        const jet::TableDef& def = from.find_table(name)->def();
        std::vector<jet::NewColumn> columns;
        for (const jet::ColumnDef& column : def.columns) {
            bool is_same = true;
            columns.push_back(new_column_like(column, is_same));
        }
        to.database().create_table(name, columns);
        to.set_last_number(name, def.last_autonumber);
        const jet::ByteVector properties = property_blob(from, name, to.database().code_page());
        if (properties != property_blob(to.database(), name)) set_property_blob(to.database(), name, properties);
    }
}

// A Jet 3 file in a code page whose order is not known for every letter: the new one lists its tables in that order.
void require_known_order(jet::Database& database, const std::string& path) {
    const auto refuse = [&](const std::string& why) {
        throw CommandError("the order of texts in the code page of " + path + " (" +
                           std::to_string(database.code_page()) + ") is not known" + why +
                           ", so no Jet 3 file can be made of it; --to-jet4 makes one of Jet 4");
    };
    if (database.why_schema_is_fixed()) refuse("");
    jet::ColumnDef names;
    names.type = jet::ColumnType::kText;
    names.code_page = database.code_page();
    names.lcid = database.header().lcid;
    for (const std::u16string& name : database.table_names()) {
        if (!jet::is_key_known(name, names)) refuse(" for the name of table " + jet::to_utf8(name));
    }
}

std::uint32_t key_of(const jet::FileHeader& header, Encoding encoding) {
    switch (encoding) {
        case Encoding::kAsItIs: return header.encryption_key;
        case Encoding::kDecoded: return 0;
        case Encoding::kEncoded: break;
    }
    if (header.encryption_key != 0) return header.encryption_key;
    const std::uint32_t key = std::random_device{}();
    return key != 0 ? key : 1;
}

// Nobody can open the file in between.
std::unique_ptr<os::File> locked_after_closing(jet::Database& database, const std::string& path) {
    const auto kept = os::file_system().keep_lock(path);
    database.close();
    return open_system_file(path, os::OpenMode::kExclusive);
}

}  // namespace

CompactOutcome compact_file(const std::string& name, const CompactOptions& wanted) {
    const std::string path = os::file_system().resolved(name);
    CompactOutcome outcome;
    const auto database = open_exclusively(path);
    if (!check_file(*database, path).is_sound()) {
        throw CommandError(path +
                           " is damaged and was left as it is; kvdb check tells more, kvdb salvage saves what is left");
    }
    require_plain(*database, path);
    outcome.bytes_before = std::uint64_t{database->pager().page_count()} * database->pager().format().page_size;
    const jet::FileHeader header = database->header();
    const bool is_like_any = &format_like(*header.format, header.code_page) == header.format;
    if (!wanted.to_jet4 && !is_like_any) require_known_order(*database, path);
    jet::CreateOptions options;
    options.password = header.password;
    options.creation_date = header.creation_date;
    options.engine_build = header.build;
    options.code_page = header.code_page;
    if (!wanted.to_jet4) options.format = header.format;
    if (!is_like_any) options.lcid = header.lcid;
    if (options.format != header.format) options.engine_build = jet::CreateOptions().engine_build;
    options.encryption_key = key_of(header, wanted.encoding);

    NewFile fresh(path, path, options, NewFile::Place::kReplace);
    make_tables(*database, fresh);
    {
        LongWork work("rows copied", row_count(*database));
        for (const std::u16string& table : database->table_names()) {
            outcome.rows += copy_table(*database, fresh, table, work);
        }
    }
    fresh.finish();
    {
        const auto made = open_to_read(fresh.draft());
        const std::string difference = difference_of(*database, *made);
        if (!difference.empty())
            throw CommandError("the new file is not the same (" + difference + "); " + path + " is as it was");
        if (made->header().password != header.password) {
            throw CommandError("the new file has another password; " + path + " is as it was");
        }
        outcome.bytes_after = std::uint64_t{made->pager().page_count()} * made->pager().format().page_size;
    }
    os::file_system().copy_access(path, fresh.draft());
    fresh.publish(locked_after_closing(*database, path));
    return outcome;
}

}  // namespace tools
