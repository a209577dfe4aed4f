// What an opening does with a journal that lies beside the file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/pages/header.h"
#include "os/file.h"

namespace jet {

// What never changes in a file's header page, its commit words, and in Jet 3, whose header holds too little, the
// identity on the page of the catalogue's definition: names the file that a journal is bound to.
std::uint64_t file_identity(ByteSpan header_page, ByteSpan objects_page);

struct Recovered {
    struct PageImage {
        PageNumber page_no = 0;
        ByteVector bytes;
    };
    std::uint32_t page_count = 0;   // of the file as the journal has left it
    std::vector<PageImage> images;  // only where the file itself must stay as it is
};

// Brings what the journal of the database at `path` has committed into `database`, syncs that and removes the journal;
// with `read_only` nothing on the disk changes and the pages are given back. A journal that belongs to another file or
// to another state of it is ignored, or set aside under another name; so is a link in its place. The journal is absent
// only when the system says so: any other failure to open it is an error. Throws os::FileError, and 3049 for a journal
// that is ours but cannot be right.
Recovered recover(os::FileSystem& files, os::File& database, const std::string& path, bool read_only,
                  const FileKind& kind = {});

}  // namespace jet
