// kvdb_bench: operations a second and their ratio to the peer in the same run. The first table is of projects at
// growing sizes; the second, of the other tables at one size, is in record_table.cpp.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/measure.h"
#include "bench/record_store.h"
#include "bench/store.h"

namespace {

namespace fs = std::filesystem;
using bench::add_benchmark;
using bench::Figures;
using bench::require;
using bench::seconds_of;

constexpr const char* kOperations[] = {"open",       "AddProj",      "first FindProj",
                                       "FindProj",   "Enum (a row)", "filtered Enum (a row)",
                                       "UpdateProj", "DeleteProj"};
constexpr const char* kMeasureProjects = "--measure";
constexpr std::int32_t kRecordTableRows = 100000;

// One process: `store` holds `size` projects when the measuring begins.
int measure(const std::string& kind, std::int32_t size, const std::string& folder) {
    auto store = kind == "kvdb" ? bench::make_kvdb_store(folder) : bench::make_sqlite_store(folder);
    store->open();
    store->fill(size);
    store->close();

    std::mt19937 random(7);
    const auto random_key = [&] { return static_cast<std::int32_t>(1 + random() % static_cast<std::uint32_t>(size)); };
    const std::int64_t calls = size >= 10000 ? 20000 : 5000;
    ProjInfo project = bench::sample_project(1);
    std::vector<std::int32_t> added;

    add_benchmark("open", 20, [&] {
        store->close();
        return seconds_of([&] { store->open(); });
    });
    const auto find_one = [&] {
        project.ProjID = random_key();
        return seconds_of([&] { require(store->find(project), "find"); });
    };
    // Opened anew, so that whatever a store builds at the first lookup is in the figure.
    add_benchmark("first FindProj", 1, [&] {
        store->close();
        store->open();
        return find_one();
    });
    // What a store keeps of a large file in memory is what has been asked for lately: others have asked before.
    add_benchmark("FindProj", calls, [&, is_warm = false]() mutable {
        for (std::int32_t i = std::exchange(is_warm, true) ? 0 : size / 5; i > 0; --i) find_one();
        return find_one();
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
    bench::run_benchmarks();
    bench::tell("bytes", static_cast<double>(fs::file_size(store->main_file())));
    store->close();
    bench::tell_peak();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc == 5 ? argv[1] : "";
    if (mode == kMeasureProjects) return measure(argv[2], std::atoi(argv[3]), argv[4]);
    if (mode == bench::kMeasureRecords) return bench::measure_records(argv[2], std::atoi(argv[3]), argv[4]);
    std::vector<std::int32_t> sizes = {10, 10000, 1000000};
    if (argc > 1) sizes.clear();
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    const fs::path folder = fs::temp_directory_path() / ("kvdb-bench-" + std::to_string(getpid()));
    std::map<std::int32_t, Figures> ours;
    std::map<std::int32_t, Figures> peers;
    for (std::int32_t size : sizes) {
        std::fprintf(stderr, "measuring %d projects ...\n", size);
        ours[size] = bench::run_child(argv[0], kMeasureProjects, "kvdb", size, folder / "kvdb");
        peers[size] = bench::run_child(argv[0], kMeasureProjects, "sqlite", size, folder / "sqlite");
    }
    std::printf(
        "operations a second (median of %d); ratio = kvdb / SQLite (WAL, synchronous NORMAL) in the same run; growth = "
        "cost of a call at the last size / at the one before\n\n",
        bench::kRepetitions);
    std::printf("%-22s", "");
    for (std::int32_t size : sizes) std::printf(" | %11d rows %7s", size, "ratio");
    std::printf(sizes.size() > 1 ? " | growth\n" : "\n");
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
        if (sizes.size() > 1) {
            const double before = ours[sizes[sizes.size() - 2]][operation];
            const double last = ours[sizes.back()][operation];
            if (before > 0 && last > 0) std::printf(" | %6.2f", before / last);
        }
        std::printf("\n");
    }
    const auto megabytes = [&](const char* label, const char* figure) {
        std::printf("%-22s", label);
        for (std::int32_t size : sizes)
            std::printf(" | %13.1f MB %7.2f", ours[size][figure] / 1e6, ours[size][figure] / peers[size][figure]);
        std::printf("\n");
    };
    megabytes("file size", "bytes");
    megabytes("peak memory", "peak");
    bench::print_record_table(argv[0], std::min(kRecordTableRows, *std::max_element(sizes.begin(), sizes.end())),
                              folder);
    fs::remove_all(folder);
    return 0;
}
