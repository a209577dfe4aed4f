// The one translation of system faults into engine numbers.
#pragma once

#include <utility>

#include "jet/base/error.h"
#include "os/file.h"

namespace jet {

[[noreturn]] inline void rethrow_as_engine_error(const os::FileError& error) {
    switch (error.fault()) {
        case os::FileFault::kNotFound: fail(errors::kFileNotFound, error.what());
        case os::FileFault::kBadPath:
        case os::FileFault::kLink: fail(errors::kBadPath, error.what());
        case os::FileFault::kExists: fail(errors::kFileExists, error.what());
        case os::FileFault::kAccessDenied: fail(errors::kAccessDenied, error.what());
        case os::FileFault::kLocked: fail(errors::kHeldExclusively, error.what());
        case os::FileFault::kDiskFull: fail(errors::kDiskFull, error.what());
        case os::FileFault::kIo: break;
    }
    fail(errors::kDiskError, error.what());
}

// Runs `work`; a fault of the system comes out as jet::Error.
template <class Work>
decltype(auto) with_engine_errors(Work&& work) {
    try {
        return std::forward<Work>(work)();
    } catch (const os::FileError& error) {
        rethrow_as_engine_error(error);
    }
}

}  // namespace jet
