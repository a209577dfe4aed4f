// Complete hosts on Windows: those of docs/hosting.md, two at once, and studios in folders with unusual names.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/frame/gate_host.h"
#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

class HostsWin32 : public testing::Test {
protected:
    HostsWin32() { install_files(folder_.path()); }

    // The code block of the document in `language`.
    static std::string documented(const std::string& language) {
        const std::string document = bytes_of(KVDB_DOCS "/hosting.md");
        const std::string mark = "```" + language + "\n";
        const std::size_t begin = document.find(mark) + mark.size();
        return document.substr(begin, document.find("```", begin) - begin);
    }

    TempFolder folder_;
};

// Registers a component during a test.
class Registered {
public:
    explicit Registered(const Component& component) : component_(component) {
        EXPECT_EQ(component_.register_server(), S_OK);
    }
    ~Registered() { EXPECT_EQ(component_.unregister_server(), S_OK); }

private:
    const Component& component_;
};

Ended run_script(const TempFolder& folder, const std::string& script) {
    const std::string file = folder.file("host.vbs");
    std::ofstream(file) << script;
    return run_process("cscript //nologo \"" + file + "\"");
}

}  // namespace

TEST_F(HostsWin32, documented_cpp_host_makes_a_project) {
    const Component component(folder_.path());
    const Registered registered(component);
    Ended ended = run_process("\"" KVDB_DOCUMENTED_HOST "\"");
    EXPECT_EQ(ended.code, 0u);
    EXPECT_EQ(ended.out, "project 1\n");
    std::ofstream(folder_.file("sldb.mdb"), std::ios::trunc) << "this is no database";
    ended = run_process("\"" KVDB_DOCUMENTED_HOST "\"");
    EXPECT_EQ(ended.code, 1u);
    EXPECT_NE(ended.out.find("sldb.mdb"), std::string::npos) << ended.out;
}

// The program's own manifest names the assembly; the system finds its file beside the program.
TEST_F(HostsWin32, program_whose_manifest_names_ours_needs_no_registration) {
    const std::string program = folder_.file("host.exe");
    std::filesystem::copy_file(KVDB_DOCUMENTED_HOST, program);
    const std::string ours = bytes_of(folder_.file("kvdb.gates.manifest"));
    const std::string mark = "<assemblyIdentity type=\"win32\" name=\"kvdb.gates\"";
    const std::size_t identity = ours.find(mark);
    ASSERT_NE(identity, std::string::npos);
    const std::string named = ours.substr(identity, ours.find("/>", identity) + 2 - identity);
    std::ofstream(program + ".manifest") << "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                                            "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" "
                                            "manifestVersion=\"1.0\"><dependency><dependentAssembly>"
                                         << named << "</dependentAssembly></dependency></assembly>\n";
    const Ended ended = run_process("\"" + program + "\"");
    EXPECT_EQ(ended.code, 0u);
    EXPECT_EQ(ended.out, "project 1\n");
}

TEST_F(HostsWin32, documented_script_host_works_with_names) {
    const Component component(folder_.path());
    const Registered registered(component);
    const Ended ended = run_script(folder_, documented("vbscript"));
    EXPECT_EQ(ended.code, 0u);
    EXPECT_EQ(ended.out, "there is no studio yet\nversion 210000\nfirst Guitar\nnext Drums\nend 80004005\n");
    EXPECT_TRUE(std::filesystem::exists(folder_.file("kvinvdb.mdb")));
}

TEST_F(HostsWin32, script_makes_the_third_gate_and_not_the_second) {
    const Component component(folder_.path());
    const Registered registered(component);
    const Ended ended = run_script(folder_,
                                   "Set gate = CreateObject(\"KVDB.DBGate3\")\n"
                                   "gate.OpenDB\n"
                                   "WScript.Echo TypeName(gate)\n"
                                   "On Error Resume Next\n"
                                   "Set gate = CreateObject(\"KVDB.DBgate2\")\n"
                                   "If Err.Number <> 0 Then WScript.Echo \"refused\"\n");
    EXPECT_EQ(ended.code, 0u);
    EXPECT_EQ(ended.out, "IDBGate3\nrefused\n");
}

TEST_F(HostsWin32, script_is_told_what_the_engine_says) {
    const Component component(folder_.path());
    const Registered registered(component);
    std::ofstream(folder_.file("sldb.mdb")) << "this is no database";
    const Ended ended = run_script(folder_,
                                   "Set gate = CreateObject(\"KVDB.DBgate1\")\n"
                                   "On Error Resume Next\n"
                                   "gate.OpenDB\n"
                                   "WScript.Echo Hex(Err.Number) & \" \" & Err.Source\n"
                                   "WScript.Echo Err.Description\n"
                                   "Err.Clear\n"
                                   "gate.IsDbExist\n"
                                   "WScript.Echo Err.Number\n");
    EXPECT_EQ(ended.code, 0u);
    EXPECT_EQ(ended.out.substr(0, 14), "80004005 KVDB\n");
    EXPECT_NE(ended.out.find("sldb.mdb"), std::string::npos) << ended.out;
    EXPECT_EQ(ended.out.substr(ended.out.size() - 2), "0\n");
}

TEST_F(HostsWin32, other_process_is_refused_while_this_one_holds_the_files) {
    const auto other = [&] { return run_process("\"" KVDB_EXCEPTION_HOST "\" \"" + folder_.path() + "\" vtable"); };
    const Component component(folder_.path());
    const auto gate = component.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(other().out.substr(0, 11), "caught 3356");
    EXPECT_EQ(gate->CloseDB(), S_OK);
    EXPECT_EQ(other().out, "result 00000000 [] []\n");
}

namespace {

void expect_studio_works_in(const std::string& folder) {
    const Component component(folder);
    const auto gate = component.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    ProjInfo project{};
    project.Name = "here";
    EXPECT_EQ(gate->AddProj(address_of(project)), S_OK);
    EXPECT_EQ(gate->CloseDB(), S_OK);
    EXPECT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(gate->FindProj(address_of(project)), S_OK);
    EXPECT_EQ(gate->CloseDB(), S_OK);
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA((folder + "\\*.mdb").c_str(), &found);
    EXPECT_NE(search, INVALID_HANDLE_VALUE) << "the files lie in the folder";
    FindClose(search);
}

}  // namespace

TEST_F(HostsWin32, folder_with_blanks_and_umlauts_holds_a_studio) {
    const std::string folder = folder_.file(os::narrow(u"Gr\u00FC\u00DFe aus K\u00F6ln"));
    ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr));
    ASSERT_TRUE(CopyFileA(folder_.file("kvdb.dll").c_str(), (folder + "\\kvdb.dll").c_str(), TRUE));
    expect_studio_works_in(folder);
}

// The longest path from which the system loads a library has 259 characters; files beside it may have longer names.
TEST_F(HostsWin32, folder_as_long_as_the_system_takes_holds_a_studio) {
    constexpr std::size_t kLongestLibraryPath = 259;
    for (const std::size_t length : {kLongestLibraryPath - 20, kLongestLibraryPath}) {
        std::string folder = folder_.path();
        while (folder.size() + sizeof "\\kvdb.dll" - 1 < length) {
            std::size_t rest = length - (sizeof "\\kvdb.dll" - 1) - folder.size() - 1;
            if (rest > 60) rest = rest > 62 ? 60 : 58;
            folder += "\\" + std::string(rest, 'x');
            ASSERT_TRUE(CreateDirectoryW(wide("\\\\?\\" + folder).c_str(), nullptr) ||
                        GetLastError() == ERROR_ALREADY_EXISTS);
        }
        const std::string library = folder + "\\kvdb.dll";
        ASSERT_EQ(library.size(), length);
        ASSERT_TRUE(CopyFileW(wide(folder_.file("kvdb.dll")).c_str(), wide("\\\\?\\" + library).c_str(), TRUE));
        expect_studio_works_in(folder);
    }
}
