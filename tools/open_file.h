// A Jet file below the gates.
#pragma once

#include <memory>
#include <string>

#include "jet/tables/database.h"

namespace tools {

// Opens the file for reading only, which writes nothing and puts nothing beside it. CommandError where another program
// has it open; jet::Error for the rest.
std::unique_ptr<jet::Database> open_to_read(const std::string& path, jet::OpenOptions options);
// Whatever the password, which is the component's own affair.
std::unique_ptr<jet::Database> open_to_read(const std::string& path);

// Whether the engine's number says that somebody else has the file open.
bool is_in_use(int error_number);
std::string in_use_text(const std::string& path);

}  // namespace tools
