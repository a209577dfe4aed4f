// Small sound files, from which the mutator starts.
#pragma once

#include <vector>

#include "jet/base/bytes.h"
#include "tests/jet/tested_files.h"

namespace kvdb_fuzz {

// Of each kind of file, made once, the same in every run:
//  - every kind of column, long values of every form, moved and deleted rows, an index of two columns over a table;
//  - maps converted to bitmap pages, an index with a node above its leaves, a definition of two pages;
//  - a new, empty file.
const std::vector<jet::ByteVector>& base_files(const jet::TestedFile& file);
// A table of few rows, for running many files in little time.
const jet::ByteVector& smallest_file(const jet::TestedFile& file);

}  // namespace kvdb_fuzz
