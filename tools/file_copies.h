// Copies of a studio's file: dated ones before an upgrade, and the way back.
//
// Invariants
//  1. A copy comes to its name only when it is whole and on the disk, and never takes a name that is in use.
//  2. It has the mode, the times and, where the system allows it, the owner of the file.
//  3. The file is closed, locked meanwhile, and its journal has been written back: one file is the whole.
#pragma once

#include <memory>
#include <string>

#include "os/file.h"

namespace tools {

struct DatedCopy {
    std::string path;
    bool is_new = false;  // none that was equal lay there
};

// A copy of the file in its folder whose name has today's date, or one of whatever date that equals the file byte for
// byte. CommandError where the file is in use; os::FileError and jet::Error.
DatedCopy dated_copy(const std::string& path);

// Puts the content of the copy in the file's place, as one step. The copy stays. CommandError, os::FileError and
// jet::Error; then the file is as it was.
void take_back(const std::string& copy, const std::string& path);

// Opens the file as a host does, and closes it: what a crash has left in a journal is in the file then. CommandError
// where it is in use, else jet::Error.
void write_journal_back(const std::string& path);

// Puts the draft in the file's place as one step. `locked` is that file: until then nobody else can open it and write
// what would be lost. Where no file is replaced that is open (Windows), it is let go at the last moment.
void replace_locked(const std::string& draft, const std::string& path, std::unique_ptr<os::File> locked);

// Removes a file that nobody has open.
void remove_closed(const std::string& path);

}  // namespace tools
