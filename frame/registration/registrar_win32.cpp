// Runs registration scripts against the registry. Before a script, and before the platform registers the type library,
// everything that may change is saved; that is what taking back restores.
#include "frame/registration/registrar.h"

#include <kvdb/gates.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "frame/com_ptr.h"
#include "frame/registration/registration_script.h"
#include "frame/registration/registry_win32.h"
#include "frame/type_library_win32.h"
#include "frame/wide_text.h"
#include "os/module_win32.h"
#include "os/system.h"

namespace frame {

namespace {

constexpr wchar_t kScriptType[] = L"REGISTRY";
constexpr char kModule[] = "%MODULE%";
constexpr WORD kMajorVersion = 1;
constexpr WORD kMinorVersion = 0;
constexpr LCID kAnyLanguage = 0;
// Where the type library names its file for programs of this kind, and for those of the other.
#ifdef _WIN64
constexpr wchar_t kSystemKey[] = L"\\1.0\\0\\win64";
constexpr wchar_t kOtherSystemKey[] = L"\\1.0\\0\\win32";
constexpr SYSKIND kSystem = SYS_WIN64;
#else
constexpr wchar_t kSystemKey[] = L"\\1.0\\0\\win32";
constexpr wchar_t kOtherSystemKey[] = L"\\1.0\\0\\win64";
constexpr SYSKIND kSystem = SYS_WIN32;
#endif

std::wstring wide(std::string_view narrow) {
    const std::u16string text = os::widen(narrow);
    return std::wstring(text.begin(), text.end());
}

// The text with every "%MODULE%" replaced by the path of the component's own file.
std::wstring with_module(std::string_view text) {
    std::wstring result;
    for (;;) {
        const std::size_t found = text.find(kModule);
        result += wide(text.substr(0, found));
        if (found == std::string_view::npos) return result;
        result += own_file();
        text.remove_prefix(found + std::string_view(kModule).size());
    }
}

std::wstring braced(REFGUID id) {
    std::array<wchar_t, 40> text{};
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::wstring folder_of(const std::wstring& path) { return path.substr(0, path.find_last_of(L"\\/")); }

// The text of resource `script`.
std::string script_text(std::uint16_t script) {
    const HMODULE module = os::own_module();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(script), kScriptType);
    if (found == nullptr) throw RegistryError{static_cast<LONG>(GetLastError())};
    const HGLOBAL loaded = LoadResource(module, found);
    const void* const text = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (text == nullptr) throw RegistryError{static_cast<LONG>(GetLastError())};
    return std::string(static_cast<const char*>(text), SizeofResource(module, found));
}

void set(Registry& registry, const std::wstring& path, const std::wstring& name, const RegistrationValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        registry.set(path, name, with_module(*text));
    } else {
        registry.set(path, name, std::get<std::uint32_t>(value));
    }
}

void install(Registry& registry, const std::wstring& path, const RegistrationKey& key) {
    if (key.is_replaced) registry.remove_tree(path);
    registry.create(path);
    if (key.value) set(registry, path, L"", *key.value);
    for (const auto& [name, value] : key.values) set(registry, path, wide(name), value);
    for (const RegistrationKey& below : key.keys) install(registry, path + L"\\" + wide(below.name), below);
}

// The user's own classes are often nobody's but ours: their lists go with the last entry. The machine's stay.
class EmptiedKey {
public:
    EmptiedKey(Registry& registry, std::wstring path, RegistrationScope scope)
        : registry_(registry),
          path_(std::move(path)),
          is_watched_(scope == RegistrationScope::kUser && registry.exists(path_) && !registry.is_empty(path_)) {}

    // Removes the key where it has become empty meanwhile.
    void remove() {
        if (is_watched_ && registry_.is_empty(path_)) registry_.remove_if_leaf(path_);
    }

private:
    Registry& registry_;
    std::wstring path_;
    bool is_watched_;
};

// Whether the component of the other kind of programs (64 or 32 bits) is registered. Each kind has classes of its own;
// their names, and the key of the type library, are shared. Where both kinds see one class, it is ours.
bool is_needed_by_other_kind(const Registry& registry, const std::vector<RegistrationKey>& keys) {
    for (const RegistrationKey& list : keys) {
        if (!list.is_kept) continue;
        for (const RegistrationKey& entry : list.keys) {
            const std::wstring server = wide(list.name) + L"\\" + wide(entry.name) + L"\\InprocServer32";
            const std::optional<std::wstring> other = registry.other_view().text(server);
            if (other && other != registry.text(server)) return true;
        }
    }
    return false;
}

void uninstall(Registry& registry, const std::wstring& path, const RegistrationKey& key) {
    if (key.is_replaced) {
        registry.remove_tree(path);
        return;
    }
    for (const RegistrationKey& below : key.keys) uninstall(registry, path + L"\\" + wide(below.name), below);
    if (key.value) registry.remove_value(path, L"");
    for (const auto& named : key.values) registry.remove_value(path, wide(named.name));
    // What others have put below it keeps the key.
    if (!key.is_kept) registry.remove_if_leaf(path);
}

// What ours says of the type library, in the classes of the current user: the platform's function for that is
// missing in older versions of it.
void install_user_type_library(Registry& registry, const std::wstring& library, const std::wstring& text) {
    const std::wstring version = library + L"\\1.0";
    for (const std::wstring& key : {version, library + kSystemKey, version + L"\\FLAGS", version + L"\\HELPDIR"}) {
        registry.create(key);
    }
    registry.set(version, L"", text);
    registry.set(library + kSystemKey, L"", own_file());
    registry.set(version + L"\\FLAGS", L"", std::wstring(L"0"));
    registry.set(version + L"\\HELPDIR", L"", folder_of(own_file()));
}

struct InterfaceName {
    const IID& iid;
    const wchar_t* name;
};
constexpr InterfaceName kInterfaces[] = {
    {IID_IDBgate1, L"IDBgate1"}, {IID_IDBgate2, L"IDBgate2"}, {IID_IDBGate3, L"IDBGate3"}};

std::wstring interface_path(const InterfaceName& entry) { return L"Interface\\" + braced(entry.iid); }

void install_user_interface(Registry& registry, const InterfaceName& entry) {
    const std::wstring path = interface_path(entry);
    for (const std::wstring& key : {path, path + L"\\ProxyStubClsid32", path + L"\\TypeLib"}) registry.create(key);
    registry.set(path, L"", std::wstring(entry.name));
    // The platform's own marshaller, which works from type libraries.
    registry.set(path + L"\\ProxyStubClsid32", L"", std::wstring(L"{00020424-0000-0000-C000-000000000046}"));
    registry.set(path + L"\\TypeLib", L"", braced(LIBID_KVDBLib));
    registry.set(path + L"\\TypeLib", L"Version", std::wstring(L"1.0"));
}

HRESULT result_of(const RegistryError& error) { return HRESULT_FROM_WIN32(static_cast<DWORD>(error.code)); }

}  // namespace

class Registration::Work {
public:
    Work(RegistrationScope scope, bool install)
        : registry_(scope == RegistrationScope::kUser ? Registry(HKEY_CURRENT_USER, L"Software\\Classes")
                                                      : Registry(HKEY_CLASSES_ROOT, L"")),
          scope_(scope),
          install_(install) {}

    ~Work() {
        while (!saved_.empty()) {
            try {
                registry_.restore(saved_.back().path, saved_.back().key);
            } catch (const RegistryError&) {
                // The failure that led here is the one to report.
            }
            saved_.pop_back();
        }
    }

    void run_script(std::string_view text) {
        const std::vector<RegistrationKey> keys = parse_registration_script(text);
        for (const RegistrationKey& key : keys) save(wide(key.name), key);
        const bool keep_names = !install_ && is_needed_by_other_kind(registry_, keys);
        for (const RegistrationKey& key : keys) {
            if (keep_names && !key.is_kept) continue;
            EmptiedKey emptied(registry_, wide(key.name), scope_);
            (install_ ? frame::install : uninstall)(registry_, wide(key.name), key);
            if (!install_) emptied.remove();
        }
    }

    HRESULT run_type_library() {
        const std::wstring path = L"TypeLib\\" + braced(LIBID_KVDBLib);
        save(path);
        for (const InterfaceName& entry : kInterfaces) save(interface_path(entry));
        if (scope_ == RegistrationScope::kUser) return run_user_type_library(path);
        if (!install_) {
            if (!registry_.exists(path + kSystemKey)) return S_OK;
            if (registry_.exists(path + kOtherSystemKey)) {
                // The platform would remove the interfaces of both kinds.
                registry_.remove_tree(path + kSystemKey);
                return S_OK;
            }
            return UnRegisterTypeLib(LIBID_KVDBLib, kMajorVersion, kMinorVersion, kAnyLanguage, kSystem);
        }
        ComPtr<ITypeLib> library;
        const HRESULT loaded = load_type_library(library.put_typed());
        if (FAILED(loaded)) return loaded;
        std::wstring file = own_file();
        std::wstring folder = folder_of(file);
        return RegisterTypeLib(library.get(), file.data(), folder.data());
    }

    void keep() { saved_.clear(); }

private:
    struct Saved {
        std::wstring path;
        std::optional<SavedKey> key;
    };

    void save(const std::wstring& path) { saved_.push_back({path, registry_.save(path)}); }

    // Everything that belongs to the key; of a kept key what is below it, and whether it was there.
    void save(const std::wstring& path, const RegistrationKey& key) {
        if (!key.is_kept || !registry_.exists(path)) {
            save(path);
            return;
        }
        for (const RegistrationKey& below : key.keys) save(path + L"\\" + wide(below.name), below);
    }

    HRESULT run_user_type_library(const std::wstring& path) {
        if (!install_) {
            EmptiedKey libraries(registry_, L"TypeLib", scope_);
            EmptiedKey interfaces(registry_, L"Interface", scope_);
            registry_.remove_tree(registry_.exists(path + kOtherSystemKey) ? path + kSystemKey : path);
            for (const InterfaceName& entry : kInterfaces) registry_.remove_tree(interface_path(entry));
            libraries.remove();
            interfaces.remove();
            return S_OK;
        }
        ComPtr<ITypeLib> library;
        const HRESULT loaded = load_type_library(library.put_typed());
        if (FAILED(loaded)) return loaded;
        OwnedBstr text;
        const HRESULT described = library->GetDocumentation(MEMBERID_NIL, nullptr, text.put(), nullptr, nullptr);
        if (FAILED(described)) return described;
        const std::wstring description(text.get(), SysStringLen(text.get()));
        install_user_type_library(registry_, path, description);
        for (const InterfaceName& entry : kInterfaces) install_user_interface(registry_, entry);
        return S_OK;
    }

    Registry registry_;
    RegistrationScope scope_;
    bool install_;
    std::vector<Saved> saved_;
};

std::wstring own_file() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(os::own_module(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);  // the path was cut off
    }
}

Registration::Registration(RegistrationScope scope, bool install) : work_(std::make_unique<Work>(scope, install)) {}

Registration::~Registration() = default;

HRESULT Registration::run_script(std::uint16_t script) {
    try {
        work_->run_script(script_text(script));
        return S_OK;
    } catch (const RegistryError& error) {
        return result_of(error);
    } catch (const ScriptError&) {
        return DISP_E_EXCEPTION;  // as the platform's own registrar answers
    }
}

HRESULT Registration::run_type_library() {
    try {
        return work_->run_type_library();
    } catch (const RegistryError& error) {
        return result_of(error);
    }
}

void Registration::keep() { work_->keep(); }

}  // namespace frame
