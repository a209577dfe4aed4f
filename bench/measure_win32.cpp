// The measuring process for Windows, without Google Benchmark, which there is for the build machine only. What it tells
// are the same medians of the same repetitions.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bench/measure.h"
#include "bench/projects.h"

namespace bench {
namespace {

struct Benchmark {
    std::string name;
    std::int64_t iterations;
    std::function<double()> one;
    std::int64_t items;
};

std::vector<Benchmark>& benchmarks() {
    static std::vector<Benchmark> all;
    return all;
}

// Operations a second.
double rate_of(const Benchmark& benchmark) {
    double seconds = 0;
    for (std::int64_t i = 0; i < benchmark.iterations; ++i) seconds += benchmark.one();
    return static_cast<double>(benchmark.iterations * benchmark.items) / seconds;
}

}  // namespace

void add_benchmark(const char* name, std::int64_t iterations, std::function<double()> one, std::int64_t items) {
    benchmarks().push_back({name, iterations, std::move(one), items});
}

void run_benchmarks() {
    for (const Benchmark& benchmark : benchmarks()) {
        std::array<double, kRepetitions> rates{};
        for (double& rate : rates) rate = rate_of(benchmark);
        std::nth_element(rates.begin(), rates.begin() + kRepetitions / 2, rates.end());
        tell(benchmark.name.c_str(), rates[kRepetitions / 2]);
    }
}

void tell(const char* name, double figure) { std::printf("%s\t%.10g\n", name, figure); }

void tell_peak() {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    if (GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) {
        tell("peak", static_cast<double>(counters.PeakWorkingSetSize));
    }
}

}  // namespace bench

int main(int argc, char** argv) {
    bench::require(argc == 5 && std::string(argv[1]) == bench::kMeasureProjects, "kvdb_bench MODE kvdb SIZE FOLDER");
    return bench::measure_projects(argv[2], std::atoi(argv[3]), argv[4]);
}
