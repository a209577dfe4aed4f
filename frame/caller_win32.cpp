// Reads the import table of the calling module: who imports the unwinder that the component imports shares it. A
// module with an unwinder of its own cannot be unwound by ours, and ends when it is tried.
#include "frame/caller.h"

#include <cstdint>

#include "os/module_win32.h"

// The slot of our own import table for the unwinder; a build without a shared unwinder has none and does not link.
#ifdef _WIN64
#define KVDB_IMPORTED_UNWINDER __imp__Unwind_Resume
#else
#define KVDB_IMPORTED_UNWINDER _imp___Unwind_Resume  // the compiler puts one more line before names of C
#endif
extern "C" const void* const KVDB_IMPORTED_UNWINDER;

namespace frame {

namespace {

const std::uint8_t* base_of(HMODULE module) { return reinterpret_cast<const std::uint8_t*>(module); }

// The part of an image that a directory entry names; null where there is none.
const IMAGE_IMPORT_DESCRIPTOR* imports_of(HMODULE module) {
    const std::uint8_t* const base = base_of(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    if (dos->e_magic != IMAGE_DOS_SIGNATURE) return nullptr;
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    if (headers->Signature != IMAGE_NT_SIGNATURE) return nullptr;
    if (headers->OptionalHeader.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT) return nullptr;
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) return nullptr;
    return reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
}

// Whether `module` imports anything from `library`, which is told by where its imports lead, not by a name.
bool imports_from(HMODULE module, HMODULE library) {
    const IMAGE_IMPORT_DESCRIPTOR* import = imports_of(module);
    if (import == nullptr) return false;
    for (; import->Name != 0; ++import) {
        if (import->FirstThunk == 0) continue;
        const auto* const thunk = reinterpret_cast<const IMAGE_THUNK_DATA*>(base_of(module) + import->FirstThunk);
        if (thunk->u1.Function == 0) continue;
        if (os::module_of(reinterpret_cast<const void*>(thunk->u1.Function)) == library) return true;
    }
    return false;
}

}  // namespace

bool catches_exceptions(const void* return_address) {
    const HMODULE caller = os::module_of(return_address);
    if (caller == nullptr) return false;
    if (caller == os::own_module()) return true;
    const HMODULE unwinder = os::module_of(KVDB_IMPORTED_UNWINDER);
    return unwinder != nullptr && imports_from(caller, unwinder);
}

}  // namespace frame
