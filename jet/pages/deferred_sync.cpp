#include "jet/pages/deferred_sync.h"

namespace jet {

DeferredSync::DeferredSync(os::FileSystem& files, const std::string& journal)
    : clock_(files.clock()),
      file_(files.open(journal, os::OpenMode::kOpenSide)),
      alarm_(clock_.make_alarm([this] { sync(); })) {}

DeferredSync::~DeferredSync() = default;

// Called with a commit in the journal that must not be reported as failed: so whatever keeps the alarm from being set
// is a "no".
bool DeferredSync::request() noexcept {
    try {
        return alarm_ != nullptr && alarm_->set(clock_.now() + kSyncDelay);
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
