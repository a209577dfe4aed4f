// Uses one mutated file as hosts and tools do.
#pragma once

#include <cstdint>

#include "fuzz/mutator.h"

namespace kvdb_fuzz {

// Opens, reads, checks, changes and closes the files in memory, then opens the result once more. An engine error is a
// normal result. Throws std::logic_error for a broken promise: reading has changed the file, or a file that was written
// without an error cannot be opened again.
void use_files(const MutatedFiles& files);

}  // namespace kvdb_fuzz
