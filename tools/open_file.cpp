#include "tools/open_file.h"

#include <filesystem>
#include <iterator>

#include "db/database_files.h"
#include "jet/indexes/collation.h"
#include "os/system.h"
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

std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::OpenOptions options) {
    options.read_only = true;
    try {
        return jet::Database::open(path, options);
    } catch (const jet::Error& error) {
        if (is_in_use(error.number())) throw CommandError(in_use_text(path));
        throw;
    }
}

std::unique_ptr<jet::Database> open_to_read(const std::string& path) {
    jet::OpenOptions options;
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

std::vector<std::string> jet_files_of(const std::string& file_or_folder) {
    std::error_code error;
    const fs::file_status status = fs::status(system_path(file_or_folder), error);
    if (status.type() == fs::file_type::not_found) {
        throw CommandError("there is no file or folder " + file_or_folder);
    }
    if (!fs::is_directory(status)) return {file_or_folder};
    std::vector<std::string> files;
    for (const char* const name : {kStudioFile, kInvoiceFile}) {
        const std::string path = os::join_path(file_or_folder, name);
        if (fs::exists(system_path(path), error)) files.push_back(path);
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
            throw CommandError(database.why_no_table(name));
        }
    }
}

}  // namespace

FoundTable::FoundTable(const std::string& file_or_folder, const std::string& table,
                       const std::optional<std::string>& password, const Listener& listener) {
    std::vector<std::string> names;
    for (const std::string& file : jet_files_of(file_or_folder)) {
        database_ = open_to_read(file, password, listener ? listener(file) : jet::DamageListener());
        table_ = database_->find_table(jet::from_utf8(table));
        if (table_ != nullptr) return;
        require_no_other_object(*database_, jet::from_utf8(table));
        for (const std::u16string& name : database_->table_names()) names.push_back(jet::to_utf8(name));
    }
    throw CommandError("there is no table '" + table + "' in " + file_or_folder + suggestion(table, names));
}

}  // namespace tools
