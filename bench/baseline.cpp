#include "bench/baseline.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "bench/projects.h"
#include "bench/whole_studio.h"

namespace bench {
namespace {

constexpr double kAllowedFall = 0.1;

std::string value_in(const char* path, const std::string& name) {
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        const std::size_t colon = line.find(": ");
        if (line.rfind(name, 0) == 0 && colon != std::string::npos) return line.substr(colon + 2);
    }
    return "unknown";
}

std::string machine() {
    const double memory =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e9;
    return value_in("/proc/cpuinfo", "model name") + ", " + std::to_string(std::thread::hardware_concurrency()) +
           " processors, " + std::to_string(static_cast<int>(memory + 0.5)) + " GB of memory";
}

}  // namespace

bool store_baseline(const std::string& path, const PassFigures& figures, const std::vector<std::int32_t>& sizes) {
    std::ofstream out(path);
    out << "# How many times as fast as SQLite, measured on: " << machine() << "\n";
    const auto store = [&](const char* operation, std::int32_t size) {
        const Ratio ratio = figures.ratio(size, operation);
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", ratio.median);
        if (ratio.median > 0) out << operation << '\t' << size << '\t' << text << '\n';
    };
    for (const char* operation : kProjectOperations) {
        for (const std::int32_t size : sizes) store(operation, size);
    }
    for (const char* operation : kStudioOperations) store(operation, kWholeStudio);
    return static_cast<bool>(out.flush());
}

bool compare_with_baseline(const std::string& path, const PassFigures& figures) {
    std::ifstream in(path);
    if (!in) {
        std::fprintf(stderr, "%s is not there\n", path.c_str());
        return false;
    }
    bool holds = true;
    for (std::string line; std::getline(in, line);) {
        const std::size_t size_at = line.find('\t');
        const std::size_t ratio_at = size_at == std::string::npos ? size_at : line.find('\t', size_at + 1);
        if (line.rfind('#', 0) == 0 || ratio_at == std::string::npos) continue;
        const std::string operation = line.substr(0, size_at);
        const std::int32_t size = std::atoi(line.c_str() + size_at + 1);
        const double before = std::atof(line.c_str() + ratio_at + 1);
        const double now = figures.ratio(size, operation).median;
        if (now == 0 || now >= before * (1 - kAllowedFall)) continue;
        const std::string where = size == kWholeStudio ? "" : " at " + std::to_string(size) + " projects";
        std::printf("%s%s: the ratio fell from %.2f to %.2f\n", operation.c_str(), where.c_str(), before, now);
        holds = false;
    }
    if (holds) std::printf("No ratio is more than a tenth below the baseline.\n");
    return holds;
}

}  // namespace bench
