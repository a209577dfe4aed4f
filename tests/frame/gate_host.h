// A host of the component, like an application on this system: it copies the library to a folder,
// loads the copy and asks its entry point for class factories. A copy in an empty folder is a fresh
// studio with files of its own.
//
//     GateHost host;                            // an empty folder and a component in it
//     auto gate = host.create<IDBgate1>();      // through the class factory
//     ASSERT_EQ(gate->OpenDB(), S_OK);          // makes sldb.mdb and kvinvdb.mdb in host.folder()
//     SongInfo song;
//     gate->AddSong(address_of(song));
//
// Gates must be released before their component is unloaded.
//
// KVDB_TEST_ACCESS in the environment selects how `create` obtains a gate, so that one suite tests every way:
//   nothing   through the class factory of the loaded library
//   com       on Windows: registered, and created by CoCreateInstance
//   invoke    as com where available, and every method is then called through Invoke
#pragma once

#include <kvdb/kvdb.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#ifdef _WIN32
#include <optional>
#else
#include <dlfcn.h>
#endif

#include "frame/com_ptr.h"
#include "os/system.h"
#include "tests/frame/invoke_gate.h"
#include "tests/support/temp_folder.h"
#ifdef _WIN32
#include "tests/frame/activation_win32.h"
#endif

namespace testing_support {

// Class and interface identifier of a gate.
template <class Interface>
struct GateIds;
template <>
struct GateIds<IDBgate1> {
    static constexpr const CLSID& clsid = CLSID_DBgate1;
    static constexpr const IID& iid = IID_IDBgate1;
};
template <>
struct GateIds<IDBgate2> {
    static constexpr const CLSID& clsid = CLSID_DBgate2;
    static constexpr const IID& iid = IID_IDBgate2;
};
template <>
struct GateIds<IDBGate3> {
    static constexpr const CLSID& clsid = CLSID_DBGate3;
    static constexpr const IID& iid = IID_IDBGate3;
};

// A record in the form that the gates take.
template <class Record>
LONG_PTR address_of(Record& record) {
    return reinterpret_cast<LONG_PTR>(&record);
}

enum class Access { kFactory, kCom, kInvoke };

inline Access test_access() {
    const char* const access = std::getenv("KVDB_TEST_ACCESS");
    const std::string name = access != nullptr ? access : "";
    if (name == "com") return Access::kCom;
    if (name == "invoke") return Access::kInvoke;
    return Access::kFactory;
}

#ifdef _WIN32
// Called for a component right after it was loaded.
inline void (*component_loaded)(HMODULE module) = nullptr;
#endif

// One loaded copy of the component.
class Component {
public:
    // Copies the library to `folder`, unless it is already there, and loads the copy.
    explicit Component(const std::string& folder) : folder_(folder) {
        const std::filesystem::path source = KVDB_LIBRARY;
        path_ = os::join_path(folder, source.filename().string());
        if (!std::filesystem::exists(path_)) std::filesystem::copy_file(source, path_);
#ifdef _WIN32
        const std::string manifest = os::join_path(folder, "kvdb.gates.manifest");
        if (test_access() != Access::kFactory && !std::filesystem::exists(manifest)) {
            std::filesystem::copy_file(source.parent_path() / "kvdb.gates.manifest", manifest);
        }
        module_ = LoadLibraryA(path_.c_str());
        if (module_ == nullptr) throw std::runtime_error("cannot load " + path_);
        if (component_loaded != nullptr) component_loaded(module_);
#else
        module_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module_ == nullptr) throw std::runtime_error(dlerror());
#endif
        get_class_object_ = entry<LPFNGETCLASSOBJECT>("DllGetClassObject");
        can_unload_now_ = entry<LPFNCANUNLOADNOW>("DllCanUnloadNow");
        register_server_ = entry<LPFNCANUNLOADNOW>("DllRegisterServer");
        unregister_server_ = entry<LPFNCANUNLOADNOW>("DllUnregisterServer");
    }
    ~Component() {
#ifdef _WIN32
        // The platform holds the library until it checks whether it is still in use.
        if (test_access() != Access::kFactory) CoFreeUnusedLibrariesEx(0, 0);
        FreeLibrary(module_);
#else
        dlclose(module_);
#endif
    }
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    const std::string& path() const { return path_; }

    HRESULT get_class_object(REFCLSID clsid, REFIID riid, void** object) const {
        return get_class_object_(clsid, riid, object);
    }
    HRESULT can_unload_now() const { return can_unload_now_(); }
    HRESULT register_server() const { return register_server_(); }
    HRESULT unregister_server() const { return unregister_server_(); }

    ComPtr<IClassFactory> factory(REFCLSID clsid) const {
        ComPtr<IClassFactory> factory;
        if (FAILED(get_class_object(clsid, IID_IClassFactory, factory.put()))) throw std::runtime_error("no factory");
        return factory;
    }

    // A new gate.
    template <class Interface>
    ComPtr<Interface> create() const {
#ifdef _WIN32
        const ComPtr<Interface> gate =
            test_access() == Access::kFactory ? create_by_factory<Interface>() : create_by_com<Interface>();
#else
        const ComPtr<Interface> gate = create_by_factory<Interface>();
#endif
        return test_access() == Access::kInvoke ? through_invoke<Interface>(gate) : gate;
    }

private:
    template <class Interface>
    ComPtr<Interface> create_by_factory() const {
        ComPtr<Interface> gate;
        const auto maker = factory(GateIds<Interface>::clsid);
        if (FAILED(maker->CreateInstance(nullptr, GateIds<Interface>::iid, gate.put()))) {
            throw std::runtime_error("no gate");
        }
        return gate;
    }

#ifdef _WIN32
    // The class is looked up in the registry, which has one copy of the component at a time.
    template <class Interface>
    ComPtr<Interface> create_by_com() const {
        static const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        if (FAILED(apartment)) throw std::runtime_error("no apartment");
        if (FAILED(register_server())) throw std::runtime_error("not registered");
        // The registration of the second gate deliberately names another class identifier.
        std::optional<ManifestContext> context;
        if (GateIds<Interface>::clsid == CLSID_DBgate2) context.emplace(os::join_path(folder_, "kvdb.gates.manifest"));
        ComPtr<Interface> gate;
        if (FAILED(CoCreateInstance(GateIds<Interface>::clsid, nullptr, CLSCTX_INPROC_SERVER, GateIds<Interface>::iid,
                                    gate.put()))) {
            throw std::runtime_error("no gate");
        }
        return gate;
    }
#endif

    template <class Function>
    Function entry(const char* name) const {
#ifdef _WIN32
        const auto found = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
#else
        const auto found = reinterpret_cast<Function>(dlsym(module_, name));
#endif
        if (found == nullptr) throw std::runtime_error(std::string("no entry point ") + name);
        return found;
    }

    std::string folder_;
    std::string path_;
#ifdef _WIN32
    HMODULE module_ = nullptr;
#else
    void* module_ = nullptr;
#endif
    LPFNGETCLASSOBJECT get_class_object_ = nullptr;
    LPFNCANUNLOADNOW can_unload_now_ = nullptr;
    LPFNCANUNLOADNOW register_server_ = nullptr;
    LPFNCANUNLOADNOW unregister_server_ = nullptr;
};

// A component in an empty folder of its own.
class GateHost {
public:
    GateHost() : component_(folder_.path()) {}

    const std::string& folder() const { return folder_.path(); }
    std::string file(const std::string& name) const { return folder_.file(name); }
    const Component& component() const { return component_; }
    template <class Interface>
    ComPtr<Interface> create() const {
        return component_.create<Interface>();
    }

private:
    TempFolder folder_;
    Component component_;
};

}  // namespace testing_support
