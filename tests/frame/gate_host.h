// A host of the component as an application on this system is one: it copies the library into a folder,
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
#pragma once

#include <kvdb/kvdb.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#ifndef _WIN32
#include <dlfcn.h>
#endif

#include "os/system.h"
#include "tests/support/temp_folder.h"

namespace testing_support {

// An interface pointer that holds one reference.
template <class Interface>
class ComPtr {
public:
    ComPtr() = default;
    // Takes over the caller's reference.
    explicit ComPtr(Interface* owned) : pointer_(owned) {}
    ComPtr(const ComPtr& other) : pointer_(other.pointer_) {
        if (pointer_ != nullptr) pointer_->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() { reset(); }

    void reset() {
        if (Interface* const pointer = std::exchange(pointer_, nullptr); pointer != nullptr) pointer->Release();
    }
    Interface* get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    Interface& operator*() const { return *pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }
    // Where a call may store a new reference; the old one is released.
    void** put() {
        reset();
        return reinterpret_cast<void**>(&pointer_);
    }

private:
    Interface* pointer_ = nullptr;
};

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

// A record as the gates take it.
template <class Record>
LONG_PTR address_of(Record& record) {
    return reinterpret_cast<LONG_PTR>(&record);
}

// One loaded copy of the component.
class Component {
public:
    // Copies the library into `folder`, unless it is there already, and loads the copy.
    explicit Component(const std::string& folder) {
        const std::filesystem::path source = KVDB_LIBRARY;
        path_ = os::join_path(folder, source.filename().string());
        if (!std::filesystem::exists(path_)) std::filesystem::copy_file(source, path_);
#ifdef _WIN32
        module_ = LoadLibraryA(path_.c_str());
        if (module_ == nullptr) throw std::runtime_error("cannot load " + path_);
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
        ComPtr<Interface> gate;
        const auto maker = factory(GateIds<Interface>::clsid);
        if (FAILED(maker->CreateInstance(nullptr, GateIds<Interface>::iid, gate.put()))) {
            throw std::runtime_error("no gate");
        }
        return gate;
    }

private:
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
