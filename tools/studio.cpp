#include "tools/studio.h"

#include <filesystem>

#ifndef _WIN32
#include <dlfcn.h>
#endif

#include "os/system.h"
#include "tools/arguments.h"
#include "tools/words.h"

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
    const fs::path beside = from_system_path(os::folder_of(os::module_path()));
    for (const fs::path& candidate : {beside / kLibraryName, beside.parent_path() / "lib" / kLibraryName}) {
        if (fs::exists(candidate)) return candidate;
    }
    throw CommandError("the library " + std::string(kLibraryName) + " does not lie beside this program");
}

}  // namespace

struct Studio::Module {
    explicit Module(const std::string& path) {
#ifdef _WIN32
        handle = LoadLibraryExA(to_system_path(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
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
        return reinterpret_cast<LPFNGETCLASSOBJECT>(
            reinterpret_cast<void*>(GetProcAddress(handle, "DllGetClassObject")));
#else
        return reinterpret_cast<LPFNGETCLASSOBJECT>(dlsym(handle, "DllGetClassObject"));
#endif
    }
    // An instance of the class from its factory.
    template <class Gate>
    Gate* make(const CLSID& clsid, const IID& iid) const {
        const LPFNGETCLASSOBJECT get = get_class_object();
        void* object = nullptr;
        if (get == nullptr || FAILED(get(clsid, IID_IClassFactory, &object))) {
            throw CommandError("the library gives no class factory");
        }
        auto* const factory = static_cast<IClassFactory*>(object);
        const HRESULT made = factory->CreateInstance(nullptr, iid, &object);
        factory->Release();
        if (FAILED(made)) throw CommandError("the library makes no gate");
        return static_cast<Gate*>(object);
    }
#ifdef _WIN32
    HMODULE handle;
#else
    void* handle;
#endif
};

namespace {

// A gate opens its databases; what the engine has to say about a failure is the error's text.
template <class Gate>
void open_databases(Gate& gate, const std::string& folder) {
    HRESULT result = E_FAIL;
    try {
        result = gate.OpenDB();
    } catch (CDaoException* exception) {
        const std::string text = exception->m_pErrorInfo->m_strDescription.GetString();
        exception->Delete();
        throw CommandError(text);
    }
    if (FAILED(result)) throw CommandError("the databases in " + folder + " cannot be opened");
}

}  // namespace

Studio::Studio(const std::string& folder, Purpose purpose) : folder_(folder), purpose_(purpose) {}

Studio::~Studio() {
    if (gate_ != nullptr) close();
    if (gear_ != nullptr) gear_->Release();
    if (gate_ != nullptr) gate_->Release();
    module_.reset();
    std::error_code ignored;
    if (remove_library_) fs::remove(library_file(), ignored);
}

void Studio::load() {
    if (module_ != nullptr) return;
    std::error_code error;
    if (!fs::is_directory(folder_, error)) throw CommandError("there is no folder " + folder_);
    folder_ = fs::absolute(folder_).lexically_normal().string();
    const std::string library = library_file();
    if (!fs::exists(library)) {
        fs::copy_file(own_library(), library, error);
        if (error) throw CommandError("cannot copy the library to " + library + ": " + error.message());
        remove_library_ = purpose_ == Purpose::kUse;
    }
    module_ = std::make_unique<Module>(library);
}

IDBgate1& Studio::gate() {
    load();
    if (gate_ == nullptr) gate_ = module_->make<IDBgate1>(CLSID_DBgate1, IID_IDBgate1);
    return *gate_;
}

bool Studio::is_there() { return SUCCEEDED(gate().IsDbExist()); }

void Studio::require_studio() {
    if (purpose_ == Purpose::kUse && !is_there()) throw CommandError("there is no studio in " + folder_);
}

IDBgate1& Studio::open() {
    if (!is_open_) {
        require_studio();
        open_databases(gate(), folder_);
        is_open_ = true;
    }
    return *gate_;
}

IDBGate3& Studio::open_gear() {
    if (!is_gear_open_) {
        // The databases are the process's own: the first gate opens them, this one attaches.
        open();
        if (gear_ == nullptr) gear_ = module_->make<IDBGate3>(CLSID_DBgate3, IID_IDBgate3);
        open_databases(*gear_, folder_);
        is_gear_open_ = true;
    }
    return *gear_;
}

void Studio::close() {
    gate().CloseDB();
    is_open_ = is_gear_open_ = false;
}

std::string Studio::main_file() const { return os::join_path(folder_, "sldb.mdb"); }
std::string Studio::invoice_file() const { return os::join_path(folder_, "kvinvdb.mdb"); }
std::string Studio::library_file() const { return os::join_path(folder_, kLibraryName); }

}  // namespace tools
