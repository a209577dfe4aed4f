// Shared by all interop tests: both other readers, an empty folder, a file in it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "jet/tables/database.h"
#include "tests/interop/comparison.h"
#include "tests/interop/readers.h"
#include "tests/support/temp_folder.h"

namespace interop {

// Skips, visibly, when one of the readers is not installed.
class InteropTest : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string missing = why_readers_are_missing();
        if (!missing.empty()) GTEST_SKIP() << missing;
    }

    testing_support::TempFolder folder_;
};

// Names of the sample files of Jet 3 and Jet 4, sorted; none when the folder is missing.
inline std::vector<std::string> sample_files() {
    std::vector<std::string> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(KVDB_SAMPLES, error)) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(".mdb")) files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The error number that `work` throws; 0 when it succeeds.
template <class Work>
int error_number(Work&& work) {
    try {
        work();
    } catch (const jet::Error& error) {
        return error.number();
    }
    return 0;
}

}  // namespace interop
