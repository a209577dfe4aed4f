// Format-aware damage: sets fields of every kind of page to plausible numbers, so that the result passes the first
// checks and reaches the code after them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/base/bytes.h"

namespace kvdb_fuzz {

struct MutatedFiles {
    jet::ByteVector database;
    jet::ByteVector journal;         // to be put beside the file; empty: none
    std::vector<std::string> steps;  // the changes made, one line each
};

// Deterministic: the same seed gives the same result. Every seed gives another file: a base file (half of them plain
// Jet 4 files, a quarter plain Jet 3 files, the others encoded) with one to six changes to its header, definitions,
// slot tables, rows, usage maps, index pages, long values, catalogue rows or property blobs, or to whole pages. One in
// eight comes with a journal that is bound to the file and has right checksums: its pages carry the changes; some of
// these journals are damaged themselves.
MutatedFiles mutate(std::uint64_t seed);

}  // namespace kvdb_fuzz
