// What both tables of figures share: a store is measured in a process of its own, so that peak memory is that
// of the one and not of the other, and Google Benchmark times each operation there; the parent collects.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace bench {

inline constexpr int kRepetitions = 7;

// Kinds of stores that are the component's: its own files, and those of Jet 3.
inline constexpr const char* kOurs = "kvdb";
inline constexpr const char* kJet3 = "jet3";

// Figures by name: operations a second, or what else the measuring process has told.
using Figures = std::map<std::string, double>;

// Ends the process with a message when `done` is false.
inline void require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(1);
}

inline double seconds_of(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// An operation to be timed: `one` does it once and gives the seconds it took; it counts as `items` operations.
void add_benchmark(const char* name, std::int64_t iterations, std::function<double()> one, std::int64_t items = 1);

// Runs what has been added and prints the medians of the repetitions for the parent.
void run_benchmarks();
// Prints another figure for the parent.
void tell(const char* name, double figure);
// Prints the most memory that this process has held, in bytes, as "peak".
void tell_peak();

// Runs this program anew as "PROGRAM MODE KIND SIZE FOLDER" and collects its figures. The folder is made
// before and removed behind it.
Figures run_child(const char* program, const char* mode, const std::string& kind, std::int32_t size,
                  const std::filesystem::path& folder);

}  // namespace bench
