// compact: a file made anew from its rows, without what has gathered in it.
#pragma once

#include <cstdint>
#include <string>

namespace tools {

// Pages under a stream of bytes, or not.
enum class Encoding { kAsItIs, kEncoded, kDecoded };

struct CompactOptions {
    bool to_jet4 = false;  // a Jet 3 file becomes one of Jet 4
    Encoding encoding = Encoding::kAsItIs;
};

struct CompactOutcome {
    std::uint64_t bytes_before = 0;
    std::uint64_t bytes_after = 0;
    std::size_t rows = 0;
};

// Makes the file anew with the same tables, columns and properties, its rows in the same order with the same keys, the
// same next numbers and the same password; compares both, then puts the new one in the old one's place in one step.
// CommandError where the file is in use, damaged, or holds what could not be made anew (indexes, queries, links and
// relationships of other programs); os::FileError and jet::Error. Then the file is as it was.
CompactOutcome compact_file(const std::string& path, const CompactOptions& wanted = {});

}  // namespace tools
