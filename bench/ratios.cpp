#include "bench/ratios.h"

#include <algorithm>
#include <cstdio>

namespace bench {

double median_of(std::vector<double> figures) {
    if (figures.empty()) return 0;
    std::sort(figures.begin(), figures.end());
    return figures[figures.size() / 2];
}

std::string figure_text(double figure) {
    if (figure <= 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", figure < 10 ? 2 : figure < 100 ? 1 : 0, figure);
    return text;
}

std::string ratio_text(const Ratio& ratio) {
    std::string text = figure_text(ratio.median);
    if (ratio.median > 0) text += " (" + figure_text(ratio.least) + "-" + figure_text(ratio.most) + ")";
    return text;
}

std::vector<double> PassFigures::of_passes(const std::string& kind, std::int32_t size,
                                           const std::string& operation) const {
    std::vector<double> rates;
    const auto passes = figures_.find({kind, size});
    if (passes == figures_.end()) return rates;
    for (const Figures& figures : passes->second) {
        const auto found = figures.find(operation);
        if (found != figures.end()) rates.push_back(found->second);
    }
    return rates;
}

double PassFigures::rate(const std::string& kind, std::int32_t size, const std::string& operation) const {
    return median_of(of_passes(kind, size, operation));
}

Ratio PassFigures::ratio(std::int32_t size, const std::string& operation, const std::string& kind) const {
    const std::vector<double> ours = of_passes(kind, size, operation);
    const std::vector<double> peers = of_passes("sqlite", size, operation);
    std::vector<double> ratios;
    for (std::size_t i = 0; i < std::min(ours.size(), peers.size()); ++i) ratios.push_back(ours[i] / peers[i]);
    if (ratios.empty()) return {};
    const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
    return {median_of(ratios), *least, *most};
}

}  // namespace bench
