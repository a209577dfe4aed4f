// A studio's file with every kind of row, what it holds and where, and damage done to it.
//
// A row is undamaged when every byte that it consists of can still be found: its own, its slot's and the slot's before
// it, the pointer's that leads to it, and those of its memos. Pages that changed places are all there.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/format.h"
#include "jet/base/types.h"

namespace testing_salvage {

// Bytes [begin, end) of a page.
struct Extent {
    jet::PageNumber page = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
};

struct TrueRow {
    std::string content;  // every value, in the order of the columns' names
    std::string key;      // "" in a table without one
    std::vector<Extent> extents;
};

struct Truth {
    const jet::Format* format = &jet::kJet4;
    jet::ByteVector file;
    std::map<std::string, std::vector<TrueRow>> tables;
    std::size_t rows() const;
};

// A studio's main file of today with about that many rows: moved ones, deleted ones, memos in every form.
Truth make_truth(const std::string& path, const jet::Format& format, std::size_t rows, std::uint32_t seed);

// The rows of a file, without their places.
std::map<std::string, std::vector<TrueRow>> rows_of(const std::string& path);

struct DamagedFile {
    std::string name;  // what was done
    jet::ByteVector bytes;
    std::map<jet::PageNumber, jet::PageNumber> moved;  // where a page's content is now
};

// The damages of one round, `count` of them, each from the sound file; the same for the same seed.
void for_each_damage(const Truth& truth, std::size_t count, std::uint32_t seed,
                     const std::function<void(const DamagedFile& damaged)>& visit);

struct Score {
    std::size_t undamaged = 0;  // rows of the old file
    std::size_t came_back = 0;  // of these
    std::size_t touched = 0;    // rows that the damage touched
    std::size_t touched_back = 0;
    std::size_t cut = 0;    // undamaged rows that came back with a part of a memo only
    std::size_t mixed = 0;  // undamaged rows that came back with a page of another memo
    std::size_t invented =
        0;  // rows of the new file that are no living row of the old one, nor what damage made of one
    std::string first_invented;
    std::string first_missing;
    double share() const {
        return undamaged == 0 ? 1 : static_cast<double>(came_back) / static_cast<double>(undamaged);
    }
};

Score score_of(const Truth& truth, const DamagedFile& damaged, const std::string& salvaged);

}  // namespace testing_salvage
