// Maps page numbers to frame numbers, in chunks allocated at first use: a large file costs nothing until its pages are
// read.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "jet/base/types.h"

namespace jet {

class FrameTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    std::uint32_t find(PageNumber page_no) const {
        const std::size_t chunk = page_no / kChunk;
        return chunk < chunks_.size() && chunks_[chunk] ? (*chunks_[chunk])[page_no % kChunk] : kNone;
    }
    void set(PageNumber page_no, std::uint32_t frame_no) {
        const std::size_t chunk = page_no / kChunk;
        if (chunk >= chunks_.size()) chunks_.resize(chunk + 1);
        if (!chunks_[chunk]) {
            chunks_[chunk] = std::make_unique<Chunk>();
            chunks_[chunk]->fill(kNone);
        }
        (*chunks_[chunk])[page_no % kChunk] = frame_no;
    }
    // Needs no memory.
    void clear(PageNumber page_no) {
        if (find(page_no) != kNone) set(page_no, kNone);
    }

private:
    static constexpr std::size_t kChunk = 1024;
    using Chunk = std::array<std::uint32_t, kChunk>;
    std::vector<std::unique_ptr<Chunk>> chunks_;
};

}  // namespace jet
