// Owns the lifetime of a test's folder. Invariant: no two living TempFolder objects, of any process, have the same
// path.
#include "tests/support/temp_folder.h"

#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>

#include "os/system.h"

namespace testing_support {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    const fs::path base = fs::canonical(fs::temp_directory_path());
    std::random_device random;
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const fs::path candidate = base / ("kvdb_test_" + std::to_string(random()));
        if (fs::create_directory(candidate)) {
            path_ = candidate.string();
            return;
        }
    }
    throw std::runtime_error("No free name for a test folder in " + base.string());
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    // A test may have removed its own write permission.
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(path_, ignored);
}

std::string TempFolder::file(const std::string& name) const { return os::join_path(path_, name); }

}  // namespace testing_support
