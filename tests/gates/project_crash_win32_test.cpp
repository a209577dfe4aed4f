// The host is another process of this program, which runs the test that is disabled for everybody else.
#include <gtest/gtest.h>
#include <kvdb/com.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <string>

#include "tests/gates/project_crash.h"
#include "tests/support/figures.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace testing_support;
using Projects = std::map<std::int32_t, std::int32_t>;

constexpr unsigned kKills = 40;

HANDLE handle_of(const char* text) { return reinterpret_cast<HANDLE>(std::stoul(text)); }

// Folder, pipe and number of the kill stand in the environment, the projects in a file.
struct Child {
    Child(const std::string& folder, unsigned kill_no, HANDLE pipe) {
        SetEnvironmentVariableA("KVDB_CRASH_FOLDER", folder.c_str());
        SetEnvironmentVariableA("KVDB_CRASH_NUMBER", std::to_string(kill_no).c_str());
        SetEnvironmentVariableA("KVDB_CRASH_PIPE", std::to_string(reinterpret_cast<std::uintptr_t>(pipe)).c_str());
        char program[MAX_PATH] = "";
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        std::string line = std::string("\"") + program +
                           "\" --gtest_also_run_disabled_tests --gtest_filter=GateCrash.DISABLED_host --gtest_brief=1";
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        is_started = CreateProcessA(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                                    &process) != FALSE;
    }
    ~Child() {
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
    }
    PROCESS_INFORMATION process{};
    bool is_started = false;
};

bool read_word(HANDLE pipe, Told& told) {
    DWORD count = 0;
    return ReadFile(pipe, &told, sizeof told, &count, nullptr) && count == sizeof told;
}

}  // namespace

TEST(GateCrash, DISABLED_host) {
    const char* const folder = std::getenv("KVDB_CRASH_FOLDER");
    if (folder == nullptr) GTEST_SKIP() << "is run by the test below";
    Projects projects;
    std::ifstream list(std::string(folder) + "\\projects.txt");
    for (std::int32_t key = 0, value = 0; list >> key >> value;) projects[key] = value;
    const HANDLE pipe = handle_of(std::getenv("KVDB_CRASH_PIPE"));
    const auto seed = static_cast<unsigned>(std::stoul(std::getenv("KVDB_CRASH_NUMBER")));
    const int failed = work(folder, seed, projects, [&](const Told& told) {
        DWORD count = 0;
        if (!WriteFile(pipe, &told, sizeof told, &count, nullptr)) std::_Exit(3);
    });
    std::_Exit(failed);
}

TEST(GateCrash, killed_host_loses_no_call_that_had_returned) {
    TempFolder folder;
    Projects projects = read_projects(folder.path());
    ASSERT_TRUE(projects.empty());
    std::mt19937 random(4711);
    std::size_t calls = 0;
    for (unsigned kill_no = 1; kill_no <= kKills; ++kill_no) {
        std::ofstream list(folder.file("projects.txt"));
        for (const auto& [key, value] : projects) list << key << ' ' << value << '\n';
        list.close();
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        HANDLE from = nullptr;
        HANDLE to = nullptr;
        ASSERT_TRUE(CreatePipe(&from, &to, &inherited, 1 << 20));
        SetHandleInformation(from, HANDLE_FLAG_INHERIT, 0);
        const Child child(folder.path(), kill_no, to);
        CloseHandle(to);
        ASSERT_TRUE(child.is_started);
        // The first word says that the studio is open; from then on anything may be cut off.
        Told told{};
        ASSERT_TRUE(read_word(from, told)) << "the child did not begin";
        Sleep(static_cast<DWORD>(random() % 40));
        TerminateProcess(child.process.hProcess, 77);
        count_tried(Figure::kKills);
        Projects told_projects = projects;
        Told cut_off = told;
        while (read_word(from, told)) {
            take_in(told_projects, told);
            if (told.kind == Told::kBegun) cut_off = told;
            calls += told.kind != Told::kBegun;
        }
        CloseHandle(from);
        WaitForSingleObject(child.process.hProcess, INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(child.process.hProcess, &code);
        ASSERT_EQ(code, 77u) << "the child ended by itself";
        projects = projects_after_kill(folder.path(), told_projects, cut_off);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "after kill " << kill_no;
    }
    EXPECT_GT(calls, 200u);
    expect_sound(folder.path(), "kvinvdb.mdb");
}
