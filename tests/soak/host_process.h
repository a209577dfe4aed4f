// A host in its own process, which runs a day through the gates of a studio and reports each step; its creator kills
// it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tests/soak/ledger.h"

namespace soak {

// A report of the host. When the call returns, it has left the host.
struct Told {
    enum What : std::int32_t { kStarted, kOpened, kBegun, kSucceeded, kFailed, kClosed, kCannotOpen };
    What what = kStarted;
    Operation operation;
};

struct HostTask {
    std::string folder;  // contains the library, or receives it
    std::uint32_t seed = 0;
};

class HostProcess {
public:
    explicit HostProcess(const HostTask& task);
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // Waits for the next report. None: the host has exited.
    std::optional<Told> listen();
    void kill();
    // Waits for the exit. True when the kill ended it; otherwise `how` tells what did.
    bool was_killed(std::string& how);

private:
    struct System;
    std::unique_ptr<System> system_;
};

// The host's work until it is killed; returns the exit code of a failure. `tell` takes a Told.
template <class Tell>
int live_as_host(const HostTask& task, Tell&& tell);

#ifdef _WIN32
// If this process was started as a host, runs as one and returns its exit code. Otherwise -1.
int live_if_host(int count, char** arguments);
#endif

}  // namespace soak

#include "tests/soak/host_life.h"
