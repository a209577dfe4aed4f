// kvdb_bench: what calls cost beside the peers in the same run. The first table is of projects at growing sizes; the
// second, of the other tables at one size, is in record_table.cpp; the third, of a whole studio, in whole_studio.h.
//
//   kvdb_bench [--passes N] [--projects-only | --studios-only] [--store-baseline FILE] [--against-baseline FILE]
//              [SIZE...]
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
#include "bench/whole_studio.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kRecordTableRows = 100000;
constexpr int kDefaultPasses = 3;

struct Arguments {
    int passes = kDefaultPasses;
    bool has_projects = true;
    bool has_records = true;
    bool has_studios = true;
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
            arguments.has_records = arguments.has_studios = false;
        } else if (word == "--studios-only") {
            arguments.has_projects = arguments.has_records = false;
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

void measure_project_sizes(const char* program, const Arguments& arguments, const fs::path& folder,
                           bench::PassFigures& figures) {
    for (const std::int32_t size : arguments.sizes) {
        for (int pass = 1; pass <= arguments.passes; ++pass) {
            std::fprintf(stderr, "measuring %d projects, pass %d of %d ...\n", size, pass, arguments.passes);
            for (const char* kind : {bench::kOurs, "sqlite", "lmdb", bench::kJet3}) {
                figures.add(kind, size, bench::run_child(program, bench::kMeasureProjects, kind, size, folder / kind));
            }
        }
    }
    const bench::ProjectTable table(figures, arguments.sizes);
    table.print(bench::kOurs);
    table.print(bench::kJet3);
}

void measure_studios(const char* program, const Arguments& arguments, const fs::path& folder,
                     bench::PassFigures& figures) {
    for (int pass = 1; pass <= arguments.passes; ++pass) {
        std::fprintf(stderr, "measuring whole studios, pass %d of %d ...\n", pass, arguments.passes);
        bench::measure_whole_studios(program, folder, figures);
    }
    bench::print_whole_studios(figures);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc == 5 ? argv[1] : "";
    if (mode == bench::kMeasureProjects) return bench::measure_projects(argv[2], std::atoi(argv[3]), argv[4]);
    if (mode == bench::kMeasureRecords) return bench::measure_records(argv[2], std::atoi(argv[3]), argv[4]);
    if (mode == bench::kMeasureCreating) return bench::measure_creating(argv[2], argv[4]);
    if (mode == bench::kMeasureTenYears) return bench::measure_ten_years(argv[2], argv[4]);
    const Arguments arguments = parse(argc, argv);
    const fs::path folder = fs::temp_directory_path() / ("kvdb-bench-" + std::to_string(getpid()));
    bench::PassFigures figures;
    if (arguments.has_projects) measure_project_sizes(argv[0], arguments, folder, figures);
    if (arguments.has_records) {
        const std::int32_t largest = *std::max_element(arguments.sizes.begin(), arguments.sizes.end());
        bench::print_record_table(argv[0], std::min(kRecordTableRows, largest), folder);
    }
    if (arguments.has_studios) measure_studios(argv[0], arguments, folder, figures);
    fs::remove_all(folder);
    if (!arguments.store_baseline.empty()) {
        bench::require(bench::store_baseline(arguments.store_baseline, figures, arguments.sizes),
                       "Storing the baseline");
    }
    const bool holds =
        arguments.against_baseline.empty() || bench::compare_with_baseline(arguments.against_baseline, figures);
    return holds ? 0 : 1;
}
