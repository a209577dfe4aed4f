#include "tests/interop/program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>

extern char** environ;

namespace interop {

namespace {

// The environment, with the few settings fixed that affect how values are printed.
std::vector<std::string> fixed_environment() {
    std::vector<std::string> settings = {"TZ=UTC", "LC_ALL=C.UTF-8"};
    for (char** entry = environ; *entry; ++entry) {
        const std::string setting = *entry;
        if (setting.starts_with("TZ=") || setting.starts_with("LC_") || setting.starts_with("MDB")) continue;
        settings.push_back(setting);
    }
    return settings;
}

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ProgramResult run_program(const std::vector<std::string>& words) {
    ProgramResult result;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return result;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::vector<std::string> arguments = words;
    std::vector<std::string> environment = fixed_environment();
    pid_t child = -1;
    const int error = posix_spawnp(&child, arguments[0].c_str(), &actions, nullptr, pointers_to(arguments).data(),
                                   pointers_to(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error == 0) {
        char buffer[65536];
        for (;;) {
            const ssize_t count = read(ends[0], buffer, sizeof buffer);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            result.output.append(buffer, static_cast<std::size_t>(count));
        }
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
    }
    close(ends[0]);
    return result;
}

bool has_program(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((folder + "/" + name).c_str(), X_OK) == 0) return true;
    }
    return false;
}

}  // namespace interop
