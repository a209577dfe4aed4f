// Brings the journal to the disk when nobody else does: what a burst of commits has left unsynced waits no longer than
// kSyncDelay.
//
// Invariants
//  1. It has its own opening of the journal, touches no page, and an edit never waits for it. With an opening of its
//     own, an error that the system reports once reaches it and the pager both.
//  2. After a sync that failed nobody knows what the disk holds: from then on `failed` is true.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "os/clock.h"
#include "os/file.h"

namespace jet {

// From the first unsynced commit to the beginning of its sync. What is promised is 250 ms to the end of it.
inline constexpr std::chrono::milliseconds kSyncDelay{150};

class DeferredSync {
public:
    // `journal` is the existing journal's path. Throws os::FileError.
    DeferredSync(os::FileSystem& files, const std::string& journal);
    // Waits for a sync that is under way, but not in a forked child.
    ~DeferredSync();
    DeferredSync(const DeferredSync&) = delete;
    DeferredSync& operator=(const DeferredSync&) = delete;

    // Has the journal synced in kSyncDelay, or when an earlier request falls due. False: it will not be, the caller
    // must do it.
    bool request() noexcept;
    bool failed() const { return failed_; }
    // Forgets what was requested, and waits as the destructor does; nothing is synced from then on.
    void stop() noexcept { alarm_.reset(); }

private:
    void sync() noexcept;

    os::Clock& clock_;
    std::unique_ptr<os::File> file_;
    std::atomic<bool> failed_{false};
    std::unique_ptr<os::Alarm> alarm_;  // last: it is gone before what it works with
};

}  // namespace jet
