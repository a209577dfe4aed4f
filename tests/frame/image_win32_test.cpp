// The file kvdb.dll itself: what it exports and imports, and its resources.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>
#include <winver.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "db/string_resources.h"
#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

// The library mapped as an image, without running its code.
class ImageWin32 : public testing::Test {
protected:
    ImageWin32() : module_(LoadLibraryExA(KVDB_LIBRARY, nullptr, DONT_RESOLVE_DLL_REFERENCES)) {
        EXPECT_NE(module_, nullptr);
    }
    ~ImageWin32() override { FreeLibrary(module_); }

    template <class T>
    const T* at(DWORD offset) const {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module_) + offset);
    }
    const IMAGE_DATA_DIRECTORY& directory(int index) const {
        const auto* headers = at<IMAGE_NT_HEADERS>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
        return headers->OptionalHeader.DataDirectory[index];
    }
    std::string resource(const char* type, WORD id) const {
        const HRSRC found = FindResourceA(module_, MAKEINTRESOURCEA(id), type);
        if (found == nullptr) return "(none)";
        return {static_cast<const char*>(LockResource(LoadResource(module_, found))), SizeofResource(module_, found)};
    }

    HMODULE module_;
};

}  // namespace

TEST_F(ImageWin32, exports_are_the_entry_points_undecorated_and_nothing_else) {
    const auto* exports = at<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
    const DWORD* names = at<DWORD>(exports->AddressOfNames);
    std::set<std::string> found;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) found.insert(at<char>(names[i]));
    EXPECT_EQ(found, (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                                            "DllUnregisterServer"}));
    EXPECT_EQ(exports->NumberOfFunctions, exports->NumberOfNames);
}

TEST_F(ImageWin32, imports_are_the_systems_and_the_compilers_runtime) {
    const auto* import = at<IMAGE_IMPORT_DESCRIPTOR>(directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
    std::set<std::string> found;
    for (; import->Name != 0; ++import) {
        std::string name = at<char>(import->Name);
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
        found.insert(name);
    }
    EXPECT_TRUE(found.count("libgcc_s_dw2-1.dll"));
    for (const char* allowed : {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "user32.dll",
                                "libgcc_s_dw2-1.dll", "libwinpthread-1.dll"}) {
        found.erase(allowed);
    }
    EXPECT_EQ(found, std::set<std::string>());
}

TEST_F(ImageWin32, scripts_are_resources_103_to_105) {
    const std::pair<WORD, const char*> scripts[] = {{103, "dbgate1.rgs"}, {104, "dbgate2.rgs"}, {105, "dbgate3.rgs"}};
    for (const auto& [id, file] : scripts) {
        const std::string text = bytes_of(std::string(KVDB_FRAME "/registration/") + file);
        EXPECT_GT(text.size(), 100u);
        EXPECT_EQ(resource("REGISTRY", id).substr(0, text.size()), text) << id;
    }
    EXPECT_EQ(resource("REGISTRY", 102), "(none)");
    EXPECT_EQ(resource("REGISTRY", 106), "(none)");
}

TEST_F(ImageWin32, type_library_is_resource_1) { EXPECT_EQ(resource("TYPELIB", 1).substr(0, 4), "MSFT"); }

TEST_F(ImageWin32, string_table_has_the_welcome_note_and_a_verse) {
    char text[4000] = "";
    EXPECT_EQ(LoadStringA(module_, 101, text, sizeof text), static_cast<int>(std::strlen(KVDB_TEXT_WELCOME)));
    EXPECT_STREQ(text, KVDB_TEXT_WELCOME);
    EXPECT_GT(LoadStringA(module_, 102, text, sizeof text), 20);
    EXPECT_STREQ(text, KVDB_TEXT_VERSE);
    EXPECT_GE(std::count(text, text + std::strlen(text), '\n'), 3);
    EXPECT_EQ(LoadStringA(module_, 100, text, sizeof text), 0);
    EXPECT_EQ(LoadStringA(module_, 103, text, sizeof text), 0);
}

TEST_F(ImageWin32, version_resource_names_file_product_and_self_registration) {
    DWORD ignored = 0;
    std::vector<char> block(GetFileVersionInfoSizeA(KVDB_LIBRARY, &ignored));
    ASSERT_TRUE(GetFileVersionInfoA(KVDB_LIBRARY, 0, static_cast<DWORD>(block.size()), block.data()));
    void* value = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\", &value, &size));
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
    const auto version = [](DWORD most, DWORD least) {
        return std::to_string(HIWORD(most)) + "." + std::to_string(LOWORD(most)) + "." + std::to_string(HIWORD(least));
    };
    EXPECT_EQ(version(fixed->dwFileVersionMS, fixed->dwFileVersionLS), KVDB_VERSION);
    EXPECT_EQ(version(fixed->dwProductVersionMS, fixed->dwProductVersionLS), KVDB_VERSION);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    const auto text = [&](const std::string& name) {
        const std::string path = "\\StringFileInfo\\040904b0\\" + name;
        return VerQueryValueA(block.data(), path.c_str(), &value, &size) ? std::string(static_cast<char*>(value))
                                                                         : "(none)";
    };
    EXPECT_EQ(text("FileVersion"), KVDB_VERSION);
    EXPECT_EQ(text("ProductVersion"), KVDB_VERSION);
    EXPECT_EQ(text("OriginalFilename"), "kvdb.dll");
    EXPECT_EQ(text("OLESelfRegister"), "");
}
