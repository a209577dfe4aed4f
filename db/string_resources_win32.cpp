// Loads texts from the string table of the library that holds this code.
#include "db/string_resources.h"

#include "os/module_win32.h"
#include "os/system.h"

namespace db {

std::string string_resource(std::uint16_t id) {
    // With buffer size 0 the call returns a pointer to the resource itself and its length in units.
    const wchar_t* text = nullptr;
    const int units = LoadStringW(os::own_module(), id, reinterpret_cast<LPWSTR>(&text), 0);
    if (units <= 0) return {};
    return os::narrow({reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(units)});
}

}  // namespace db
