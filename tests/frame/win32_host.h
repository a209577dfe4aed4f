// Shared by tests of the Windows component: copies of its files, other processes, the registry as text.
#pragma once

#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "frame/com_ptr.h"
#include "os/system.h"
#include "tests/frame/activation_win32.h"
#include "tests/support/temp_folder.h"

namespace testing_support {

using frame::ComPtr;

// What differs between programs of 32 and 64 bits.
#ifdef _WIN64
constexpr const char* kUnwinder = "libgcc_s_seh-1.dll";
constexpr const char* kSystemKey = "\\0\\win64";  // where a type library names its file
constexpr SYSKIND kSystem = SYS_WIN64;
#else
constexpr const char* kUnwinder = "libgcc_s_dw2-1.dll";
constexpr const char* kSystemKey = "\\0\\win32";
constexpr SYSKIND kSystem = SYS_WIN32;
#endif

inline std::string bytes_of(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Copies the library, the compiler's runtime and the manifest to `folder`, as an installation does.
inline void install_files(const std::filesystem::path& folder) {
    const std::filesystem::path library = KVDB_LIBRARY;
    for (const char* name : {"kvdb.dll", "kvdb.gates.manifest", kUnwinder, "libwinpthread-1.dll"}) {
        std::filesystem::copy_file(library.parent_path() / name, folder / name);
    }
}

inline std::wstring wide(const std::string& text) {
    const std::u16string units = os::widen(text);
    return {units.begin(), units.end()};
}
inline std::string narrow(const std::wstring& text) { return os::narrow(std::u16string(text.begin(), text.end())); }
// Takes ownership of the text.
inline std::string taken(BSTR text) {
    const std::string result = text != nullptr ? narrow(std::wstring(text, SysStringLen(text))) : "";
    SysFreeString(text);
    return result;
}

inline std::string text_of(REFGUID id) {
    wchar_t text[40] = L"";
    StringFromGUID2(id, text, 40);
    return narrow(text);
}

// ---- The registry

// Every key below `path` with its values, each "path" or "path\\@name" and the value's text.
using RegistryText = std::map<std::string, std::string>;

inline void read_registry(HKEY root, const std::string& path, RegistryText& text) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    text[path] = "";
    char name[300];
    for (DWORD i = 0;; ++i) {
        DWORD size = sizeof name;
        DWORD type = 0;
        BYTE data[1000];
        DWORD bytes = sizeof data;
        if (RegEnumValueA(key, i, name, &size, nullptr, &type, data, &bytes) != ERROR_SUCCESS) break;
        std::string value(reinterpret_cast<const char*>(data), bytes);
        if (type == REG_SZ) value = value.c_str();
        if (type == REG_DWORD) value = std::to_string(*reinterpret_cast<const DWORD*>(data));
        text[path + "\\@" + name] = value;
    }
    std::vector<std::string> below;
    for (DWORD i = 0;; ++i) {
        DWORD size = sizeof name;
        if (RegEnumKeyExA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        below.emplace_back(name);
    }
    RegCloseKey(key);
    for (const std::string& child : below) read_registry(root, path + "\\" + child, text);
}

inline RegistryText registry_text(HKEY root, const std::string& path) {
    RegistryText text;
    read_registry(root, path, text);
    return text;
}

inline std::string registry_value(HKEY root, const std::string& path, const std::string& name = "") {
    char text[1000] = "";
    DWORD size = sizeof text;
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return "(no key)";
    const LONG result = RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<LPBYTE>(text), &size);
    RegCloseKey(key);
    return result == ERROR_SUCCESS ? text : "(no value)";
}

inline bool has_key(HKEY root, const std::string& path) { return registry_value(root, path) != "(no key)"; }

// ---- Other processes

struct Ended {
    DWORD code = 0xFFFFFFFF;
    std::string out;  // what it wrote to both of its outputs
};

// Runs a command and waits for its exit.
inline Ended run_process(const std::string& command, const std::string& folder = "") {
    const TempFolder scratch;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE out = CreateFileA(scratch.file("out").c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   &inherited, CREATE_ALWAYS, 0, nullptr);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = out;
    PROCESS_INFORMATION process{};
    std::string line = command;
    Ended ended;
    if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                       folder.empty() ? nullptr : folder.c_str(), &startup, &process)) {
        constexpr DWORD kPatience = 60000;
        if (WaitForSingleObject(process.hProcess, kPatience) != WAIT_OBJECT_0) {
            TerminateProcess(process.hProcess, 99);
            WaitForSingleObject(process.hProcess, kPatience);
        }
        GetExitCodeProcess(process.hProcess, &ended.code);
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
    }
    CloseHandle(out);
    ended.out = bytes_of(scratch.file("out"));
    ended.out.erase(std::remove(ended.out.begin(), ended.out.end(), '\r'), ended.out.end());
    return ended;
}

}  // namespace testing_support
