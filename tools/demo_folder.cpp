#include "tools/demo_folder.h"

#include "os/file.h"
#include "os/system.h"
#include "tools/open_file.h"
#include "tools/rescue/checked_copy.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

// An empty folder of our own in the system's folder for such.
std::string fresh_folder() {
    for (int n = 1;; ++n) {
        const fs::path candidate = fs::temp_directory_path() / ("kvdb-demo-" + std::to_string(n));
        std::error_code error;
        if (fs::create_directory(candidate, error)) return path_text(candidate);
        if (error || n == 10000) throw CommandError("cannot make a folder in " + path_text(fs::temp_directory_path()));
    }
}

}  // namespace

DemoFolder::DemoFolder(const std::string& wanted)
    : path_(wanted.empty() ? fresh_folder() : wanted), folder_(path_, wanted.empty()) {
    if (StudioFiles(path_).any()) {
        throw CommandError("there is a studio in " + path_ + " already; the demonstration wants a folder without one");
    }
    draft_ = os::join_path(path_, "studio.kvdb-draft");  // a name that nobody gives to anything else
    std::error_code error;
    fs::remove_all(system_path(draft_), error);  // of a demonstration that was killed
    fs::create_directory(system_path(draft_), error);
    if (error) throw CommandError("cannot make the folder " + draft_ + ": " + error.message());
}

DemoFolder::~DemoFolder() {
    std::error_code error;
    fs::remove_all(system_path(draft_), error);
}

void DemoFolder::keep() {
    // The studio's file last: with it the folder is a studio's.
    const std::string invoices = os::join_path(path_, kInvoiceFile);
    const std::string studio = os::join_path(path_, kStudioFile);
    os::file_system().rename(os::join_path(draft_, kInvoiceFile), invoices);
    try {
        os::file_system().rename(os::join_path(draft_, kStudioFile), studio);
    } catch (...) {
        remove_quietly(invoices);
        throw;
    }
    os::file_system().sync_folder_of(studio);
}

}  // namespace tools
