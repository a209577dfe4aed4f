#include "bench/measure.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>
#include <vector>

namespace bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Medians come from the repetitions; only they are passed on, as "name<TAB>operations a second".
class MedianReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name != "median") continue;
            const auto rate = run.counters.find("items_per_second");
            if (rate != run.counters.end()) tell(run.run_name.function_name.c_str(), rate->second.value);
        }
    }
};

}  // namespace

void add_benchmark(const char* name, std::int64_t iterations, std::function<double()> one, std::int64_t items) {
    benchmark::RegisterBenchmark(name,
                                 [one = std::move(one), items](benchmark::State& state) {
                                     for (auto _ : state) state.SetIterationTime(one());
                                     state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * items);
                                 })
        ->Iterations(iterations)
        ->UseManualTime()
        ->Repetitions(kRepetitions)
        ->ReportAggregatesOnly(true);
}

void run_benchmarks() {
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
}

void tell(const char* name, double figure) { std::printf("%s\t%.10g\n", name, figure); }

void tell_peak() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    tell("peak", static_cast<double>(usage.ru_maxrss) * 1024);
}

Figures run_child(const char* program, const char* mode, const std::string& kind, std::int32_t size,
                  const fs::path& folder) {
    fs::create_directories(folder);
    const fs::path output = folder / "figures";
    std::fflush(stdout);  // or the child would print it again
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen(output.c_str(), "w", stdout) == nullptr) _exit(1);
        const std::string count = std::to_string(size);
        execl(program, program, mode, kind.c_str(), count.c_str(), folder.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "a measuring process");
    Figures figures;
    std::ifstream in(output);
    for (std::string line; std::getline(in, line);) {
        const std::size_t tab = line.find('\t');
        if (tab != std::string::npos) figures[line.substr(0, tab)] = std::atof(line.c_str() + tab + 1);
    }
    fs::remove_all(folder);
    return figures;
}

}  // namespace bench
