// One mutated file, used as hosts and tools use files.
#pragma once

#include <cstdint>

#include "fuzz/mutator.h"

namespace kvdb_fuzz {

// Opens, reads, checks, changes and closes the files in memory, then once more what that has left. An engine error is
// an answer. Throws std::logic_error for a broken promise: reading only has changed the file, or a file that was
// written without an error cannot be opened again.
void use_files(const MutatedFiles& files);

}  // namespace kvdb_fuzz
