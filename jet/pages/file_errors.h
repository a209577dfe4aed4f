// The one translation of system faults to engine error numbers.
#pragma once

#include <utility>

#include "jet/base/error.h"
#include "os/file.h"

namespace jet {

inline int engine_number(os::FileFault fault) {
    switch (fault) {
        case os::FileFault::kNotFound: return errors::kFileNotFound;
        case os::FileFault::kBadPath:
        case os::FileFault::kLink: return errors::kBadPath;
        case os::FileFault::kExists: return errors::kFileExists;
        case os::FileFault::kAccessDenied: return errors::kAccessDenied;
        case os::FileFault::kLocked: return errors::kHeldExclusively;
        case os::FileFault::kDiskFull: return errors::kDiskFull;
        case os::FileFault::kIo: break;
    }
    return errors::kDiskError;
}

[[noreturn]] inline void rethrow_as_engine_error(const os::FileError& error) {
    fail(engine_number(error.fault()), error.what());
}

// Runs `work`; throws a fault of the system as jet::Error.
template <class Work>
decltype(auto) with_engine_errors(Work&& work) {
    try {
        return std::forward<Work>(work)();
    } catch (const os::FileError& error) {
        rethrow_as_engine_error(error);
    }
}

}  // namespace jet
