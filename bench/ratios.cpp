#include "bench/ratios.h"

#include <algorithm>
#include <cstdio>

#include "bench/projects.h"

namespace bench {
namespace {

double median_of(std::vector<double> figures) {
    if (figures.empty()) return 0;
    std::sort(figures.begin(), figures.end());
    return figures[figures.size() / 2];
}

double microseconds(double rate) { return rate > 0 ? 1e6 / rate : 0; }

// A figure with the digits that say something; a dash for none.
std::string figure_text(double figure) {
    if (figure <= 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", figure < 10 ? 2 : figure < 100 ? 1 : 0, figure);
    return text;
}

void print_legend() {
    std::printf(
        "Microseconds a call (medians). SQLite: WAL, synchronous NORMAL. LMDB: no sync. Ratio: how many times as fast\n"
        "as SQLite, with the least and most of the passes. Growth: cost of a call at the last size over the "
        "first.\n\n");
}

}  // namespace

std::vector<double> ProjectFigures::of_passes(const std::string& kind, std::int32_t size,
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

double ProjectFigures::rate(const std::string& kind, std::int32_t size, const std::string& operation) const {
    return median_of(of_passes(kind, size, operation));
}

Ratio ProjectFigures::ratio(std::int32_t size, const std::string& operation, const std::string& kind) const {
    const std::vector<double> ours = of_passes(kind, size, operation);
    const std::vector<double> peers = of_passes("sqlite", size, operation);
    std::vector<double> ratios;
    for (std::size_t i = 0; i < std::min(ours.size(), peers.size()); ++i) ratios.push_back(ours[i] / peers[i]);
    if (ratios.empty()) return {};
    const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
    return {median_of(ratios), *least, *most};
}

void ProjectFigures::print_operation(const std::string& ours, const char* operation) const {
    std::printf("%-22s", operation);
    for (const std::int32_t size : sizes_) {
        const auto cost = [&](const std::string& kind) {
            return figure_text(microseconds(rate(kind, size, operation)));
        };
        const Ratio all = ratio(size, operation, ours);
        std::string spread = figure_text(all.median);
        if (all.median > 0) spread += " (" + figure_text(all.least) + "-" + figure_text(all.most) + ")";
        std::printf(" | %8s %8s %8s %18s", cost(ours).c_str(), cost("sqlite").c_str(), cost("lmdb").c_str(),
                    spread.c_str());
    }
    const double first = rate(ours, sizes_.front(), operation);
    const double last = rate(ours, sizes_.back(), operation);
    if (sizes_.size() > 1) std::printf(" | %6s", figure_text(last > 0 ? first / last : 0).c_str());
    std::printf("\n");
}

void ProjectFigures::print_megabytes(const std::string& ours, const char* label, const char* figure) const {
    std::printf("%-22s", label);
    for (const std::int32_t size : sizes_) {
        const auto megabytes = [&](const std::string& kind) { return figure_text(rate(kind, size, figure) / 1e6); };
        std::printf(" | %8s %8s %8s %18s", megabytes(ours).c_str(), megabytes("sqlite").c_str(),
                    megabytes("lmdb").c_str(), "");
    }
    std::printf("\n");
}

void ProjectFigures::print(const std::string& ours) const {
    if (ours == kJet3) {
        std::printf("\nThe same on Jet 3 files.\n\n");
    } else {
        print_legend();
    }
    std::printf("%-22s", ours == kJet3 ? "projects, Jet 3" : "projects");
    for (const std::int32_t size : sizes_) {
        std::printf(" | %8d %8s %8s %18s", size, "SQLite", "LMDB", "ratio");
    }
    std::printf(sizes_.size() > 1 ? " | growth\n" : "\n");
    for (const char* operation : kProjectOperations) print_operation(ours, operation);
    print_megabytes(ours, "file size, MB", "bytes");
    print_megabytes(ours, "peak memory, MB", "peak");
}

}  // namespace bench
