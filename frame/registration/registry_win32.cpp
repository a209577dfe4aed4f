#include "frame/registration/registry_win32.h"

#include <array>
#include <utility>

namespace frame {

namespace {

class Key {
public:
    Key() = default;
    ~Key() {
        if (handle_ != nullptr) RegCloseKey(handle_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY get() const { return handle_; }
    HKEY* put() { return &handle_; }

private:
    HKEY handle_ = nullptr;
};

void check(LONG code) {
    if (code != ERROR_SUCCESS) throw RegistryError{code};
}

// As `check`, for things that may be missing: whether it is there.
bool is_there(LONG code) {
    if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) return false;
    check(code);
    return true;
}

constexpr DWORD kMaxNameUnits = 16384;

std::vector<std::wstring> names_below(HKEY key) {
    std::vector<std::wstring> names;
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> name{};
        DWORD units = static_cast<DWORD>(name.size());
        const LONG code = RegEnumKeyExW(key, i, name.data(), &units, nullptr, nullptr, nullptr, nullptr);
        if (code == ERROR_NO_MORE_ITEMS) return names;
        check(code);
        names.emplace_back(name.data(), units);
    }
}

SavedKey saved_key(HKEY key, std::wstring name) {
    SavedKey saved{std::move(name), {}, {}};
    std::wstring value_name(kMaxNameUnits, L'\0');
    for (DWORD i = 0;; ++i) {
        DWORD units = kMaxNameUnits;
        DWORD type = 0;
        DWORD bytes = 0;
        const LONG code = RegEnumValueW(key, i, value_name.data(), &units, nullptr, &type, nullptr, &bytes);
        if (code == ERROR_NO_MORE_ITEMS) break;
        check(code);
        SavedKey::Value value{value_name.substr(0, units), type, std::vector<std::uint8_t>(bytes)};
        check(RegQueryValueExW(key, value.name.c_str(), nullptr, nullptr, value.data.data(), &bytes));
        saved.values.push_back(std::move(value));
    }
    for (std::wstring& below : names_below(key)) {
        Key child;
        check(RegOpenKeyExW(key, below.c_str(), 0, KEY_READ, child.put()));
        saved.keys.push_back(saved_key(child.get(), std::move(below)));
    }
    return saved;
}

// The platform's own function for this is missing in older versions of it.
void remove_tree_of(HKEY parent, const wchar_t* name) {
    {
        Key key;
        if (!is_there(RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WRITE, key.put()))) return;
        for (const std::wstring& below : names_below(key.get())) remove_tree_of(key.get(), below.c_str());
    }
    is_there(RegDeleteKeyW(parent, name));
}

}  // namespace

Registry Registry::other_view() const {
    Registry other = *this;
    other.view_ = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    return other;
}

void Registry::create(const std::wstring& path) {
    Key key;
    check(RegCreateKeyExW(root_, full(path).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr));
}

void Registry::set(const std::wstring& path, const std::wstring& name, const std::wstring& text) {
    set(path, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void Registry::set(const std::wstring& path, const std::wstring& name, std::uint32_t number) {
    set(path, name, REG_DWORD, &number, sizeof number);
}

void Registry::set(const std::wstring& path, const std::wstring& name, DWORD type, const void* data,
                   std::size_t bytes) {
    Key key;
    check(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_WRITE, key.put()));
    check(RegSetValueExW(key.get(), name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(bytes)));
}

void Registry::remove_value(const std::wstring& path, const std::wstring& name) {
    Key key;
    if (!is_there(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_WRITE, key.put()))) return;
    is_there(RegDeleteValueW(key.get(), name.c_str()));
}

void Registry::remove_tree(const std::wstring& path) { remove_tree_of(root_, full(path).c_str()); }

void Registry::remove_if_leaf(const std::wstring& path) {
    {
        Key key;
        if (!is_there(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_READ, key.put()))) return;
        if (!names_below(key.get()).empty()) return;
    }
    is_there(RegDeleteKeyW(root_, full(path).c_str()));
}

bool Registry::exists(const std::wstring& path) const {
    Key key;
    return is_there(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_READ, key.put()));
}

bool Registry::is_empty(const std::wstring& path) const {
    Key key;
    if (!is_there(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_READ, key.put()))) return false;
    DWORD keys = 0;
    DWORD values = 0;
    check(RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                           nullptr, nullptr));
    return keys == 0 && values == 0;
}

std::optional<std::wstring> Registry::text(const std::wstring& path) const {
    Key key;
    if (!is_there(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_READ | view_, key.put()))) return std::nullopt;
    DWORD bytes = 0;
    if (!is_there(RegQueryValueExW(key.get(), nullptr, nullptr, nullptr, nullptr, &bytes))) return std::nullopt;
    std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    check(RegQueryValueExW(key.get(), nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes));
    text.resize(text.find(L'\0'));
    return text;
}

std::optional<SavedKey> Registry::save(const std::wstring& path) const {
    Key key;
    if (!is_there(RegOpenKeyExW(root_, full(path).c_str(), 0, KEY_READ, key.put()))) return std::nullopt;
    return saved_key(key.get(), path);
}

void Registry::restore(const std::wstring& path, const std::optional<SavedKey>& saved) {
    remove_tree(path);
    if (saved) write(path, *saved);
}

void Registry::write(const std::wstring& path, const SavedKey& saved) {
    create(path);
    for (const SavedKey::Value& value : saved.values) {
        set(path, value.name, value.type, value.data.data(), value.data.size());
    }
    for (const SavedKey& below : saved.keys) write(path + L"\\" + below.name, below);
}

}  // namespace frame
