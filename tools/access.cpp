#include "tools/access.h"

#include <filesystem>
#include <system_error>

#include "os/file.h"
#include "tools/errors.h"
#include "tools/paths.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

fs::perms permissions_of(const std::string& path) { return fs::status(system_path(path)).permissions(); }

fs::perms with_entering(fs::perms permissions) {
    constexpr fs::perms kRead = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    // Each right to enter is two bits below the one to read.
    return permissions | static_cast<fs::perms>(static_cast<unsigned>(permissions & kRead) >> 2);
}

void take_one(const std::vector<std::string>& sources, const std::string& made, bool is_folder) {
    os::file_system().copy_access(sources.front(), made);
    if (!fs::exists(system_path(made))) return;  // a file system of a test's own, which has no permissions
    fs::perms permissions = permissions_of(made);
    for (const std::string& source : sources) permissions &= permissions_of(source);
    permissions |= fs::perms::owner_read | fs::perms::owner_write;
    std::error_code error;
    fs::permissions(system_path(made), is_folder ? with_entering(permissions) : permissions, error);
    // A file system without permissions has none to give away.
    if (!error || error == std::errc::operation_not_permitted || error == std::errc::not_supported) return;
    throw CommandError("cannot set the permissions of " + made + ": " + error.message());
}

}  // namespace

void take_access(const std::vector<std::string>& sources, const std::string& made) {
    if (sources.empty()) return;
    const bool is_folder = fs::is_directory(system_path(made));
    if (is_folder) {
        for (const fs::directory_entry& entry : fs::directory_iterator(system_path(made))) {
            take_access(sources, path_text(entry.path()));
        }
    }
    take_one(sources, made, is_folder);
}

}  // namespace tools
