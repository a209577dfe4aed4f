// The host is another process of this program; folder, seed and pipe are on its command line.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>

#include "tests/soak/host_process.h"

namespace soak {
namespace {

constexpr char kHostWord[] = "--host";
constexpr DWORD kKilled = 77;

}  // namespace

struct HostProcess::System {
    PROCESS_INFORMATION process{};
    HANDLE words = nullptr;
};

HostProcess::HostProcess(const HostTask& task) : system_(std::make_unique<System>()) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE to = nullptr;
    if (!CreatePipe(&system_->words, &to, &inherited, 1 << 20)) throw std::runtime_error("no pipe");
    SetHandleInformation(system_->words, HANDLE_FLAG_INHERIT, 0);
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string line = std::string("\"") + program + "\" " + kHostWord + " \"" + task.folder + "\" " +
                       std::to_string(task.seed) + " " + std::to_string(reinterpret_cast<std::uintptr_t>(to));
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    const bool is_started = CreateProcessA(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                                           &system_->process) != FALSE;
    CloseHandle(to);
    if (!is_started) throw std::runtime_error("no process");
}

HostProcess::~HostProcess() {
    kill();
    WaitForSingleObject(system_->process.hProcess, INFINITE);
    CloseHandle(system_->process.hProcess);
    CloseHandle(system_->process.hThread);
    CloseHandle(system_->words);
}

std::optional<Told> HostProcess::listen() {
    Told told;
    DWORD count = 0;
    if (!ReadFile(system_->words, &told, sizeof told, &count, nullptr) || count != sizeof told) return std::nullopt;
    return told;
}

void HostProcess::kill() { TerminateProcess(system_->process.hProcess, kKilled); }

bool HostProcess::was_killed(std::string& how) {
    WaitForSingleObject(system_->process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(system_->process.hProcess, &code);
    how = "exit code " + std::to_string(code);
    return code == kKilled;
}

int live_if_host(int count, char** arguments) {
    if (count != 5 || std::strcmp(arguments[1], kHostWord) != 0) return -1;
    const HostTask task{arguments[2], static_cast<std::uint32_t>(std::strtoul(arguments[3], nullptr, 10))};
    const auto pipe = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(std::strtoul(arguments[4], nullptr, 10)));
    try {
        return live_as_host(task, [&](const Told& told) {
            DWORD written = 0;
            if (!WriteFile(pipe, &told, sizeof told, &written, nullptr)) std::_Exit(3);
        });
    } catch (const std::exception& error) {
        std::fprintf(stderr, "the host failed: %s\n", error.what());
    }
    return 3;
}

}  // namespace soak
