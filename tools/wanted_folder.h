// The folder that a command writes to. Where nothing comes of it, one that was made for it goes away again.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "tools/errors.h"
#include "tools/paths.h"

namespace tools {

class WantedFolder {
public:
    // `is_new`: it has just been made.
    explicit WantedFolder(const std::string& folder, bool is_new = false) : path_(system_path(folder)) {
        std::error_code error;
        is_new_ = std::filesystem::create_directories(path_, error) || is_new;
        if (error) throw CommandError("cannot make the folder " + folder + ": " + error.message());
    }
    ~WantedFolder() {
        std::error_code error;
        if (is_new_) std::filesystem::remove(path_, error);  // only an empty one
    }
    WantedFolder(const WantedFolder&) = delete;
    WantedFolder& operator=(const WantedFolder&) = delete;

private:
    std::filesystem::path path_;
    bool is_new_ = false;
};

}  // namespace tools
