#include "tools/export/draft.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "os/file.h"
#include "tools/access.h"
#include "tools/errors.h"
#include "tools/paths.h"

namespace tools {

namespace fs = std::filesystem;

Draft::Draft(const std::string& path, bool is_folder) : path_(path) {
    if (path_.empty()) throw UsageError("there is no place to write to: its name is empty");
    std::error_code error;
    while (path_.size() > 1 && (path_.back() == '/' || path_.back() == '\\')) path_.pop_back();
    draft_ = path_ + ".kvdb-draft";  // a name that nobody gives to anything else
    const fs::path folder = system_path(path_).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error)) {
        throw CommandError("there is no folder " + path_text(folder) + " to write to");
    }
    if (fs::exists(fs::symlink_status(system_path(path_), error))) {
        throw CommandError(path_ +
                           " is there already, and an export overwrites nothing; name another place, or remove "
                           "it first");
    }
    fs::remove_all(system_path(draft_), error);  // of an export that was killed
    if (!is_folder) {
        os::file_system().open(draft_, os::OpenMode::kCreateSide);
        return;
    }
    if (!fs::create_directory(system_path(draft_), error)) {
        throw CommandError("cannot make the folder " + draft_ + ": " + error.message());
    }
    fs::permissions(system_path(draft_), fs::perms::owner_all, error);  // a file system may have none
}

Draft::~Draft() {
    std::error_code error;
    if (!is_kept_) fs::remove_all(system_path(draft_), error);
}

void Draft::keep(const std::vector<std::string>& sources) {
    take_access(sources, draft_);
    std::error_code error;
    fs::rename(system_path(draft_), system_path(path_), error);
    if (error) throw CommandError("cannot give " + draft_ + " the name " + path_ + ": " + error.message());
    is_kept_ = true;
}

OutFile::OutFile(const std::string& path) : path_(path), out_(system_path(path), std::ios::binary | std::ios::trunc) {
    if (!out_) fail();
}

void OutFile::write(std::string_view text) {
    errno = 0;
    out_.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out_) fail();
}

void OutFile::close() {
    errno = 0;
    out_.close();
    if (!out_) fail();
}

void OutFile::fail() const {
    const int reason = errno;
    throw CommandError(path_ + " cannot be written" +
                       (reason != 0 ? ": " + std::generic_category().message(reason) : std::string()));
}

}  // namespace tools
