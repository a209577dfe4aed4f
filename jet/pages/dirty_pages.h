// The pages that are committed and not yet in the .mdb, and their way into it.
#pragma once

#include <cstdint>
#include <vector>

#include "jet/pages/page_cache.h"
#include "jet/pages/page_cipher.h"
#include "os/file.h"

namespace jet {

class DirtyPages {
public:
    // So that the next `count` calls of add() need no memory.
    void make_room(std::size_t count);
    void add(Frame& frame);
    // Writes all of them, neighbours in one go. Throws os::FileError; all of them are then as dirty as before. Needs no
    // memory: without any for a run of pages, each is written for itself.
    void write_to(os::File& file, const PageCache& cache, const PageCipher& cipher = {});
    // Pages written so far.
    std::uint64_t written() const { return written_; }

private:
    std::vector<PageNumber> pages_;
    std::uint64_t written_ = 0;
};

}  // namespace jet
