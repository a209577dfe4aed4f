// Names for files that are being made. Nobody else has them; what a crash has left of them is told from the owner's
// files by its name, and from the work of a running process by its lock.
#pragma once

#include <string>

#include "os/file.h"

namespace os {

// `path`, "-new-" and 16 hexadecimal digits by chance.
std::string draft_name(const std::string& path);

// Takes a file back that has just got its name, unless somebody has opened it since. Throws nothing for what the system
// refuses.
void remove_unless_in_use(const std::string& path);

// Removes drafts of `path` that no process has open, drafts of such drafts, and whatever else begins with their names
// (journals). What cannot be removed stays; nothing is thrown for what the system refuses.
void clear_drafts(const std::string& path, FileSystem& files = file_system());

}  // namespace os
