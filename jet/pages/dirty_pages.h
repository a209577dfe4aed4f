// The pages that are committed but not yet in the .mdb; writes them to it.
#pragma once

#include <cstdint>
#include <vector>

#include "jet/pages/page_cache.h"
#include "jet/pages/page_cipher.h"
#include "os/file.h"

namespace jet {

class DirtyPages {
public:
    // Reserves memory so that the next `count` calls of add() need none.
    void make_room(std::size_t count);
    void add(Frame& frame);
    // Writes all of them, adjacent pages in one write. Throws os::FileError; all of them then stay dirty. Needs no
    // memory: without any for a run of pages, writes each page on its own.
    void write_to(os::File& file, const PageCache& cache, const PageCipher& cipher = {});
    // Pages written so far.
    std::uint64_t written() const { return written_; }

private:
    std::vector<PageNumber> pages_;
    std::uint64_t written_ = 0;
};

}  // namespace jet
