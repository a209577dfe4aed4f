#include "tools/studio.h"

#include <filesystem>

#ifndef _WIN32
#include <dlfcn.h>
#endif

#include "jet/types.h"
#include "os/system.h"
#include "tools/arguments.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr char kLibraryName[] = "kvdb.dll";
#else
constexpr char kLibraryName[] = "libkvdb.so";
#endif

// Beside the tool, as it is built; or in the lib folder of an installed tree.
fs::path own_library() {
    const fs::path beside = os::folder_of(os::module_path());
    for (const fs::path& candidate : {beside / kLibraryName, beside.parent_path() / "lib" / kLibraryName}) {
        if (fs::exists(candidate)) return candidate;
    }
    throw CommandError("the library " + std::string(kLibraryName) + " does not lie beside this program");
}

}  // namespace

struct Studio::Module {
    explicit Module(const std::string& path) {
#ifdef _WIN32
        handle = LoadLibraryA(path.c_str());
        if (handle == nullptr) throw CommandError("cannot load " + path);
#else
        handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) throw CommandError(dlerror());
#endif
    }
    ~Module() {
#ifdef _WIN32
        FreeLibrary(handle);
#else
        dlclose(handle);
#endif
    }
    LPFNGETCLASSOBJECT get_class_object() const {
#ifdef _WIN32
        return reinterpret_cast<LPFNGETCLASSOBJECT>(reinterpret_cast<void*>(GetProcAddress(handle, "DllGetClassObject")));
#else
        return reinterpret_cast<LPFNGETCLASSOBJECT>(dlsym(handle, "DllGetClassObject"));
#endif
    }
#ifdef _WIN32
    HMODULE handle;
#else
    void* handle;
#endif
};

Studio::Studio(const std::string& folder, bool keep_library) : folder_(folder) {
    std::error_code error;
    if (!fs::is_directory(folder, error)) throw CommandError("there is no folder " + folder);
    folder_ = fs::absolute(folder).lexically_normal().string();
    const std::string library = library_file();
    if (!fs::exists(library)) {
        fs::copy_file(own_library(), library, error);
        if (error) throw CommandError("cannot copy the library to " + library + ": " + error.message());
        remove_library_ = !keep_library;
    }
    module_ = std::make_unique<Module>(library);
}

Studio::~Studio() {
    if (gate_ != nullptr) {
        gate_->CloseDB();
        gate_->Release();
    }
    module_.reset();
    std::error_code ignored;
    if (remove_library_) fs::remove(library_file(), ignored);
}

IDBgate1& Studio::gate() {
    if (gate_ != nullptr) return *gate_;
    const LPFNGETCLASSOBJECT get_class_object = module_->get_class_object();
    void* object = nullptr;
    if (get_class_object == nullptr || FAILED(get_class_object(CLSID_DBgate1, IID_IClassFactory, &object))) {
        throw CommandError(library_file() + " gives no class factory");
    }
    auto* const factory = static_cast<IClassFactory*>(object);
    const HRESULT made = factory->CreateInstance(nullptr, IID_IDBgate1, &object);
    factory->Release();
    if (FAILED(made)) throw CommandError(library_file() + " makes no gate");
    gate_ = static_cast<IDBgate1*>(object);
    return *gate_;
}

IDBgate1& Studio::open() {
    IDBgate1& gate_1 = gate();
    HRESULT result = E_FAIL;
    try {
        result = gate_1.OpenDB();
    } catch (CDaoException* exception) {
        const std::string text = exception->m_pErrorInfo->m_strDescription.GetString();
        exception->Delete();
        throw CommandError(text);
    }
    if (FAILED(result)) throw CommandError("the databases in " + folder_ + " cannot be opened");
    return gate_1;
}

void Studio::close() { gate().CloseDB(); }

std::string Studio::main_file() const { return os::join_path(folder_, "sldb.mdb"); }
std::string Studio::invoice_file() const { return os::join_path(folder_, "kvinvdb.mdb"); }
std::string Studio::library_file() const { return os::join_path(folder_, kLibraryName); }

std::string to_utf8(const CString& text) { return jet::to_utf8(os::widen(text.GetString())); }
CString from_utf8(const std::string& text) { return os::narrow(jet::from_utf8(text)).c_str(); }

}  // namespace tools
