// Before-images of the pages that the open transactions have changed, level by level.
//
// Invariants
//  1. A level holds one entry for each page it has changed: the page at the start of the level.
//  2. Rolling back and merging need no memory.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "jet/pages/page_cache.h"

namespace jet {

class UndoLog {
public:
    struct Entry {
        FrameRef place;
        int saved_level_before = 0;
        std::unique_ptr<std::uint8_t[]> image;  // null: the page did not exist before
        bool changed = true;                    // result of find_changes()
    };

    UndoLog();

    int depth() const { return static_cast<int>(levels_.size()); }
    void begin(std::uint32_t page_count) { levels_.push_back({entries_.size(), page_count}); }
    // Page count of the file when the innermost level began.
    std::uint32_t page_count_before() const { return levels_.back().page_count; }

    // Saves the page's current bytes in the innermost level, unless it already has an image of the page.
    void save(FrameRef place);
    // Reserves memory so that the next add_new() needs none.
    void make_room_for_new();
    // Records a page that the innermost level has added.
    void add_new(FrameRef place);

    // The entries of the innermost level.
    std::span<Entry> entries();
    // Marks the entries of the innermost level whose bytes differ from their images; false when no page has changed.
    bool find_changes();

    // Ends the innermost level; its changes become the outer level's.
    void merge();
    // Ends the only level; its changes are final.
    void accept();
    // Ends the innermost level, undoes its changes and removes added pages from the cache.
    void roll_back(PageCache& cache);

private:
    struct Level {
        std::size_t first_entry;
        std::uint32_t page_count;
    };

    void keep_buffer(std::unique_ptr<std::uint8_t[]> buffer) noexcept;
    void end_level(std::size_t entries_left);

    std::vector<Entry> entries_;  // of all levels, outermost first
    std::vector<Level> levels_;
    std::vector<std::unique_ptr<std::uint8_t[]>> spare_buffers_;
};

}  // namespace jet
