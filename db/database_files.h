// Where the two database files are, what they are called, and how they are opened: all in this one place.
#pragma once

#include <string>
#include <string_view>

namespace db {

enum class DatabaseFile { kMain, kInvoice };

// The folder of the component's own module, without a separator at its end; at most 259 characters. Worked
// out anew at every call, into one buffer of the process.
const char* database_folder();
// The file in that folder.
std::string file_path(DatabaseFile file);
bool file_exists(DatabaseFile file);

// The file's password, and the one that it had in the oldest versions; null where there was no other.
const char* password(DatabaseFile file);
const char* former_password(DatabaseFile file);
// ";PWD=" and the password, for CDaoDatabase::Open.
std::string connect_text(const char* password);
std::string connect_text(DatabaseFile file);
// The same behind the language of a new file, for CDaoDatabase::Create.
std::string locale_text(DatabaseFile file);

// Makes tests work in a folder of their own; "" puts the module's folder back.
void set_database_folder_for_test(std::string_view folder);

}  // namespace db
