// An empty folder for one test.
#pragma once

#include <string>

namespace testing_support {

// Creates a new empty folder; removes it with its content when it goes out of scope.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Full path without a trailing separator.
    const std::string& path() const { return path_; }
    // Full path of a file of that name in the folder.
    std::string file(const std::string& name) const;

private:
    std::string path_;
};

}  // namespace testing_support
