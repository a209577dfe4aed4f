// The host is a fork of this process.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>

#include "tests/soak/host_process.h"

namespace soak {

struct HostProcess::System {
    pid_t process = -1;
    int words = -1;
    int status = 0;
    bool has_ended = false;

    void wait() {
        if (has_ended) return;
        while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
        has_ended = true;
    }
};

HostProcess::HostProcess(const HostTask& task) : system_(std::make_unique<System>()) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    system_->process = ::fork();
    if (system_->process < 0) throw std::runtime_error("no process");
    if (system_->process == 0) {
        ::close(ends[0]);
        int code = 3;
        try {
            code = live_as_host(task, [&](const Told& told) {
                // Shorter than PIPE_BUF: whole or not at all.
                if (::write(ends[1], &told, sizeof told) != sizeof told) ::_exit(3);
            });
        } catch (const std::exception& error) {
            std::fprintf(stderr, "the host failed: %s\n", error.what());
        }
        ::_exit(code);
    }
    ::close(ends[1]);
    system_->words = ends[0];
}

HostProcess::~HostProcess() {
    kill();
    system_->wait();
    ::close(system_->words);
}

std::optional<Told> HostProcess::listen() {
    Told told;
    ssize_t got = 0;
    while ((got = ::read(system_->words, &told, sizeof told)) < 0 && errno == EINTR) {
    }
    if (got != sizeof told) return std::nullopt;
    return told;
}

void HostProcess::kill() {
    if (!system_->has_ended) ::kill(system_->process, SIGKILL);
}

bool HostProcess::was_killed(std::string& how) {
    system_->wait();
    const int status = system_->status;
    how = WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                              : "exit code " + std::to_string(WEXITSTATUS(status));
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

}  // namespace soak
