// What the measuring processes of several passes have told, and how many times as fast as the peer that is.
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

double median_of(std::vector<double> figures);

// A figure with the digits that say something; a dash for none.
std::string figure_text(double figure);
// The median with the least and most.
std::string ratio_text(const Ratio& ratio);

class PassFigures {
public:
    // `size` is the number of projects, or kWholeStudio.
    void add(const std::string& kind, std::int32_t size, const Figures& figures) {
        figures_[{kind, size}].push_back(figures);
    }

    // Median of the passes; 0 where it was not measured.
    double rate(const std::string& kind, std::int32_t size, const std::string& operation) const;
    // Each pass for itself, so that what disturbs the machine for a while disturbs both.
    Ratio ratio(std::int32_t size, const std::string& operation, const std::string& ours = kOurs) const;

private:
    std::vector<double> of_passes(const std::string& kind, std::int32_t size, const std::string& operation) const;

    std::map<std::pair<std::string, std::int32_t>, std::vector<Figures>> figures_;
};

}  // namespace bench
