// Owns the choice of the file system in use. Invariant: file_system() always refers to one; without a replacement it is
// the machine's.
#include "os/file.h"

#include <utility>

namespace os {
namespace {

FileSystem* replacement_file_system = nullptr;

}  // namespace

FileSystem& file_system() {
    return replacement_file_system != nullptr ? *replacement_file_system : native_file_system();
}

FileSystem* set_file_system(FileSystem* replacement) { return std::exchange(replacement_file_system, replacement); }

}  // namespace os
