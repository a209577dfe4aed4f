#include "db/database_files.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include "afx/dao_constants.h"
#include "afx/engine_errors.h"
#include "os/file.h"
#include "os/system.h"

namespace db {
namespace {

std::string& given_folder() {
    static std::string folder;
    return folder;
}

struct FileFacts {
    const char* name;
    const char* password;
    const char* former_password;  // null: none
};

// The passwords only keep a curious user with a copy of Access from changing the files by accident: a Jet password is
// stored in the file's first page, masked with a key that every reader knows, and the data itself is not encrypted.
// Secrets need the protection of the file system.
constexpr char kConnectKeyword[] = ";PWD=";
constexpr FileFacts kFiles[] = {
    {"sldb.mdb", "KvStudio2005sl", "KvStudio2002"},
    {"kvinvdb.mdb", "KvInvoice2005", nullptr},
};
constexpr bool is_plain_password(std::string_view password) {
    return !password.empty() && password.size() <= 14 && std::all_of(password.begin(), password.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}
static_assert(is_plain_password(kFiles[0].password) && is_plain_password(kFiles[1].password) &&
              is_plain_password(kFiles[0].former_password));

const FileFacts& facts(DatabaseFile file) { return kFiles[static_cast<std::size_t>(file)]; }

}  // namespace

std::string database_folder() { return given_folder().empty() ? os::folder_of(os::module_path()) : given_folder(); }

std::string file_path(DatabaseFile file) { return os::join_path(database_folder(), facts(file).name); }

bool file_exists(DatabaseFile file) {
    return afx::with_dao_errors([file] { return os::file_system().exists(file_path(file)); });
}

const char* password(DatabaseFile file) { return facts(file).password; }

const char* former_password(DatabaseFile file) { return facts(file).former_password; }

std::string connect_text(const char* password) { return std::string(kConnectKeyword) + password; }

std::string connect_text(DatabaseFile file) { return connect_text(password(file)); }

std::string locale_text(DatabaseFile file) { return dbLangGeneral + connect_text(file); }

void set_database_folder(std::string_view folder) { given_folder() = folder; }

void close_quietly(CDaoDatabase& database) noexcept {
    try {
        database.Close();
    } catch (CDaoException* e) {
        e->Delete();
    } catch (const std::bad_alloc&) {
        // Closed, with no memory to report anything else.
    }
}

}  // namespace db
