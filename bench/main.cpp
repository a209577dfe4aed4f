// kvdb_bench: what calls cost beside the peers in the same run. The first table is of projects at growing sizes; the
// second, of the other tables at one size, is in record_table.cpp.
//
//   kvdb_bench [--passes N] [--projects-only] [--store-baseline FILE] [--against-baseline FILE] [SIZE...]
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/baseline.h"
#include "bench/measure.h"
#include "bench/project_table.h"
#include "bench/projects.h"
#include "bench/ratios.h"
#include "bench/record_store.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kRecordTableRows = 100000;
constexpr int kDefaultPasses = 3;

struct Arguments {
    int passes = kDefaultPasses;
    bool projects_only = false;
    std::string store_baseline;
    std::string against_baseline;
    std::vector<std::int32_t> sizes;
};

Arguments parse(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const auto value = [&] {
            bench::require(i + 1 < argc, (word + " without its value:").c_str());
            return std::string(argv[++i]);
        };
        if (word == "--passes") {
            arguments.passes = std::max(1, std::atoi(value().c_str()));
        } else if (word == "--projects-only") {
            arguments.projects_only = true;
        } else if (word == "--store-baseline") {
            arguments.store_baseline = value();
        } else if (word == "--against-baseline") {
            arguments.against_baseline = value();
        } else {
            arguments.sizes.push_back(std::atoi(argv[i]));
            bench::require(arguments.sizes.back() > 0, ("Reading the size " + word).c_str());
        }
    }
    if (arguments.sizes.empty()) arguments.sizes = {10, 10000, 1000000};
    return arguments;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc == 5 ? argv[1] : "";
    if (mode == bench::kMeasureProjects) return bench::measure_projects(argv[2], std::atoi(argv[3]), argv[4]);
    if (mode == bench::kMeasureRecords) return bench::measure_records(argv[2], std::atoi(argv[3]), argv[4]);
    const Arguments arguments = parse(argc, argv);
    const fs::path folder = fs::temp_directory_path() / ("kvdb-bench-" + std::to_string(getpid()));
    bench::PassFigures figures;
    for (const std::int32_t size : arguments.sizes) {
        for (int pass = 1; pass <= arguments.passes; ++pass) {
            std::fprintf(stderr, "measuring %d projects, pass %d of %d ...\n", size, pass, arguments.passes);
            for (const char* kind : {bench::kOurs, "sqlite", "lmdb", bench::kJet3}) {
                figures.add(kind, size, bench::run_child(argv[0], bench::kMeasureProjects, kind, size, folder / kind));
            }
        }
    }
    const bench::ProjectTable table(figures, arguments.sizes);
    table.print(bench::kOurs);
    table.print(bench::kJet3);
    if (!arguments.projects_only) {
        const std::int32_t largest = *std::max_element(arguments.sizes.begin(), arguments.sizes.end());
        bench::print_record_table(argv[0], std::min(kRecordTableRows, largest), folder);
    }
    fs::remove_all(folder);
    if (!arguments.store_baseline.empty()) {
        bench::require(bench::store_baseline(arguments.store_baseline, figures, arguments.sizes),
                       "Storing the baseline");
    }
    const bool holds =
        arguments.against_baseline.empty() || bench::compare_with_baseline(arguments.against_baseline, figures);
    return holds ? 0 : 1;
}
