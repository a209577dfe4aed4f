// Owns the road to the string table of the library that this code is part of.
#include "db/string_resources.h"

#include "os/module_win32.h"
#include "os/system.h"

namespace db {

std::string string_resource(std::uint16_t id) {
    // Without a buffer the answer is a pointer to the resource itself, and how many units it has.
    const wchar_t* text = nullptr;
    const int units = LoadStringW(os::own_module(), id, reinterpret_cast<LPWSTR>(&text), 0);
    if (units <= 0) return {};
    return os::narrow({reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(units)});
}

}  // namespace db
