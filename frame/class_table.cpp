// The table itself; order and script numbers are part of the component's contract.
#include "frame/class_table.h"

#include <kvdb/gates.h>

#include "frame/class_factory.h"
#include "frame/com_object.h"
#include "frame/gate1.h"
#include "frame/gear_gates.h"
#include "frame/registration/registrar.h"

namespace frame {

namespace {

HRESULT update_registry(const ClassEntry& entry, Registration& registration) {
    return registration.run_script(entry.script);
}

HRESULT create_factory(const ClassEntry& entry, REFIID riid, void** factory) {
    return create_object<ClassFactory>(riid, factory, entry);
}

template <class Gate>
constexpr ClassEntry entry_of(REFCLSID clsid, std::uint16_t script) {
    return {clsid, script, update_registry, create_factory, create_object<Gate>, Gate::description};
}

constexpr ClassEntry kClasses[] = {
    entry_of<DBgate1>(CLSID_DBgate1, 103),
    entry_of<DBgate2>(CLSID_DBgate2, 104),
    entry_of<DBGate3>(CLSID_DBGate3, 105),
};

}  // namespace

std::span<const ClassEntry> class_table() { return kClasses; }

const ClassEntry* find_class(REFCLSID clsid) {
    for (const ClassEntry& entry : kClasses) {
        if (entry.clsid == clsid) return &entry;
    }
    return nullptr;
}

}  // namespace frame
