// What info tells, for programs: one JSON object.
#pragma once

#include <string>

#include "jet/tables/database.h"
#include "tools/open_file.h"
#include "tools/studio_files.h"

namespace tools {

// "Jet 4 (Access 2000 to 2003)"
const char* format_words(jet::Database& database);

std::string studio_json(const StudioFiles& files);
// Of a file that is none of a studio's.
std::string other_file_json(const OpenedFile& file);

}  // namespace tools
