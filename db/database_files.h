// The one place for the paths, names and passwords of the two database files.
#pragma once

#include <string>
#include <string_view>

#include "afx/dao_database.h"
#include "os/file.h"

namespace db {

enum class DatabaseFile { kMain, kInvoice };

// The folder of the component's own module, without a trailing separator, in the form of os/file.h; never truncated.
// Computed at every call. set_database_folder overrides it.
std::string database_folder();
// Path of the file in that folder.
std::string file_path(DatabaseFile file);
// False only when the system reports that the name does not exist; throws CDaoException* when it cannot tell.
bool file_exists(DatabaseFile file);

// The file's password, and its former one in the oldest versions; null where there was none.
const char* password(DatabaseFile file);
const char* former_password(DatabaseFile file);
// ";PWD=" and the password, for CDaoDatabase::Open.
std::string connect_text(const char* password);
std::string connect_text(DatabaseFile file);
// The language of a new file, then the same, for CDaoDatabase::Create.
std::string locale_text(DatabaseFile file);

// Closes the database and drops what fails in closing: it is closed in any case.
void close_quietly(CDaoDatabase& database) noexcept;

// Sets the folder of the files; "" restores the module's folder. For a program that embeds the component (the
// command-line tool, tests). Not while a database is open.
void set_database_folder(std::string_view folder);

}  // namespace db
