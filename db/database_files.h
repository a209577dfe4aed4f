// Where the two database files are, what they are called, and how they are opened: all in this one place.
#pragma once

#include <string>
#include <string_view>

#include "afx/dao_database.h"
#include "os/file.h"

namespace db {

enum class DatabaseFile { kMain, kInvoice };

// The folder of the component's own module, without a separator at its end, as os/file.h takes paths; never cut. Worked
// out anew at every call. set_database_folder puts another in its place.
std::string database_folder();
// The file in that folder.
std::string file_path(DatabaseFile file);
// False only when the system says that the name is not there; when it cannot tell, CDaoException*.
bool file_exists(DatabaseFile file);

// The file's password, and the one that it had in the oldest versions; null where there was no other.
const char* password(DatabaseFile file);
const char* former_password(DatabaseFile file);
// ";PWD=" and the password, for CDaoDatabase::Open.
std::string connect_text(const char* password);
std::string connect_text(DatabaseFile file);
// The same behind the language of a new file, for CDaoDatabase::Create.
std::string locale_text(DatabaseFile file);

// For a program that contains the component (the command-line tool, tests): the files are in this folder; "" puts
// the module's folder back. Not while a database is open.
void set_database_folder(std::string_view folder);

}  // namespace db
