#include "bench/whole_studio.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "bench/sqlite_studio.h"
#include "db/schema.h"
#include "tools/studio.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kStudiosMade = 15;

// Runs work(folder) with an empty folder each time.
template <class Work>
void in_new_folders(const std::string& folder, Work&& work) {
    for (int i = 0; i < kStudiosMade; ++i) {
        const fs::path place = fs::path(folder) / ("studio" + std::to_string(i));
        fs::create_directories(place);
        work(place.string());
        fs::remove_all(place);
    }
}

void print_row(const PassFigures& figures, const char* label, const char* figure, double scale, bool is_rate) {
    const auto text = [&](const char* kind) {
        const double value = figures.rate(kind, kWholeStudio, figure);
        return figure_text(is_rate ? (value > 0 ? scale / value : 0) : value / scale);
    };
    std::printf("%-24s | %8s %8s", label, text(kOurs).c_str(), text("sqlite").c_str());
    if (is_rate) std::printf(" %18s", ratio_text(figures.ratio(kWholeStudio, figure)).c_str());
    std::printf("\n");
}

}  // namespace

int measure_creating(const std::string& kind, const std::string& folder) {
    std::vector<double> making;
    std::vector<double> making_and_closing;
    const auto measure = [&](auto& studio, auto&& make) {
        making.push_back(seconds_of([&] { make(); }));
        making_and_closing.push_back(making.back() + seconds_of([&] { studio.close(); }));
    };
    in_new_folders(folder, [&](const std::string& place) {
        if (kind == kOurs) {
            tools::Studio studio(place, tools::Studio::Purpose::kUpgrade);
            measure(studio, [&] { studio.open(); });
        } else {
            SqliteStudio studio(place);
            measure(studio, [&] { studio.create(); });
        }
    });
    tell(kStudioOperations[0], 1 / median_of(making));
    tell(kStudioOperations[1], 1 / median_of(making_and_closing));
    return 0;
}

void measure_whole_studios(const char* program, const std::string& folder, PassFigures& figures) {
    const fs::path place = folder;
    for (const char* kind : {kOurs, "sqlite"}) {
        Figures both = run_child(program, kMeasureTenYears, kind, kWholeStudio, place / kind);
        both.merge(run_child(program, kMeasureCreating, kind, kWholeStudio, place / kind));
        figures.add(kind, kWholeStudio, both);
    }
    require(figures.rate(kOurs, kWholeStudio, "rows listed") == figures.rate("sqlite", kWholeStudio, "rows listed"),
            "listing the same rows");
}

void print_whole_studios(const PassFigures& figures) {
    std::printf(
        "\nMilliseconds (medians), beside SQLite with the same tables in two files. Creating: %zu + %zu tables. The\n"
        "component has synced both files when OpenDB returns. SQLite makes the tables of a file in one transaction "
        "and\n"
        "has them in the synced file after closing. A studio of ten years has all tables filled; SQLite has an index\n"
        "where a day's lists need it. A day is some 300 calls: half of them add rows, the others find, change, "
        "list.\n\n",
        db::studio_tables().size(), db::invoice_tables().size());
    std::printf("%-24s | %8s %8s %18s\n", "a whole studio", "kvdb", "SQLite", "ratio");
    for (const char* operation : kStudioOperations) print_row(figures, operation, operation, 1e3, true);
    print_row(figures, "both files, MB", "bytes", 1e6, false);
    print_row(figures, "peak memory, MB", "peak", 1e6, false);
}

}  // namespace bench
