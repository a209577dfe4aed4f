// The folder of a new studio in the making. Its files are made in a draft folder inside of it and move up when all is
// done: whatever ends the work, the folder has a whole studio or none.
#pragma once

#include <string>

#include "tools/wanted_folder.h"

namespace tools {

class DemoFolder {
public:
    // Makes the folder if needed; "": a new one in the system's folder for temporary files. CommandError where a studio
    // is in it already.
    explicit DemoFolder(const std::string& wanted);
    // Removes what was made, unless it was kept.
    ~DemoFolder();
    DemoFolder(const DemoFolder&) = delete;
    DemoFolder& operator=(const DemoFolder&) = delete;

    const std::string& path() const { return path_; }
    // Where the files are made.
    const std::string& draft() const { return draft_; }
    // Moves the closed files to their place.
    void keep();

private:
    std::string path_;
    WantedFolder folder_;
    std::string draft_;
};

}  // namespace tools
