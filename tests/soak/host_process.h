// A host in a process of its own, which works a day through the gates of a studio and tells of each step; the one who
// made it kills it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tests/soak/ledger.h"

namespace soak {

// A word of the host, out of its hands when it has been told.
struct Told {
    enum What : std::int32_t { kStarted, kOpened, kBegun, kSucceeded, kFailed, kClosed, kCannotOpen };
    What what = kStarted;
    Operation operation;
};

struct HostTask {
    std::string folder;  // with the library in it, or to be given it
    std::uint32_t seed = 0;
};

class HostProcess {
public:
    explicit HostProcess(const HostTask& task);
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // Waits for the next word. None: the host has ended.
    std::optional<Told> listen();
    void kill();
    // Waits for its end. True when it was the kill that ended it; `how` says how it ended otherwise.
    bool was_killed(std::string& how);

private:
    struct System;
    std::unique_ptr<System> system_;
};

// What the host does until it is killed; returns its exit code when something went wrong. `tell` takes a Told.
template <class Tell>
int live_as_host(const HostTask& task, Tell&& tell);

#ifdef _WIN32
// Where this process was started as a host: lives as one and returns its exit code. Otherwise -1.
int live_if_host(int count, char** arguments);
#endif

}  // namespace soak

#include "tests/soak/host_life.h"
