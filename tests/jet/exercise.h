// Everything a host or a tool does with a file, done to a file that may be damaged: the work of the corruption
// tests and of the fuzzers. Only jet::Error is swallowed; whatever else comes out is a defect.
#pragma once

#include <cstddef>
#include <string>

#include "jet/tables/database.h"
#include "tests/jet/tested_files.h"

namespace jet {

// A sound file with every kind of column that can be created, long values of every form, moved and deleted rows,
// columns added and deleted later.
ByteVector make_rich_file(const TestedFile& file = kTestedFiles[0]);

// Decodes the pages of a file where its kind encodes them, or encodes them: the same work.
void code_pages(ByteVector& file, const FileKind& kind);

// Values of every row of every table, the catalogue's own included, and the structural check. Returns how many
// values were read.
std::size_t read_everything(Database& database);
// The same without the check.
std::size_t read_rows(Database& database);
// A few rows added, changed and deleted, a table made, a column added and one deleted, the password changed.
void change_a_little(Database& database);

// Opens the file of the file system in use, works on it as named and closes it. Returns the engine's number of the
// first error, 0 when there was none.
int read_file(const std::string& path);
int change_file(const std::string& path);

}  // namespace jet
