// Damage that knows the file: fields of every kind of page are set to numbers that mean something there, so that what
// comes out passes the first checks and reaches the code behind them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/base/bytes.h"

namespace kvdb_fuzz {

struct MutatedFiles {
    jet::ByteVector database;
    jet::ByteVector journal;         // to lie beside it; empty: none
    std::vector<std::string> steps;  // what was done, one line each
};

// The same for the same seed. Every seed gives another file: a base file with one to six changes to its header,
// definitions, slot tables, rows, usage maps, index pages, long values, catalogue rows or property blobs, or to whole
// pages. One in eight comes with a journal that is bound to the file and has right checksums: its pages carry the
// changes; of these journals, some are damaged themselves.
MutatedFiles mutate(std::uint64_t seed);

}  // namespace kvdb_fuzz
