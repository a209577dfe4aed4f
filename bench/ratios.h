// What the measuring processes of several passes have told of projects, and the table that it makes.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench/measure.h"

namespace bench {

// How many times as fast as the peer: the median of the passes, and the least and most of them.
struct Ratio {
    double median = 0;  // 0: not measured
    double least = 0;
    double most = 0;
};

class ProjectFigures {
public:
    explicit ProjectFigures(std::vector<std::int32_t> sizes) : sizes_(std::move(sizes)) {}

    void add(const std::string& kind, std::int32_t size, const Figures& figures) {
        figures_[{kind, size}].push_back(figures);
    }
    const std::vector<std::int32_t>& sizes() const { return sizes_; }

    // Median of the passes; 0 where it was not measured.
    double rate(const std::string& kind, std::int32_t size, const std::string& operation) const;
    // Each pass for itself, so that what disturbs the machine for a while disturbs both.
    Ratio ratio(std::int32_t size, const std::string& operation, const std::string& ours = kOurs) const;

    // The table of a kind of store beside the peers.
    void print(const std::string& ours) const;

private:
    std::vector<double> of_passes(const std::string& kind, std::int32_t size, const std::string& operation) const;
    void print_operation(const std::string& ours, const char* operation) const;
    void print_megabytes(const std::string& ours, const char* label, const char* figure) const;

    std::vector<std::int32_t> sizes_;
    std::map<std::pair<std::string, std::int32_t>, std::vector<Figures>> figures_;
};

}  // namespace bench
