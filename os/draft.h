// Names for files under construction. They are unique. A draft left by a crash differs from the owner's files by its
// name, and from the draft of a running process by its missing lock.
#pragma once

#include <string>

#include "os/file.h"

namespace os {

// `path`, "-new-" and 16 random hexadecimal digits.
std::string draft_name(const std::string& path);

// Removes a file that has just been renamed to its final name, unless somebody has opened it since. Errors of the
// system are ignored.
void remove_unless_in_use(const std::string& path);

// Removes drafts of `path` that no process has open, drafts of such drafts, and all other files whose names begin with
// theirs (journals). What cannot be removed stays; errors of the system are ignored.
void clear_drafts(const std::string& path, FileSystem& files = file_system());

}  // namespace os
