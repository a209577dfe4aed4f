#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>

#include "tests/soak/isolated.h"

namespace soak {
namespace {

void write_all(int descriptor, const void* data, std::size_t bytes) {
    const char* at = static_cast<const char*>(data);
    while (bytes > 0) {
        const ssize_t written = ::write(descriptor, at, bytes);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) ::_exit(3);
        at += written;
        bytes -= static_cast<std::size_t>(written);
    }
}

}  // namespace

Outcome isolated(const std::function<Outcome()>& work) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    const pid_t process = ::fork();
    if (process < 0) throw std::runtime_error("no process");
    if (process == 0) {
        ::close(ends[0]);
        Outcome outcome;
        try {
            outcome = work();
        } catch (const std::exception& error) {
            outcome.failure += std::string(" exception: ") + error.what();
        }
        outcome.failure += failed_checks();
        const std::uint64_t numbers[] = {outcome.tried, outcome.next};
        write_all(ends[1], numbers, sizeof numbers);
        write_all(ends[1], outcome.failure.data(), outcome.failure.size());
        std::fflush(nullptr);
        ::_exit(0);
    }
    ::close(ends[1]);
    std::string bytes;
    char buffer[4096];
    for (ssize_t got = 0; (got = ::read(ends[0], buffer, sizeof buffer)) != 0;) {
        if (got > 0) bytes.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(ends[0]);
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    Outcome outcome;
    if (WIFSIGNALED(status)) {
        outcome.failure = "the process ended by signal " + std::to_string(WTERMSIG(status)) + " (" +
                          ::strsignal(WTERMSIG(status)) + ")";
    } else if (WEXITSTATUS(status) != 0) {
        outcome.failure = "the process ended with exit code " + std::to_string(WEXITSTATUS(status));
    }
    std::uint64_t numbers[2] = {};
    if (bytes.size() >= sizeof numbers) {
        std::memcpy(numbers, bytes.data(), sizeof numbers);
        outcome.tried = numbers[0];
        outcome.next = numbers[1];
        outcome.failure += bytes.substr(sizeof numbers);
    }
    return outcome;
}

}  // namespace soak
