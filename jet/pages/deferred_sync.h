// Background sync of the journal: commits that no sync point has synced wait no longer than kSyncDelay.
//
// Invariants
//  1. It has its own opening of the journal, touches no page, and an edit never waits for it. With an opening of its
//     own, an error that the system reports once reaches both it and the pager.
//  2. After a failed sync the content of the disk is unknown: from then on `failed` is true.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "os/clock.h"
#include "os/file.h"

namespace jet {

// From the first unsynced commit to the start of its sync. The promise is 250 ms to the end of the sync.
inline constexpr std::chrono::milliseconds kSyncDelay{150};

class DeferredSync {
public:
    // `journal` is the existing journal's path. Throws os::FileError.
    DeferredSync(os::FileSystem& files, const std::string& journal);
    // Waits for a sync in progress, but not in a forked child.
    ~DeferredSync();
    DeferredSync(const DeferredSync&) = delete;
    DeferredSync& operator=(const DeferredSync&) = delete;

    // Schedules a sync of the journal after `delay`, or earlier if one is already scheduled. False: it will not happen,
    // the caller must sync.
    bool request(std::chrono::milliseconds delay) noexcept;
    bool failed() const { return failed_; }
    // Forgets what was requested, and waits as the destructor does; nothing is synced from then on.
    void stop() noexcept { alarm_.reset(); }

private:
    void sync() noexcept;

    os::Clock& clock_;
    std::unique_ptr<os::File> file_;
    std::atomic<bool> failed_{false};
    std::unique_ptr<os::Alarm> alarm_;  // last member: destroyed before the members it uses
};

}  // namespace jet
