// Runs mutated files one after the other, for a time or a number of cases, and continues after each failure.
//
//   mutate_files [--seed N] [--seconds S | --count C] [--out FOLDER]
//
// A child does the work and is replaced when it dies or hangs. The failing files, and the command that repeats the
// failure, are kept in the folder. Exit code 1 after any failure.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <thread>

#include "fuzz/base_files.h"
#include "fuzz/mutated_run.h"
#include "jet/pages/journal.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kHangSeconds = 30;
constexpr int kBrokenPromise = 3;  // exit code of the child
constexpr int kMaxFailures = 20;

struct Options {
    std::uint64_t seed = 1;
    double seconds = 10;
    std::uint64_t count = UINT64_MAX;
    std::string out = "mutated_failures";
    std::string program;
};

// Shared by parent and child.
struct Progress {
    std::atomic<std::uint64_t> next_seed;
    std::atomic<std::uint64_t> done;
};

Options parse(int count, char** arguments) {
    Options options;
    options.program = arguments[0];
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string name = arguments[i];
        const char* value = arguments[i + 1];
        if (name == "--seed") {
            options.seed = std::strtoull(value, nullptr, 10);
        } else if (name == "--seconds") {
            options.seconds = std::strtod(value, nullptr);
        } else if (name == "--count") {
            options.count = std::strtoull(value, nullptr, 10);
            options.seconds = 1e9;
        } else if (name == "--out") {
            options.out = value;
        } else {
            std::fprintf(stderr, "usage: mutate_files [--seed N] [--seconds S | --count C] [--out FOLDER]\n");
            std::exit(2);
        }
    }
    return options;
}

// The child: runs cases from next_seed until the time is over.
[[noreturn]] void work(Progress& progress, const Options& options, Clock::time_point end) {
    while (Clock::now() < end && progress.done < options.count) {
        const std::uint64_t seed = progress.next_seed;
        try {
            kvdb_fuzz::use_files(kvdb_fuzz::mutate(seed));
        } catch (const std::exception& error) {
            std::fprintf(stderr, "seed %llu: %s\n", static_cast<unsigned long long>(seed), error.what());
            std::_Exit(kBrokenPromise);
        }
        ++progress.done;
        ++progress.next_seed;
    }
    std::_Exit(0);
}

// Waits for the child; true when it exited normally.
bool ended_well(pid_t child, const Progress& progress) {
    std::uint64_t seen = progress.next_seed;
    Clock::time_point since = Clock::now();
    for (;;) {
        int status = 0;
        if (::waitpid(child, &status, WNOHANG) == child) return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (progress.next_seed != seen) {
            seen = progress.next_seed;
            since = Clock::now();
        } else if (Clock::now() - since > std::chrono::seconds(kHangSeconds)) {
            std::fprintf(stderr, "seed %llu: no end after %d seconds\n", static_cast<unsigned long long>(seen),
                         kHangSeconds);
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void write_bytes(const std::filesystem::path& path, jet::ByteSpan bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void keep_case(const Options& options, std::uint64_t seed) {
    const kvdb_fuzz::MutatedFiles files = kvdb_fuzz::mutate(seed);
    std::filesystem::create_directories(options.out);
    const std::filesystem::path base = std::filesystem::path(options.out) / (std::to_string(seed) + ".mdb");
    write_bytes(base, files.database);
    if (!files.journal.empty()) write_bytes(jet::Journal::path_for(base.string()), files.journal);
    std::printf("failed: seed %llu, kept as %s\n", static_cast<unsigned long long>(seed), base.c_str());
    for (const std::string& step : files.steps) std::printf("    %s\n", step.c_str());
    std::printf("    to repeat: %s --seed %llu --count 1\n", options.program.c_str(),
                static_cast<unsigned long long>(seed));
}

}  // namespace

int main(int count, char** arguments) {
    const Options options = parse(count, arguments);
    void* const shared = ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) return 2;
    Progress& progress = *new (shared) Progress{{options.seed}, {0}};
    const Clock::time_point begin = Clock::now();
    const auto end =
        begin + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.seconds));
    int failures = 0;
    for (const jet::TestedFile& file : jet::kTestedFiles) kvdb_fuzz::base_files(file);  // once for all children
    while (Clock::now() < end && progress.done < options.count && failures < kMaxFailures) {
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child < 0) return 2;
        if (child == 0) work(progress, options, end);
        if (ended_well(child, progress)) continue;
        ++failures;
        keep_case(options, progress.next_seed);
        ++progress.next_seed;
        ++progress.done;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    const auto done = static_cast<unsigned long long>(progress.done);
    std::printf("%llu mutated files used in %.1f s (%.0f a second), %d failed; next seed %llu\n", done, seconds,
                static_cast<double>(done) / seconds, failures,
                static_cast<unsigned long long>(progress.next_seed.load()));
    return failures == 0 ? 0 : 1;
}
