// The creatable classes, in the order in which they are registered and looked up.
#pragma once

#include <kvdb/com.h>

#include <cstdint>
#include <span>

namespace frame {

class Registration;

struct ClassEntry {
    CLSID clsid;
    std::uint16_t script;  // resource number of the registration script
    HRESULT (*update_registry)(const ClassEntry& entry, Registration& registration);
    HRESULT (*create_factory)(const ClassEntry& entry, REFIID riid, void** factory);
    HRESULT (*create_instance)(REFIID riid, void** object);
    const char* (*description)();
};

std::span<const ClassEntry> class_table();

// The entry of `clsid`, or null.
const ClassEntry* find_class(REFCLSID clsid);

}  // namespace frame
