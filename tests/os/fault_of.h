// The fault that work ends with.
#pragma once

#include <gtest/gtest.h>

#include "os/file.h"

namespace testing_support {

// The fault of what `work` throws; the running test fails when it throws nothing.
template <class Work>
os::FileFault fault_of(Work&& work) {
    try {
        work();
    } catch (const os::FileError& error) {
        return error.fault();
    }
    ADD_FAILURE() << "nothing was thrown";
    return os::FileFault::kIo;
}

}  // namespace testing_support
