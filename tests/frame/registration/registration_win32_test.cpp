// Registration in the real registry: every key of the scripts, both directions, failures half way, and the platform's
// view of the result.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "tests/frame/gate_host.h"
#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

struct RegisteredClass {
    const char* name;
    const char* clsid;
};
// The second identifier is not the class's own, deliberately.
constexpr RegisteredClass kClasses[] = {{"DBgate1", "{66DA35EC-B364-4F64-A3FD-D09D314C02D1}"},
                                        {"DBgate2", "{ECADD900-76DA-49CB-8286-4A5913BBED89}"},
                                        {"DBGate3", "{BD49E811-5273-4074-BD03-8ED9B0812418}"}};
constexpr const char* kLibrary = "{D4E6B90C-22E3-47D3-9E7F-02AA21C9A428}";
constexpr const char* kOwnGate2 = "{99CA7812-20D9-4498-9727-DE8B97A3F383}";
constexpr const char* kUserClasses = "Software\\Classes\\";

// All of the component's keys below `prefix`.
RegistryText ours(HKEY root, const std::string& prefix = "") {
    RegistryText all;
    for (const RegisteredClass& entry : kClasses) {
        const std::string prog_id = std::string("KVDB.") + entry.name;
        for (const std::string& path : {prog_id, prog_id + ".1", std::string("CLSID\\") + entry.clsid}) {
            all.merge(registry_text(root, prefix + path));
        }
    }
    all.merge(registry_text(root, prefix + "CLSID\\" + kOwnGate2));
    all.merge(registry_text(root, prefix + "TypeLib\\" + kLibrary));
    for (const IID& iid : {IID_IDBgate1, IID_IDBgate2, IID_IDBGate3}) {
        all.merge(registry_text(root, prefix + "Interface\\" + text_of(iid)));
    }
    return all;
}

// A component whose file may be changed before it is loaded.
class RegistrationWin32 : public testing::Test {
protected:
    RegistrationWin32() { install_files(folder_.path()); }
    ~RegistrationWin32() override {
        if (component_ != nullptr) {
            EXPECT_EQ(component_->unregister_server(), S_OK);
        }
    }

    std::string file() const { return folder_.file("kvdb.dll"); }
    const Component& component() {
        if (component_ == nullptr) component_ = std::make_unique<Component>(folder_.path());
        return *component_;
    }
    // Replaces the first `from` in the file by `to`, which has the same length.
    void change_file(const std::string& from, const std::string& to) {
        std::string bytes = bytes_of(file());
        const std::size_t at = bytes.find(from);
        ASSERT_NE(at, std::string::npos);
        ASSERT_EQ(from.size(), to.size());
        bytes.replace(at, to.size(), to);
        std::ofstream(file(), std::ios::binary) << bytes;
    }
    HRESULT install(bool install, const wchar_t* command) {
        const HMODULE module = GetModuleHandleA(component().path().c_str());
        using Install = HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR);
        const auto function = reinterpret_cast<Install>(reinterpret_cast<void*>(GetProcAddress(module, "DllInstall")));
        return function(install, command);
    }

    TempFolder folder_;
    std::unique_ptr<Component> component_;
    Apartment apartment_;
};

void expect_classes(HKEY root, const std::string& prefix, const std::string& file) {
    for (const RegisteredClass& entry : kClasses) {
        const std::string description = std::string(entry.name) + " Class";
        const std::string prog_id = std::string("KVDB.") + entry.name;
        const std::string versioned = prog_id + ".1";
        const std::string clsid = entry.clsid;
        const std::string key = prefix + "CLSID\\" + clsid;
        const RegistryText expected_class = {{key, ""},
                                             {key + "\\@", description},
                                             {key + "\\ProgID", ""},
                                             {key + "\\ProgID\\@", versioned},
                                             {key + "\\VersionIndependentProgID", ""},
                                             {key + "\\VersionIndependentProgID\\@", prog_id},
                                             {key + "\\Programmable", ""},
                                             {key + "\\InprocServer32", ""},
                                             {key + "\\InprocServer32\\@", file},
                                             {key + "\\InprocServer32\\@ThreadingModel", "Apartment"},
                                             {key + "\\TypeLib", ""},
                                             {key + "\\TypeLib\\@", kLibrary}};
        EXPECT_EQ(registry_text(root, key), expected_class);
        const std::string first = prefix + versioned;
        const RegistryText expected_versioned = {
            {first, ""}, {first + "\\@", description}, {first + "\\CLSID", ""}, {first + "\\CLSID\\@", clsid}};
        EXPECT_EQ(registry_text(root, first), expected_versioned);
        const std::string second = prefix + prog_id;
        const RegistryText expected_independent = {{second, ""},
                                                   {second + "\\@", description},
                                                   {second + "\\CLSID", ""},
                                                   {second + "\\CLSID\\@", clsid},
                                                   {second + "\\CurVer", ""},
                                                   {second + "\\CurVer\\@", versioned}};
        EXPECT_EQ(registry_text(root, second), expected_independent);
    }
}

void expect_type_library(HKEY root, const std::string& prefix, const std::string& file) {
    const std::string library = prefix + "TypeLib\\" + kLibrary + "\\1.0";
    EXPECT_EQ(registry_value(root, library), "KVDB 1.0 Type Library");
    EXPECT_EQ(registry_value(root, library + kSystemKey), file);
    EXPECT_EQ(registry_value(root, library + "\\HELPDIR"), os::folder_of(file));
    const std::pair<IID, const char*> interfaces[] = {
        {IID_IDBgate1, "IDBgate1"}, {IID_IDBgate2, "IDBgate2"}, {IID_IDBGate3, "IDBGate3"}};
    for (const auto& [iid, name] : interfaces) {
        const std::string key = prefix + "Interface\\" + text_of(iid);
        EXPECT_EQ(registry_value(root, key), name);
        EXPECT_EQ(registry_value(root, key + "\\ProxyStubClsid32"), "{00020424-0000-0000-C000-000000000046}");
        EXPECT_EQ(registry_value(root, key + "\\TypeLib"), kLibrary);
        EXPECT_EQ(registry_value(root, key + "\\TypeLib", "Version"), "1.0");
    }
}

}  // namespace

TEST_F(RegistrationWin32, writes_every_key_of_every_class) {
    ASSERT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    ASSERT_EQ(component().register_server(), S_OK);
    expect_classes(HKEY_CLASSES_ROOT, "", file());
    expect_type_library(HKEY_CLASSES_ROOT, "", file());
    EXPECT_FALSE(has_key(HKEY_CLASSES_ROOT, std::string("CLSID\\") + kOwnGate2));
}

TEST_F(RegistrationWin32, twice_leaves_one_copy_of_everything) {
    ASSERT_EQ(component().register_server(), S_OK);
    const RegistryText once = ours(HKEY_CLASSES_ROOT);
    ASSERT_EQ(component().register_server(), S_OK);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), once);
}

TEST_F(RegistrationWin32, forced_key_is_replaced_and_not_merged) {
    const std::string stale = std::string("CLSID\\") + kClasses[0].clsid + "\\Stale";
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CLASSES_ROOT, stale.c_str(), &key), ERROR_SUCCESS);
    RegCloseKey(key);
    ASSERT_EQ(component().register_server(), S_OK);
    EXPECT_FALSE(has_key(HKEY_CLASSES_ROOT, stale));
}

TEST_F(RegistrationWin32, unregistering_leaves_nothing_of_ours_and_the_class_list) {
    const auto count = [] { return registry_text(HKEY_CLASSES_ROOT, "CLSID").size(); };
    const std::size_t before = count();
    ASSERT_EQ(component().register_server(), S_OK);
    EXPECT_GT(count(), before);
    ASSERT_EQ(component().unregister_server(), S_OK);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    EXPECT_EQ(count(), before);
    EXPECT_GT(before, 100u);  // the platform's own classes
}

TEST_F(RegistrationWin32, unregistering_what_is_not_registered_succeeds) {
    EXPECT_EQ(component().unregister_server(), S_OK);
    EXPECT_EQ(component().unregister_server(), S_OK);
}

TEST_F(RegistrationWin32, key_of_others_below_ours_survives_without_our_values) {
    ASSERT_EQ(component().register_server(), S_OK);
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CLASSES_ROOT, "KVDB.DBgate1\\Foreign", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    ASSERT_EQ(component().unregister_server(), S_OK);
    EXPECT_EQ(registry_text(HKEY_CLASSES_ROOT, "KVDB.DBgate1"),
              (RegistryText{{"KVDB.DBgate1", ""}, {"KVDB.DBgate1\\Foreign", ""}}));
    RegDeleteKeyA(HKEY_CLASSES_ROOT, "KVDB.DBgate1\\Foreign");
    RegDeleteKeyA(HKEY_CLASSES_ROOT, "KVDB.DBgate1");
}

TEST_F(RegistrationWin32, broken_script_of_the_second_class_takes_the_first_back) {
    change_file("KVDB.DBgate2.1 = s", "KVDB.DBgate2.1 = q");
    EXPECT_EQ(component().register_server(), DISP_E_EXCEPTION);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    component_.reset();
}

TEST_F(RegistrationWin32, key_that_cannot_be_written_takes_everything_back) {
    // The file has room for a name that the registry refuses: longer than 255 characters.
    const std::string bytes = bytes_of(file());
    const std::size_t begin = bytes.find("KVDB.DBGate3.1 = s 'DBGate3 Class'");
    const std::size_t end = bytes.find("ForceRemove", begin);
    ASSERT_GT(end - begin, 270u);
    std::string bad = std::string(260, 'x') + " {";
    bad.resize(end - begin, ' ');
    change_file(bytes.substr(begin, end - begin), bad);
    const HRESULT result = component().register_server();
    EXPECT_EQ(HRESULT_FACILITY(result), FACILITY_WIN32) << std::hex << result;
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    component_.reset();
}

TEST_F(RegistrationWin32, missing_type_library_takes_all_classes_back) {
    change_file("MSFT", "XXXX");
    const HRESULT result = component().register_server();
    EXPECT_TRUE(FAILED(result));
    EXPECT_EQ(HRESULT_FACILITY(result), FACILITY_DISPATCH) << std::hex << result;
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    component_.reset();
}

TEST_F(RegistrationWin32, failure_leaves_an_earlier_registration_as_it_was) {
    GateHost earlier;
    ASSERT_EQ(earlier.component().register_server(), S_OK);
    const RegistryText before = ours(HKEY_CLASSES_ROOT);
    change_file("MSFT", "XXXX");
    EXPECT_TRUE(FAILED(component().register_server()));
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), before);
    component_.reset();
    EXPECT_EQ(earlier.component().unregister_server(), S_OK);
}

TEST_F(RegistrationWin32, failure_of_unregistering_leaves_the_registration_as_it_was) {
    ASSERT_EQ(component().register_server(), S_OK);
    const RegistryText before = ours(HKEY_CLASSES_ROOT);
    TempFolder other;
    install_files(other.path());
    {
        std::string bytes = bytes_of(other.file("kvdb.dll"));
        bytes.replace(bytes.find("KVDB.DBGate3.1 = s"), 18, "KVDB.DBGate3.1 = q");
        std::ofstream(other.file("kvdb.dll"), std::ios::binary) << bytes;
    }
    const Component broken(other.path());
    EXPECT_EQ(broken.unregister_server(), DISP_E_EXCEPTION);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), before);
}

TEST_F(RegistrationWin32, user_alone_is_registered_by_command) {
    ASSERT_EQ(install(true, L"user"), S_OK);
    EXPECT_EQ(ours(HKEY_LOCAL_MACHINE, kUserClasses), RegistryText());
    expect_classes(HKEY_CURRENT_USER, kUserClasses, file());
    expect_type_library(HKEY_CURRENT_USER, kUserClasses, file());
    ASSERT_EQ(install(false, L"User"), S_OK);
    EXPECT_EQ(ours(HKEY_CURRENT_USER, kUserClasses), RegistryText());
}

TEST_F(RegistrationWin32, registry_that_refuses_is_access_denied_and_leaves_nothing) {
    HKEY list = nullptr;
    const std::string path = kUserClasses + std::string("CLSID");
    ASSERT_EQ(
        RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_READ | WRITE_DAC, nullptr, &list, nullptr),
        ERROR_SUCCESS);
    const auto allow = [&](ACL* entries) {
        SECURITY_DESCRIPTOR rights{};
        ASSERT_TRUE(InitializeSecurityDescriptor(&rights, SECURITY_DESCRIPTOR_REVISION));
        ASSERT_TRUE(SetSecurityDescriptorDacl(&rights, TRUE, entries, FALSE));
        ASSERT_EQ(RegSetKeySecurity(list, DACL_SECURITY_INFORMATION, &rights), ERROR_SUCCESS);
    };
    ACL nobody{};
    ASSERT_TRUE(InitializeAcl(&nobody, sizeof nobody, ACL_REVISION));
    allow(&nobody);
    EXPECT_EQ(install(true, L"user"), E_ACCESSDENIED);
    allow(nullptr);  // everybody
    RegCloseKey(list);
    EXPECT_EQ(ours(HKEY_CURRENT_USER, kUserClasses), RegistryText());
    EXPECT_EQ(install(true, L"user"), S_OK);
    EXPECT_EQ(install(false, L"user"), S_OK);
}

TEST_F(RegistrationWin32, user_s_lists_of_classes_go_when_they_become_empty) {
    const auto there = [](const char* list) { return has_key(HKEY_CURRENT_USER, kUserClasses + std::string(list)); };
    for (const char* list : {"CLSID", "Interface", "TypeLib"}) ASSERT_FALSE(there(list)) << list;
    ASSERT_EQ(install(true, L"user"), S_OK);
    for (const char* list : {"CLSID", "Interface", "TypeLib"}) EXPECT_TRUE(there(list)) << list;
    ASSERT_EQ(install(false, L"user"), S_OK);
    for (const char* list : {"CLSID", "Interface", "TypeLib"}) EXPECT_FALSE(there(list)) << list;
}

TEST_F(RegistrationWin32, user_s_list_of_classes_stays_while_another_s_class_is_in_it) {
    const std::string other = kUserClasses + std::string("CLSID\\{00000000-1111-2222-3333-444444444444}");
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, other.c_str(), &key), ERROR_SUCCESS);
    RegCloseKey(key);
    ASSERT_EQ(install(true, L"user"), S_OK);
    ASSERT_EQ(install(false, L"user"), S_OK);
    EXPECT_TRUE(has_key(HKEY_CURRENT_USER, other));
    RegDeleteKeyA(HKEY_CURRENT_USER, other.c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, (kUserClasses + std::string("CLSID")).c_str());
}

TEST_F(RegistrationWin32, command_without_text_is_the_machine_and_others_are_refused) {
    EXPECT_EQ(install(true, L"everybody"), E_INVALIDARG);
    EXPECT_EQ(install(true, L"users"), E_INVALIDARG);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    EXPECT_EQ(install(true, nullptr), S_OK);
    expect_classes(HKEY_CLASSES_ROOT, "", file());
    EXPECT_EQ(install(false, L""), S_OK);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
}

TEST_F(RegistrationWin32, names_lead_to_classes_that_can_be_made_but_for_the_second) {
    ASSERT_EQ(component().register_server(), S_OK);
    const auto make = [](const wchar_t* name, std::string& clsid_text) {
        CLSID clsid{};
        EXPECT_EQ(CLSIDFromProgID(name, &clsid), S_OK);
        clsid_text = text_of(clsid);
        ComPtr<IDispatch> gate;
        return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, gate.put());
    };
    std::string clsid;
    for (const wchar_t* name : {L"KVDB.DBgate1", L"KVDB.DBgate1.1"}) {
        EXPECT_EQ(make(name, clsid), S_OK);
        EXPECT_EQ(clsid, text_of(CLSID_DBgate1));
    }
    for (const wchar_t* name : {L"KVDB.DBGate3", L"KVDB.DBGate3.1"}) {
        EXPECT_EQ(make(name, clsid), S_OK);
        EXPECT_EQ(clsid, text_of(CLSID_DBGate3));
    }
    for (const wchar_t* name : {L"KVDB.DBgate2", L"KVDB.DBgate2.1"}) {
        EXPECT_EQ(make(name, clsid), CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_EQ(clsid, "{ECADD900-76DA-49CB-8286-4A5913BBED89}");
    }
    // The class itself is served; nothing in the registry leads to it.
    EXPECT_TRUE(component().create<IDBgate2>());
    ComPtr<IDispatch> gate;
    EXPECT_EQ(CoCreateInstance(CLSID_DBgate2, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, gate.put()),
              REGDB_E_CLASSNOTREG);
}

TEST_F(RegistrationWin32, regsvr32_registers_and_unregisters) {
    EXPECT_EQ(run_process("regsvr32 /s \"" + file() + "\"").code, 0u);
    expect_classes(HKEY_CLASSES_ROOT, "", file());
    expect_type_library(HKEY_CLASSES_ROOT, "", file());
    EXPECT_EQ(run_process("regsvr32 /s /u \"" + file() + "\"").code, 0u);
    EXPECT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    EXPECT_EQ(run_process("regsvr32 /s /n /i:user \"" + file() + "\"").code, 0u);
    expect_classes(HKEY_CURRENT_USER, kUserClasses, file());
    EXPECT_EQ(run_process("regsvr32 /s /u /n /i:user \"" + file() + "\"").code, 0u);
    EXPECT_EQ(ours(HKEY_CURRENT_USER, kUserClasses), RegistryText());
}

TEST_F(RegistrationWin32, registered_type_library_is_found_by_its_identifier) {
    ASSERT_EQ(component().register_server(), S_OK);
    ComPtr<ITypeLib> library;
    ITypeLib* found = nullptr;
    ASSERT_EQ(LoadRegTypeLib(LIBID_KVDBLib, 1, 0, 0, &found), S_OK);
    EXPECT_EQ(found->GetTypeInfoCount(), 6u);
    found->Release();
}

TEST_F(RegistrationWin32, module_path_with_quote_blank_and_umlaut_is_written_as_it_is) {
    const std::string folder = folder_.file(os::narrow(u"it's a t\u00FCr"));
    std::filesystem::create_directory(std::filesystem::path(wide(folder)));
    for (const char* name : {"kvdb.dll", "kvdb.gates.manifest"}) {
        ASSERT_TRUE(CopyFileA(folder_.file(name).c_str(), os::join_path(folder, name).c_str(), TRUE));
    }
    Component odd(folder);
    ASSERT_EQ(odd.register_server(), S_OK);
    expect_classes(HKEY_CLASSES_ROOT, "", os::join_path(folder, "kvdb.dll"));
    EXPECT_EQ(odd.unregister_server(), S_OK);
}

// The letter of the folder's name is none of the code page; its best fit would be another folder.
TEST_F(RegistrationWin32, module_path_beyond_the_code_page_is_written_as_it_is) {
    const std::filesystem::path folder = std::filesystem::path(wide(folder_.path())) / L"Micha\x0142";
    std::filesystem::create_directory(folder);
    for (const wchar_t* name : {L"kvdb.dll", L"kvdb.gates.manifest"}) {
        ASSERT_TRUE(
            CopyFileW((std::filesystem::path(wide(folder_.path())) / name).c_str(), (folder / name).c_str(), TRUE));
    }
    const std::wstring file = (folder / L"kvdb.dll").wstring();
    const HMODULE module = LoadLibraryW(file.c_str());
    ASSERT_NE(module, nullptr);
    const auto entry = [&](const char* name) {
        return reinterpret_cast<LPFNCANUNLOADNOW>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    };
    ASSERT_EQ(entry("DllRegisterServer")(), S_OK);

    const auto registered = [](const std::wstring& key) {
        wchar_t text[1000] = L"";
        DWORD size = sizeof text;
        RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &size);
        return std::wstring(text);
    };
    EXPECT_EQ(registered(L"CLSID\\{66DA35EC-B364-4F64-A3FD-D09D314C02D1}\\InprocServer32"), file);
    EXPECT_EQ(registered(L"TypeLib\\" + wide(kLibrary) + L"\\1.0" + wide(kSystemKey)), file);
    EXPECT_EQ(registered(L"TypeLib\\" + wide(kLibrary) + L"\\1.0\\HELPDIR"), folder.wstring());
    ITypeLib* library = nullptr;
    ASSERT_EQ(LoadRegTypeLib(LIBID_KVDBLib, 1, 0, 0, &library), S_OK);
    library->Release();

    ComPtr<IDBgate1> gate;
    ASSERT_EQ(CoCreateInstance(CLSID_DBgate1, nullptr, CLSCTX_INPROC_SERVER, IID_IDBgate1, gate.put()), S_OK);
    ITypeInfo* type = nullptr;
    EXPECT_EQ(gate->GetTypeInfo(0, 0, &type), S_OK);
    if (type != nullptr) type->Release();
    gate.reset();
    EXPECT_EQ(entry("DllUnregisterServer")(), S_OK);
    CoFreeUnusedLibrariesEx(0, 0);
    FreeLibrary(module);
}

TEST_F(RegistrationWin32, manifest_makes_every_class_known_without_registration) {
    ASSERT_EQ(ours(HKEY_CLASSES_ROOT), RegistryText());
    const ManifestContext context(folder_.file("kvdb.gates.manifest"));
    const std::pair<CLSID, IID> gates[] = {
        {CLSID_DBgate1, IID_IDBgate1}, {CLSID_DBgate2, IID_IDBgate2}, {CLSID_DBGate3, IID_IDBGate3}};
    for (const auto& [clsid, iid] : gates) {
        ComPtr<IDispatch> gate;
        EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, gate.put()), S_OK) << text_of(clsid);
    }
    CLSID clsid{};
    ASSERT_EQ(CLSIDFromProgID(L"KVDB.DBgate1", &clsid), S_OK);
    ComPtr<IDBgate1> gate;  // the platform may give the class another identifier within the context
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDBgate1, gate.put()), S_OK);
    gate.reset();
    BSTR path = nullptr;
    EXPECT_EQ(QueryPathOfRegTypeLib(LIBID_KVDBLib, 1, 0, 0, &path), S_OK);
    EXPECT_EQ(taken(path), file());
    CoFreeUnusedLibrariesEx(0, 0);
}

TEST_F(RegistrationWin32, library_is_unloaded_when_the_last_gate_is_gone) {
    ASSERT_EQ(component().register_server(), S_OK);
    const std::string path = file();
    ComPtr<IDBgate1> gate;
    ASSERT_EQ(CoCreateInstance(CLSID_DBgate1, nullptr, CLSCTX_INPROC_SERVER, IID_IDBgate1, gate.put()), S_OK);
    EXPECT_EQ(component().unregister_server(), S_OK);
    component_.reset();  // our own reference on the library
    EXPECT_NE(GetModuleHandleA(path.c_str()), nullptr);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_NE(GetModuleHandleA(path.c_str()), nullptr) << "a gate lives";
    gate.reset();
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
}
