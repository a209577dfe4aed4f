#include "tests/support/handle_holder_win32.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>

namespace testing_support {
namespace {

constexpr char kFilter[] = "HandleHolder.DISABLED_process";

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

HANDLE event(const std::string& name) { return CreateEventA(nullptr, TRUE, FALSE, name.c_str()); }

}  // namespace

// The other process runs this.
TEST(HandleHolder, DISABLED_process) {
    const std::string name = variable("KVDB_HOLDER_EVENT");
    if (name.empty()) GTEST_SKIP() << "is run by HandleHolder";
    const std::wstring path = std::filesystem::path(variable("KVDB_HOLDER_PATH")).wstring();
    const auto number = [](const char* text) { return static_cast<DWORD>(std::stoul(variable(text))); };
    const HANDLE held = CreateFileW(path.c_str(), number("KVDB_HOLDER_ACCESS"), number("KVDB_HOLDER_SHARE"), nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (held == INVALID_HANDLE_VALUE) std::_Exit(1);
    SetEvent(event(name + "-held"));
    WaitForSingleObject(event(name + "-release"), number("KVDB_HOLDER_TIME"));
    CloseHandle(held);
    std::_Exit(0);
}

HandleHolder::HandleHolder(const std::string& path, DWORD access, DWORD share, DWORD milliseconds) {
    static std::atomic<int> count{0};
    const std::string name = "kvdb-holder-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
    release_ = event(name + "-release");
    const HANDLE held = event(name + "-held");
    SetEnvironmentVariableA("KVDB_HOLDER_EVENT", name.c_str());
    SetEnvironmentVariableA("KVDB_HOLDER_PATH", path.c_str());
    SetEnvironmentVariableA("KVDB_HOLDER_ACCESS", std::to_string(access).c_str());
    SetEnvironmentVariableA("KVDB_HOLDER_SHARE", std::to_string(share).c_str());
    SetEnvironmentVariableA("KVDB_HOLDER_TIME", std::to_string(milliseconds).c_str());
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string line =
        std::string("\"") + program + "\" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=" + kFilter;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    if (CreateProcessA(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_)) {
        const HANDLE either[] = {held, process_.hProcess};
        holds_ = WaitForMultipleObjects(2, either, FALSE, 60000) == WAIT_OBJECT_0;
    }
    SetEnvironmentVariableA("KVDB_HOLDER_EVENT", nullptr);
    CloseHandle(held);
}

void HandleHolder::release() {
    if (release_ == nullptr) return;
    SetEvent(release_);
    if (process_.hProcess != nullptr) {
        WaitForSingleObject(process_.hProcess, 60000);
        CloseHandle(process_.hProcess);
        CloseHandle(process_.hThread);
    }
    CloseHandle(release_);
    release_ = nullptr;
}

}  // namespace testing_support
