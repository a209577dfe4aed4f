#include "tools/open_file.h"

#include <filesystem>
#include <iterator>
#include <utility>

#include "db/database_files.h"
#include "jet/indexes/collation.h"
#include "os/file.h"
#include "os/system.h"
#include "tools/damage.h"
#include "tools/errors.h"
#include "tools/names.h"
#include "tools/paths.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

// A new file's none, then the studio's.
std::vector<std::string> known_passwords() {
    std::vector<std::string> passwords{""};
    for (const db::DatabaseFile file : {db::DatabaseFile::kMain, db::DatabaseFile::kInvoice}) {
        for (const char* const password : {db::password(file), db::former_password(file)}) {
            if (password != nullptr) passwords.emplace_back(password);
        }
    }
    return passwords;
}

}  // namespace

bool is_in_use(int error_number) {
    constexpr int kInUseElsewhere = 3196;
    return error_number == jet::errors::kFileInUse || error_number == jet::errors::kHeldExclusively ||
           error_number == kInUseElsewhere;
}

std::string in_use_text(const std::string& path) {
    return path + " is in use by another program; close that program, or try again later";
}

std::unique_ptr<os::File> open_system_file(const std::string& path, os::OpenMode mode) {
    try {
        return os::file_system().open(path, mode);
    } catch (const os::FileError& error) {
        if (error.fault() == os::FileFault::kLocked) throw CommandError(in_use_text(path));
        throw;
    }
}

DamagedFile::DamagedFile(const std::string& path, const jet::Error& error)
    : jet::Error(error.number(), path + " cannot be opened: " + error.what() + " " + help_for_damaged(path)),
      path_(path),
      reason_(error.what()) {}

std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::OpenOptions options) {
    options.read_only = true;
    try {
        return jet::Database::open(path, options);
    } catch (const jet::Error& error) {
        if (is_in_use(error.number())) throw CommandError(in_use_text(path));
        if (error.number() == jet::errors::kDamaged) throw DamagedFile(path, error);
        throw;
    }
}

std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::DamageListener on_damage) {
    jet::OpenOptions options;
    options.on_damage = std::move(on_damage);
    options.ignore_password = true;
    options.pager.cache_pages = kToolCachePages;
    return open_to_read(path, options);
}

std::unique_ptr<jet::Database> open_to_read(const std::string& path, const std::optional<std::string>& password,
                                            jet::DamageListener on_damage) {
    for (const std::string& candidate : password ? std::vector<std::string>{*password} : known_passwords()) {
        jet::OpenOptions options;
        options.password = jet::from_utf8(candidate);
        options.on_damage = on_damage;
        options.pager.cache_pages = kToolCachePages;
        try {
            return open_to_read(path, options);
        } catch (const jet::Error& error) {
            if (error.number() != jet::errors::kWrongPassword) throw;
        }
    }
    throw CommandError(path + (password ? " has another password than the one given with --password"
                                        : " has a password that is none of a studio's own; give it with --password"));
}

void require_no_dead_link(const std::string& path) {
    std::error_code error;
    const fs::path link = system_path(path);
    if (!fs::is_symlink(fs::symlink_status(link, error)) || fs::exists(link, error)) return;
    if (error) return;  // what is there cannot be told, which the opening says
    const fs::path end = fs::read_symlink(link, error);
    throw CommandError(path + " is a link that leads nowhere: " + path_text(end) + " is not there");
}

std::vector<std::string> jet_files_of(const std::string& file_or_folder) {
    std::error_code error;
    const fs::file_status status = fs::status(system_path(file_or_folder), error);
    if (status.type() == fs::file_type::not_found) {
        require_no_dead_link(file_or_folder);
        throw CommandError("there is no file or folder " + file_or_folder);
    }
    if (!fs::is_directory(status)) return {file_or_folder};
    std::vector<std::string> files;
    for (const char* const name : {kStudioFile, kInvoiceFile}) {
        const std::string path = os::join_path(file_or_folder, name);
        require_no_dead_link(path);
        // An error where it cannot be told, as in a folder that nobody but its owner may enter.
        if (os::file_system().exists(path)) files.push_back(path);
    }
    if (files.empty()) {
        throw CommandError("there is no studio in " + file_or_folder + ": neither sldb.mdb nor kvinvdb.mdb is there");
    }
    return files;
}

namespace {

// A query, or a table that is linked to elsewhere, is named as what it is.
void require_no_other_object(jet::Database& database, const std::u16string& name) {
    for (const jet::CatalogEntry& entry : database.catalog()) {
        if (entry.type != jet::kTableObject && jet::same_name(entry.name, name)) {
            throw UsageError(database.why_no_table(name));
        }
    }
}

}  // namespace

OpenedFile open_to_look(const std::string& path, const std::optional<std::string>& password) {
    return {path, open_to_read(path, password, damage_teller(path))};
}

std::vector<OpenedFile> open_all_to_look(const std::string& file_or_folder,
                                         const std::optional<std::string>& password) {
    std::vector<OpenedFile> opened;
    std::vector<DamagedFile> closed;
    for (const std::string& file : jet_files_of(file_or_folder)) {
        try {
            opened.push_back(open_to_look(file, password));
        } catch (const DamagedFile& error) {
            closed.push_back(error);
        }
    }
    if (opened.empty()) throw DamagedFile(closed.front());
    for (const DamagedFile& error : closed) tell_damage(error.path(), "it cannot be opened: " + error.reason());
    return opened;
}

TableLook look_at_table(const OpenedFile& file, std::u16string_view name) {
    try {
        return {file.database->find_table(name), false};
    } catch (const jet::Error& error) {
        if (!is_damage(error.number())) throw;
        tell_damage(file.path, "table " + jet::to_utf8(name) + " cannot be read: " + error.what());
        return {nullptr, true};
    }
}

std::vector<jet::Table*> readable_tables(const OpenedFile& file) {
    std::vector<jet::Table*> tables;
    for (const std::u16string& name : file.database->table_names()) {
        if (jet::Table* const table = look_at_table(file, name).table) tables.push_back(table);
    }
    return tables;
}

FoundTable::FoundTable(const std::string& file_or_folder, const std::string& table,
                       const std::optional<std::string>& password) {
    Names names;
    for (OpenedFile& file : open_all_to_look(file_or_folder, password)) {
        const TableLook look = look_at_table(file, jet::from_utf8(table));
        if (look.is_damaged) require_undamaged();
        if (look.table != nullptr) {
            file_ = std::move(file);
            table_ = look.table;
            return;
        }
        require_no_other_object(*file.database, jet::from_utf8(table));
        for (const std::u16string& name : file.database->table_names()) names.push_back(jet::to_utf8(name));
    }
    require_undamaged();  // its name may be what is lost
    const std::string hint = suggestion(table, names);
    throw UsageError("there is no table '" + table + "' in " + file_or_folder +
                     (hint.empty() ? "; kvdb tables " + typed_path(file_or_folder) + " lists them" : hint));
}

}  // namespace tools
