// The exception of OpenDB across the boundary of the library: a host that shares the unwinder catches it; any other
// host gets error info instead and continues.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

class ExceptionWin32 : public testing::Test {
protected:
    ExceptionWin32() { install_files(folder_.path()); }

    Ended run(const char* host, const char* way) {
        return run_process("\"" + std::string(host) + "\" \"" + folder_.path() + "\" " + way);
    }
    void damage() { std::ofstream(folder_.file("sldb.mdb")) << "this is no database"; }

    TempFolder folder_;
};

constexpr const char* kShared = KVDB_EXCEPTION_HOST;
constexpr const char* kStatic = KVDB_EXCEPTION_HOST_STATIC;

// "[...]" at the end: the engine's text, which names the file.
void expect_text_of_engine(const std::string& line) { EXPECT_NE(line.find("sldb.mdb"), std::string::npos) << line; }

}  // namespace

TEST_F(ExceptionWin32, host_that_shares_the_unwinder_catches_it) {
    damage();
    for (const char* way : {"vtable", "create", "gear"}) {
        const Ended ended = run(kShared, way);
        EXPECT_EQ(ended.code, 0u) << way;
        EXPECT_EQ(ended.out.substr(0, 13), "caught 3343 [") << ended.out;
        expect_text_of_engine(ended.out);
    }
}

TEST_F(ExceptionWin32, host_that_shares_the_unwinder_and_does_not_catch_is_terminated) {
    damage();
    const Ended ended = run(kShared, "uncaught");
    EXPECT_NE(ended.code, 0u);
    EXPECT_EQ(ended.out.find("result"), std::string::npos) << ended.out;
    EXPECT_EQ(run(kStatic, "uncaught").code, 0u) << "another one goes on";
}

TEST_F(ExceptionWin32, host_with_an_unwinder_of_its_own_gets_error_info) {
    damage();
    for (const char* way : {"vtable", "create", "gear"}) {
        const Ended ended = run(kStatic, way);
        EXPECT_EQ(ended.code, 0u) << way;
        EXPECT_EQ(ended.out.substr(0, 24), "result 80004005 [KVDB] [") << ended.out;
        expect_text_of_engine(ended.out);
    }
}

TEST_F(ExceptionWin32, invoke_tells_every_host_by_its_exception_record) {
    damage();
    for (const char* host : {kShared, kStatic}) {
        const Ended ended = run(host, "invoke");
        EXPECT_EQ(ended.code, 0u);
        EXPECT_EQ(ended.out.substr(0, 24), "result 80020009 [KVDB] [") << ended.out;
        expect_text_of_engine(ended.out);
    }
}

// As docs/windows.md says: the system looks for the runtime beside the program.
TEST_F(ExceptionWin32, library_loaded_by_its_path_alone_needs_the_runtime_beside_the_program) {
    const TempFolder elsewhere;
    const std::string program = elsewhere.file("host.exe");
    std::filesystem::copy_file(kStatic, program);
    const auto load = [&](const char* way) {
        return run_process("\"" + program + "\" \"" + folder_.path() + "\" " + way);
    };
    Ended ended = load("plain");
    EXPECT_EQ(ended.code, 4u);
    EXPECT_EQ(ended.out, "error 126\n");
    EXPECT_EQ(load("vtable").out, "result 00000000 [] []\n");
    for (const char* name : {kUnwinder, "libwinpthread-1.dll"}) {
        std::filesystem::copy_file(folder_.file(name), elsewhere.file(name));
    }
    EXPECT_EQ(load("plain").code, 0u);
}

TEST_F(ExceptionWin32, success_leaves_no_error_info) {
    for (const char* host : {kShared, kStatic}) {
        for (const char* way : {"vtable", "gear"}) {
            const Ended ended = run(host, way);
            EXPECT_EQ(ended.code, 0u);
            EXPECT_EQ(ended.out, "result 00000000 [] []\n");
        }
    }
}

TEST_F(ExceptionWin32, host_of_the_platform_is_told_through_its_own_invoke) {
    // The platform's Invoke calls the method from a module through which no exception can pass.
    damage();
    const Apartment apartment;
    const ManifestContext context(folder_.file("kvdb.gates.manifest"));
    ComPtr<IDispatch> gate;
    ASSERT_EQ(CoCreateInstance(CLSID_DBgate1, nullptr, CLSCTX_INPROC_SERVER, IID_IDBgate1, gate.put()), S_OK);
    ITypeInfo* type = nullptr;
    ASSERT_EQ(gate->GetTypeInfo(0, 0, &type), S_OK);
    DISPPARAMS none{};
    EXCEPINFO exception{};
    UINT bad = 0;
    EXPECT_EQ(type->Invoke(gate.get(), 2, DISPATCH_METHOD, &none, nullptr, &exception, &bad), DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, E_FAIL);
    EXPECT_EQ(taken(exception.bstrSource), "KVDB");
    expect_text_of_engine(taken(exception.bstrDescription));
    type->Release();
    gate.reset();
    CoFreeUnusedLibrariesEx(0, 0);
}
