// The registry as registration uses it: keys below one root, written in a way that can be taken back. Every failure is
// thrown as the system's code, a RegistryError.
#pragma once

#include <kvdb/com.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace frame {

struct RegistryError {
    LONG code;  // as the system's functions return it
};

// A key and everything below it, as it was.
struct SavedKey {
    struct Value {
        std::wstring name;  // empty: the default value
        DWORD type;
        std::vector<std::uint8_t> data;
    };
    std::wstring name;
    std::vector<Value> values;
    std::vector<SavedKey> keys;
};

// Paths are relative to the root.
class Registry {
public:
    // `root` is a predefined key; `prefix` the path below it, or "".
    Registry(HKEY root, std::wstring prefix) : root_(root), prefix_(std::move(prefix)) {}

    // The same keys as programs of the other kind (64 or 32 bits) see them. They have classes and interfaces of their
    // own. On 32-bit Windows, and for all other keys, both views are one. For reading only.
    Registry other_view() const;

    void create(const std::wstring& path);
    // The key must exist; an empty name is the default value.
    void set(const std::wstring& path, const std::wstring& name, const std::wstring& text);
    void set(const std::wstring& path, const std::wstring& name, std::uint32_t number);
    // Nothing happens where there is no such value or key.
    void remove_value(const std::wstring& path, const std::wstring& name);
    void remove_tree(const std::wstring& path);
    // Removes the key unless another is below it.
    void remove_if_leaf(const std::wstring& path);

    bool exists(const std::wstring& path) const;
    // Whether the key is there, with neither keys nor values.
    bool is_empty(const std::wstring& path) const;
    // The default value; nothing where the key is missing or has none.
    std::optional<std::wstring> text(const std::wstring& path) const;
    std::optional<SavedKey> save(const std::wstring& path) const;
    // Makes the key what it was when it was saved.
    void restore(const std::wstring& path, const std::optional<SavedKey>& saved);

private:
    std::wstring full(const std::wstring& path) const { return prefix_.empty() ? path : prefix_ + L"\\" + path; }
    void set(const std::wstring& path, const std::wstring& name, DWORD type, const void* data, std::size_t bytes);
    void write(const std::wstring& path, const SavedKey& saved);

    HKEY root_;
    std::wstring prefix_;
    REGSAM view_ = 0;
};

}  // namespace frame
