#include "tools/studio_draft.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "os/draft.h"
#include "os/system.h"
#include "tools/errors.h"
#include "tools/file_copies.h"
#include "tools/long_work.h"
#include "tools/open_file.h"
#include "tools/paths.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kShareBytes = 1u << 20;
constexpr char kBegin[] = "kvdb-import";  // os::draft_name adds the rest

std::unique_ptr<os::File> locked_file(const std::string& path) {
    // What a journal holds is part of the copy.
    const auto kept = os::file_system().keep_lock(path);
    write_journal_back(path);
    return open_system_file(path, os::OpenMode::kExclusive);
}

void remove_folder(const std::string& folder) {
    std::error_code error;  // what stays is removed by the next draft
    fs::remove_all(system_path(folder), error);
}

// Only with the studio's files locked: then no running process has one.
void remove_left_drafts(const std::string& folder) {
    for (const std::string& path : os::file_system().longer_names(os::join_path(folder, kBegin) + "-new-")) {
        remove_folder(path);
    }
}

}  // namespace

StudioDraft::StudioDraft(const StudioFiles& files) : folder_(os::draft_name(os::join_path(files.folder(), kBegin))) {
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        const std::string path = os::file_system().resolved(file->path());
        parts_.push_back({path, os::join_path(folder_, file->name()), locked_file(path)});
    }
    remove_left_drafts(files.folder());
    std::error_code error;
    fs::create_directory(system_path(folder_), error);
    if (error) throw CommandError("cannot make the folder " + folder_ + ": " + error.message());
    try {
        fs::permissions(system_path(folder_), fs::perms::owner_all, error);
        for (Part& part : parts_) copy(part);
    } catch (...) {
        remove_folder(folder_);
        throw;
    }
}

StudioDraft::~StudioDraft() { remove_folder(folder_); }

void StudioDraft::copy(Part& part) const {
    LongWork work("MB copied", part.locked->size() / kShareBytes);
    {
        const auto made = os::file_system().open(part.copy, os::OpenMode::kCreateSide);
        std::vector<std::uint8_t> share(kShareBytes);
        for (std::uint64_t at = 0;;) {
            const std::size_t got = part.locked->read(at, share);
            if (got == 0) break;
            made->write(at, std::span<const std::uint8_t>(share).first(got));
            at += got;
            work.step();
        }
        made->sync();
    }
    os::file_system().copy_access(part.path, part.copy);
}

void StudioDraft::publish(const StudioFile& file) {
    const auto part = std::find_if(parts_.begin(), parts_.end(), [&](const Part& candidate) {
        return candidate.copy == os::join_path(folder_, file.name());
    });
    // The engine keeps its journal where it could not write all of it into the file.
    if (os::file_system().exists(part->copy + "-journal")) {
        throw CommandError(part->copy + " could not be written as a whole; is the disk full?");
    }
    replace_locked(part->copy, part->path, std::move(part->locked));
    os::file_system().sync_folder_of(part->path);
}

}  // namespace tools
