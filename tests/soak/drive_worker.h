// A worker's process: started with a pipe to its output, read line by line, killed together with every process that it
// started.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace soak {

class WorkerProcess {
public:
    // Its standard error goes to the file `log`, truncated first. Names are relative to `folder`.
    WorkerProcess(const std::vector<std::string>& command, const std::string& folder, const std::string& log);
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    int descriptor() const { return lines_; }
    // Reads the available output; false at its end.
    bool read();
    // The next complete line of the output.
    std::optional<std::string> line();
    void kill();
    // Waits for the exit; returns how it ended, "" for exit code 0.
    std::string wait();

private:
    pid_t process_ = -1;
    int lines_ = -1;
    std::string unread_;
    bool has_ended_ = false;
    int status_ = 0;
};

}  // namespace soak
