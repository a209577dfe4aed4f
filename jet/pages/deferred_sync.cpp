#include "jet/pages/deferred_sync.h"

namespace jet {

DeferredSync::DeferredSync(os::FileSystem& files, const std::string& journal)
    : clock_(files.clock()),
      file_(files.open(journal, os::OpenMode::kOpenSide)),
      alarm_(clock_.make_alarm([this] { sync(); })) {}

DeferredSync::~DeferredSync() = default;

// The commit is already in the journal and must not be reported as failed, so any failure to set the alarm returns
// false.
bool DeferredSync::request(std::chrono::milliseconds delay) noexcept {
    try {
        return alarm_ != nullptr && alarm_->set(clock_.now() + delay);
    } catch (...) {
        return false;
    }
}

void DeferredSync::sync() noexcept {
    try {
        file_->sync();
    } catch (...) {
        failed_ = true;
    }
}

}  // namespace jet
