// A host that ends while its threads are inside the component: every row that was reported as saved is there
// afterwards, and the end neither hangs nor crashes. The host is another process of this program, which runs the test
// that is disabled for everybody else.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/frame/gate_host.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace testing_support;

constexpr int kThreads = 4;
constexpr DWORD kPatience = 60000;

struct Saved {
    LONG key;
    LONG number;
};

void save_for_ever(IDBgate1* gate, LONG first, HANDLE out) {
    for (LONG i = 0;; ++i) {
        ProjInfo project;
        project.Name = std::to_string(first + i).c_str();
        if (gate->AddProj(address_of(project)) != S_OK) continue;
        const Saved saved{project.ProjID, first + i};
        DWORD count = 0;
        if (!WriteFile(out, &saved, sizeof saved, &count, nullptr)) TerminateProcess(GetCurrentProcess(), 3);
    }
}

// Starts the host with this folder; gives its process, and the end of the pipe from which its words come.
HANDLE start_host(const std::string& folder, HANDLE& from) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE to = nullptr;
    if (!CreatePipe(&from, &to, &inherited, 1 << 20)) return nullptr;
    SetHandleInformation(from, HANDLE_FLAG_INHERIT, 0);
    SetEnvironmentVariableA("KVDB_EXIT_FOLDER", folder.c_str());
    SetEnvironmentVariableA("KVDB_EXIT_PIPE", std::to_string(reinterpret_cast<std::uintptr_t>(to)).c_str());
    SetEnvironmentVariableA("KVDB_TEST_ACCESS", nullptr);  // nobody takes back what a host registers that just ends
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string line =
        std::string("\"") + program +
        "\" --gtest_also_run_disabled_tests --gtest_filter=ExitThreadsGate.DISABLED_host --gtest_brief=1";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;  // none: what the host says is no output of this test
    PROCESS_INFORMATION host{};
    const BOOL is_started =
        CreateProcessA(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &host);
    CloseHandle(to);
    if (!is_started) return nullptr;
    CloseHandle(host.hThread);
    return host.hProcess;
}

std::map<LONG, std::string> projects_of(const std::string& folder) {
    const Component component(folder);
    const auto gate = component.create<IDBgate1>();
    EXPECT_EQ(gate->OpenDB(), S_OK);
    std::map<LONG, std::string> projects;
    ProjInfo project;
    for (HRESULT found = gate->EnumFirstProj(address_of(project)); found == S_OK;
         found = gate->EnumNextProj(address_of(project))) {
        projects[project.ProjID] = project.Name.GetString();
        project = ProjInfo{};
    }
    gate->CloseDB();
    return projects;
}

}  // namespace

TEST(ExitThreadsGate, DISABLED_host) {
    const char* const folder = std::getenv("KVDB_EXIT_FOLDER");
    if (folder == nullptr) GTEST_SKIP() << "is run by the test below";
    const auto out = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(std::stoull(std::getenv("KVDB_EXIT_PIPE"))));
    // Never released: they live until the process ends.
    const Component* const component = std::make_unique<Component>(folder).release();
    const auto* const holder = std::make_unique<ComPtr<IDBgate1>>(component->create<IDBgate1>()).release();
    IDBgate1* const gate = holder->get();
    if (gate->OpenDB() != S_OK) TerminateProcess(GetCurrentProcess(), 4);
    for (LONG thread = 0; thread < kThreads; ++thread) {
        std::thread(save_for_ever, gate, thread * 1000000, out).detach();
    }
    Sleep(150);
    ExitProcess(0);
}

TEST(ExitThreadsGate, process_that_ends_while_threads_save_loses_no_row) {
    for (int round = 0; round < 3; ++round) {
        const TempFolder folder;
        HANDLE from = nullptr;
        const HANDLE host = start_host(folder.path(), from);
        ASSERT_NE(host, nullptr);
        std::vector<Saved> saved;
        Saved next{};
        for (DWORD count = 0; ReadFile(from, &next, sizeof next, &count, nullptr) && count == sizeof next;) {
            saved.push_back(next);
        }
        CloseHandle(from);
        const bool has_ended = WaitForSingleObject(host, kPatience) == WAIT_OBJECT_0;
        if (!has_ended) TerminateProcess(host, 99);
        DWORD code = 0;
        GetExitCodeProcess(host, &code);
        CloseHandle(host);
        EXPECT_TRUE(has_ended);
        EXPECT_EQ(code, 0u);
        EXPECT_GT(saved.size(), 0u);
        const std::map<LONG, std::string> projects = projects_of(folder.path());
        for (const Saved& row : saved) {
            const auto found = projects.find(row.key);
            ASSERT_TRUE(found != projects.end() && found->second == std::to_string(row.number)) << row.number;
        }
    }
}
