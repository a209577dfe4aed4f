#include "tests/soak/drive_worker.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace soak {

WorkerProcess::WorkerProcess(const std::vector<std::string>& command, const std::string& folder,
                             const std::string& log) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    process_ = ::fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ == 0) {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int errors = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int nothing = ::open("/dev/null", O_RDONLY);
        if (errors < 0 || nothing < 0 || ::chdir(folder.c_str()) != 0) ::_exit(126);
        ::dup2(nothing, 0);
        ::dup2(ends[1], 1);
        ::dup2(errors, 2);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::setpgid(process_, process_);
    ::close(ends[1]);
    lines_ = ends[0];
}

WorkerProcess::~WorkerProcess() {
    kill();
    wait();
    ::close(lines_);
}

bool WorkerProcess::read() {
    char buffer[4096];
    const ssize_t got = ::read(lines_, buffer, sizeof buffer);
    if (got < 0) return errno == EINTR;
    unread_.append(buffer, static_cast<std::size_t>(got));
    return got != 0;
}

std::optional<std::string> WorkerProcess::line() {
    const std::size_t end = unread_.find('\n');
    if (end == std::string::npos) return std::nullopt;
    std::string text = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    if (!text.empty() && text.back() == '\r') text.pop_back();
    return text;
}

void WorkerProcess::kill() {
    if (!has_ended_) ::kill(-process_, SIGKILL);
}

std::string WorkerProcess::wait() {
    if (!has_ended_) {
        while (::waitpid(process_, &status_, 0) < 0 && errno == EINTR) {
        }
        // Also kills the processes that it has started.
        ::kill(-process_, SIGKILL);
        has_ended_ = true;
    }
    if (WIFSIGNALED(status_)) {
        return "signal " + std::to_string(WTERMSIG(status_)) + " (" + ::strsignal(WTERMSIG(status_)) + ")";
    }
    return WEXITSTATUS(status_) == 0 ? std::string() : "exit code " + std::to_string(WEXITSTATUS(status_));
}

}  // namespace soak
