#include "bench/project_table.h"

#include <cstdio>

#include "bench/projects.h"

namespace bench {
namespace {

double microseconds(double rate) { return rate > 0 ? 1e6 / rate : 0; }

void print_legend() {
    std::printf(
        "Microseconds a call (medians). SQLite: WAL, synchronous NORMAL. LMDB: no sync. Ratio: how many times as fast\n"
        "as SQLite, with the least and most of the passes. Growth: cost of a call at the last size over the "
        "first.\n\n");
}

}  // namespace

void ProjectTable::print_operation(const std::string& ours, const char* operation) const {
    std::printf("%-22s", operation);
    for (const std::int32_t size : sizes_) {
        const auto cost = [&](const std::string& kind) {
            return figure_text(microseconds(figures_.rate(kind, size, operation)));
        };
        const std::string spread = ratio_text(figures_.ratio(size, operation, ours));
        std::printf(" | %8s %8s %8s %18s", cost(ours).c_str(), cost("sqlite").c_str(), cost("lmdb").c_str(),
                    spread.c_str());
    }
    const double first = figures_.rate(ours, sizes_.front(), operation);
    const double last = figures_.rate(ours, sizes_.back(), operation);
    if (sizes_.size() > 1) std::printf(" | %6s", figure_text(last > 0 ? first / last : 0).c_str());
    std::printf("\n");
}

void ProjectTable::print_megabytes(const std::string& ours, const char* label, const char* figure) const {
    std::printf("%-22s", label);
    for (const std::int32_t size : sizes_) {
        const auto megabytes = [&](const std::string& kind) {
            return figure_text(figures_.rate(kind, size, figure) / 1e6);
        };
        std::printf(" | %8s %8s %8s %18s", megabytes(ours).c_str(), megabytes("sqlite").c_str(),
                    megabytes("lmdb").c_str(), "");
    }
    std::printf("\n");
}

void ProjectTable::print(const std::string& ours) const {
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
