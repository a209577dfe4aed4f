#include "bench/projects.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <utility>
#include <vector>

#include "bench/jet3_studio.h"
#include "bench/measure.h"
#include "bench/store.h"

namespace bench {
namespace {

constexpr int kBurst = 2000;  // adds

std::unique_ptr<Store> make_store(const std::string& kind, const std::string& folder) {
    if (kind == kJet3) make_jet3_studio(folder);
    if (kind == kOurs || kind == kJet3) return make_kvdb_store(folder);
#ifdef _WIN32
    require(false, "Finding the peer");
    return nullptr;
#else
    return kind == "lmdb" ? make_lmdb_store(folder) : make_sqlite_store(folder);
#endif
}

class ProjectBenchmarks {
public:
    ProjectBenchmarks(Store& store, std::int32_t size)
        : store_(store), size_(size), calls_(size >= 10000 ? 20000 : 5000) {}

    void add_all() {
        add_openings();
        add_readings();
        add_changes();
        add_closing();
    }

private:
    std::int32_t random_key() { return static_cast<std::int32_t>(1 + random_() % static_cast<std::uint32_t>(size_)); }
    double find_one() {
        project_.ProjID = random_key();
        return seconds_of([&] { require(store_.find(project_), "find"); });
    }
    void add_one() {
        require(store_.add(project_), "add");
        added_.push_back(project_.ProjID);
    }
    void remove_one() {
        const std::int32_t key = added_.back();
        added_.pop_back();
        require(store_.remove(key), "delete");
    }

    void add_openings() {
        add_benchmark("open", 20, [this] {
            store_.close();
            return seconds_of([this] { store_.open(); });
        });
        // Opened anew, so that whatever a store builds at the first lookup is in the figure.
        add_benchmark("first FindProj", 1, [this] {
            store_.close();
            store_.open();
            return find_one();
        });
    }

    void add_readings() {
        // What a store keeps of a large file in memory is what has been asked for lately: others have asked before.
        add_benchmark("FindProj", calls_, [this, is_warm = false]() mutable {
            for (std::int32_t i = std::exchange(is_warm, true) ? 0 : size_ / 5; i > 0; --i) find_one();
            return find_one();
        });
        const std::int64_t rows = std::min<std::int64_t>(size_, 100000);
        add_benchmark(
            "Enum (a row)", std::max<std::int64_t>(1, 10000 / rows),
            [this, rows] { return seconds_of([&] { require(store_.enumerate(0, rows) == rows, "enumerate"); }); },
            rows);
        // A client whose projects are albums in one of four; with ten projects there is one.
        const std::int64_t matches = store_.enumerate(2, INT64_MAX);
        if (matches == 0) return;
        add_benchmark(
            "filtered Enum (a row)", size_ >= 10000 ? 200 : 2000,
            [this, matches] {
                return seconds_of([&] { require(store_.enumerate(2, INT64_MAX) == matches, "filtered enumerate"); });
            },
            matches);
    }

    void add_changes() {
        add_benchmark("UpdateProj", calls_, [this] {
            project_ = sample_project(random_key());
            project_.ProjID = random_key();
            return seconds_of([&] { require(store_.update(project_), "update"); });
        });
        add_benchmark("AddProj", calls_, [this] {
            project_ = sample_project(size_ + 1);
            return seconds_of([this] { add_one(); });
        });
        add_benchmark("DeleteProj", calls_, [this] { return seconds_of([this] { remove_one(); }); });
    }

    void add_closing() {
        add_benchmark("close after a burst", 1, [this] {
            project_ = sample_project(size_ + 1);
            for (int i = 0; i < kBurst; ++i) add_one();
            const double seconds = seconds_of([this] { store_.close(); });
            store_.open();
            for (int i = 0; i < kBurst; ++i) remove_one();
            return seconds;
        });
    }

    Store& store_;
    const std::int32_t size_;
    const std::int64_t calls_;
    std::mt19937 random_{7};
    ProjInfo project_ = sample_project(1);
    std::vector<std::int32_t> added_;
};

}  // namespace

int measure_projects(const std::string& kind, std::int32_t size, const std::string& folder) {
    const auto store = make_store(kind, folder);
    store->open();
    store->fill(size);
    // What the filling has left to do is none of the calls'.
    store->close();
    store->open();
    ProjectBenchmarks benchmarks(*store, size);
    benchmarks.add_all();
    run_benchmarks();
    tell("bytes", static_cast<double>(std::filesystem::file_size(store->main_file())));
    store->close();
    tell_peak();
    return 0;
}

}  // namespace bench
