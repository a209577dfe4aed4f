// Both files of a studio as copies in a folder of their own, which take their places when all is done that is to be
// done to them. Work of any size is one step so, and needs no more memory than the engine's cache.
//
// Invariants
//  1. The studio's files are locked from the first copy on until one of them is replaced; nobody sees a part.
//  2. The folder goes away with the object. What a killed process has left is removed by the next draft.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "os/file.h"
#include "tools/studio_files.h"

namespace tools {

class StudioDraft {
public:
    // CommandError where a file is in use, or for Ctrl-C; os::FileError and jet::Error.
    explicit StudioDraft(const StudioFiles& files);
    ~StudioDraft();
    StudioDraft(const StudioDraft&) = delete;
    StudioDraft& operator=(const StudioDraft&) = delete;

    const std::string& folder() const { return folder_; }
    // Puts the copy in the place of the studio's file. Nobody may have it open any more. CommandError where not all of
    // it is on the disk; os::FileError. Then the file is as it was.
    void publish(const StudioFile& file);

private:
    struct Part {
        std::string path;  // of the studio's file, no link
        std::string copy;
        std::unique_ptr<os::File> locked;
    };

    void copy(Part& part) const;

    std::string folder_;
    std::vector<Part> parts_;
};

}  // namespace tools
