// Recovery: handles a journal found beside the file at opening.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/header.h"
#include "os/file.h"

namespace jet {

// Identifies the file that a journal is bound to: checksum of the constant part of its header page, of its commit words
// and, in Jet 3, whose header holds too little, of the identity on the page of the catalogue's definition.
std::uint64_t file_identity(ByteSpan header_page, ByteSpan objects_page);

struct Recovered {
    struct PageImage {
        PageNumber page_no = 0;
        ByteVector bytes;
    };
    std::uint32_t page_count = 0;   // of the file after the replay
    std::vector<PageImage> images;  // only when the file itself must stay unchanged
};

// Writes what the journal of the database at `path` has committed to `database`, syncs it and removes the journal; with
// `read_only` nothing on the disk changes and the pages are returned. A journal of another file, or of another state of
// it, is ignored, or set aside under another name; so is a link in its place. The journal is absent only when the
// system says so: any other failure to open it is an error. Throws os::FileError, and 3049 for a journal that belongs
// to this file but cannot be right.
Recovered recover(os::FileSystem& files, os::File& database, const std::string& path, bool read_only,
                  const FileKind& kind = {});

}  // namespace jet
