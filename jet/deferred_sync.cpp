#include "jet/deferred_sync.h"

namespace jet {

DeferredSync::DeferredSync(os::FileSystem& files, const std::string& journal)
    : clock_(files.clock()),
      file_(files.open(journal, os::OpenMode::kOpenSide)),
      alarm_(clock_.make_alarm([this] { sync(); })) {}

DeferredSync::~DeferredSync() = default;

bool DeferredSync::request() { return alarm_->set(clock_.now() + kSyncDelay); }

void DeferredSync::sync() noexcept {
    try {
        file_->sync();
    } catch (...) {
        failed_ = true;
    }
}

}  // namespace jet
