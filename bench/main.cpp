// kvdb_bench: one table of operations a second at growing sizes, and their ratio to the peer in the same run.
//
// Every (store, size) runs in a process of its own, so that peak memory is that of the one and not of the
// other. The process fills a store, then lets Google Benchmark time each operation; the parent collects.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench/store.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kOperations[] = {"open",       "AddProj",      "first FindProj",
                                       "FindProj",   "Enum (a row)", "filtered Enum (a row)",
                                       "UpdateProj", "DeleteProj"};
constexpr int kRepetitions = 3;

double seconds_of(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(1);
}

// Medians come from the repetitions; only they are passed on, as "name<TAB>operations a second".
class MedianReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name != "median") continue;
            const auto rate = run.counters.find("items_per_second");
            if (rate != run.counters.end())
                std::printf("%s\t%.6g\n", run.run_name.function_name.c_str(), rate->second.value);
        }
    }
};

// One process: `store` holds `size` projects when the measuring begins.
int measure(const std::string& kind, std::int32_t size, const std::string& folder) {
    auto store = kind == "kvdb" ? bench::make_kvdb_store(folder) : bench::make_sqlite_store(folder);
    store->open();
    store->fill(size);
    store->close();

    const auto add_benchmark = [](const char* name, std::int64_t iterations, std::function<double()> one,
                                  std::int64_t items = 1) {
        benchmark::RegisterBenchmark(name,
                                     [one, items](benchmark::State& state) {
                                         for (auto _ : state) state.SetIterationTime(one());
                                         state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * items);
                                     })
            ->Iterations(iterations)
            ->UseManualTime()
            ->Repetitions(kRepetitions)
            ->ReportAggregatesOnly(true);
    };
    std::mt19937 random(7);
    const auto random_key = [&] { return static_cast<std::int32_t>(1 + random() % static_cast<std::uint32_t>(size)); };
    const std::int64_t calls = size >= 10000 ? 20000 : 5000;
    ProjInfo project = bench::sample_project(1);
    std::vector<std::int32_t> added;

    add_benchmark("open", 20, [&] {
        store->close();
        return seconds_of([&] { store->open(); });
    });
    // Opened anew, so that whatever a store builds at the first lookup is in the figure.
    add_benchmark("first FindProj", 1, [&] {
        store->close();
        store->open();
        project.ProjID = random_key();
        return seconds_of([&] { require(store->find(project), "find"); });
    });
    add_benchmark("FindProj", calls, [&] {
        project.ProjID = random_key();
        return seconds_of([&] { require(store->find(project), "find"); });
    });
    const std::int64_t rows = std::min<std::int64_t>(size, 100000);
    add_benchmark(
        "Enum (a row)", std::max<std::int64_t>(1, 10000 / rows),
        [&] { return seconds_of([&] { require(store->enumerate(0, rows) == rows, "enumerate"); }); }, rows);
    // A client whose projects are albums in one of four; with ten projects there is one.
    const std::int64_t matches = store ? (store->open(), store->enumerate(2, INT64_MAX)) : 0;
    if (matches > 0) {
        add_benchmark(
            "filtered Enum (a row)", size >= 10000 ? 200 : 2000,
            [&, matches] {
                return seconds_of([&] { require(store->enumerate(2, INT64_MAX) == matches, "filtered enumerate"); });
            },
            matches);
    }
    add_benchmark("UpdateProj", calls, [&] {
        project = bench::sample_project(random_key());
        project.ProjID = random_key();
        return seconds_of([&] { require(store->update(project), "update"); });
    });
    add_benchmark("AddProj", calls, [&] {
        project = bench::sample_project(size + 1);
        const double seconds = seconds_of([&] { require(store->add(project), "add"); });
        added.push_back(project.ProjID);
        return seconds;
    });
    add_benchmark("DeleteProj", calls, [&] {
        const std::int32_t key = added.back();
        added.pop_back();
        return seconds_of([&] { require(store->remove(key), "delete"); });
    });
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("bytes\t%ju\n", static_cast<std::uintmax_t>(fs::file_size(store->main_file())));
    store->close();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak\t%ld\n", usage.ru_maxrss);
    return 0;
}

using Figures = std::map<std::string, double>;

Figures run_child(const char* program, const std::string& kind, std::int32_t size, const fs::path& folder) {
    fs::create_directories(folder);
    const fs::path output = folder / "figures";
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen(output.c_str(), "w", stdout) == nullptr) _exit(1);
        const std::string count = std::to_string(size);
        execl(program, program, "--measure", kind.c_str(), count.c_str(), folder.c_str(), static_cast<char*>(nullptr));
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

}  // namespace

int main(int argc, char** argv) {
    if (argc == 5 && std::string(argv[1]) == "--measure") return measure(argv[2], std::atoi(argv[3]), argv[4]);
    std::vector<std::int32_t> sizes = {10, 10000, 1000000};
    if (argc > 1) sizes.clear();
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    const fs::path folder = fs::temp_directory_path() / ("kvdb-bench-" + std::to_string(getpid()));
    std::map<std::int32_t, Figures> ours;
    std::map<std::int32_t, Figures> peers;
    for (std::int32_t size : sizes) {
        std::fprintf(stderr, "measuring %d projects ...\n", size);
        ours[size] = run_child(argv[0], "kvdb", size, folder / "kvdb");
        peers[size] = run_child(argv[0], "sqlite", size, folder / "sqlite");
    }
    fs::remove_all(folder);
    std::printf(
        "operations a second (median of %d); ratio = kvdb / SQLite (WAL, synchronous NORMAL) in the same run\n\n",
        kRepetitions);
    std::printf("%-22s", "");
    for (std::int32_t size : sizes) std::printf(" | %11d rows %7s", size, "ratio");
    std::printf("\n");
    for (const char* operation : kOperations) {
        std::printf("%-22s", operation);
        for (std::int32_t size : sizes) {
            const double rate = ours[size][operation];
            if (rate == 0) {
                std::printf(" | %16s %7s", "-", "-");
            } else {
                std::printf(" | %16.0f %7.2f", rate, rate / peers[size][operation]);
            }
        }
        std::printf("\n");
    }
    const auto megabytes = [&](const char* label, const char* figure, double unit) {
        std::printf("%-22s", label);
        for (std::int32_t size : sizes)
            std::printf(" | %13.1f MB %7.2f", ours[size][figure] / unit, ours[size][figure] / peers[size][figure]);
        std::printf("\n");
    };
    megabytes("file size", "bytes", 1e6);
    megabytes("peak memory", "peak", 1e3);
    return 0;
}
