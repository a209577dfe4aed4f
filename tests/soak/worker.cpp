#include "tests/soak/worker.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace soak {
namespace {

namespace fs = std::filesystem;

std::string in_one_line(const std::string& text) {
    std::string line;
    for (const char c : text) line += c == '\n' || c == '\r' ? std::string(" / ") : std::string(1, c);
    return line;
}

const ::testing::TestPartResultArray* results_of_case = nullptr;

// Runs one case; adds failed checks of the tests to its failure.
Outcome run_case(Kind& kind, Seed seed, const std::string& kept) {
    ::testing::TestPartResultArray results;
    Outcome outcome;
    results_of_case = &results;
    {
        const ::testing::ScopedFakeTestPartResultReporter reporter(
            ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &results);
        try {
            outcome = kind.run(seed, kept);
        } catch (const std::exception& error) {
            outcome.failure += std::string("exception: ") + error.what();
        }
    }
    outcome.failure += failed_checks();
    results_of_case = nullptr;
    return outcome;
}

}  // namespace

std::string failed_checks() {
    std::string text;
    for (int i = 0; results_of_case != nullptr && i < results_of_case->size(); ++i) {
        const ::testing::TestPartResult& result = results_of_case->GetTestPartResult(i);
        if (result.failed()) text += std::string(" ") + result.message();
    }
    return text;
}

void keep_files(const std::string& folder, const std::string& kept) {
    fs::create_directories(kept);
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().filename().string().find(".mdb") == std::string::npos) continue;
        fs::copy_file(entry.path(), fs::path(kept) / entry.path().filename(), fs::copy_options::overwrite_existing);
    }
}

void keep_text(const std::string& text, const std::string& name, const std::string& kept) {
    fs::create_directories(kept);
    std::ofstream(fs::path(kept) / name) << text << '\n';
}

int work(const Shift& shift) {
    std::unique_ptr<Kind> kind;
    for (auto& each : all_kinds()) {
        if (each->name() == shift.kind) kind = std::move(each);
    }
    if (!kind) {
        std::fprintf(stderr, "no kind %s\n", shift.kind.c_str());
        return 2;
    }
    if (const std::string reason = kind->prepare(); !reason.empty()) {
        std::printf("skip %s\n", in_one_line(reason).c_str());
        return 0;
    }
    // Not the steady clock: a kind may have stopped it.
    const auto begin = std::chrono::system_clock::now();
    Seed seed = shift.first;
    for (std::uint64_t count = 0; shift.cases == 0 || count < shift.cases; ++count) {
        const std::chrono::duration<double> taken = std::chrono::system_clock::now() - begin;
        if (shift.cases == 0 && taken.count() >= shift.seconds) break;
        std::printf("case %llu\n", static_cast<unsigned long long>(seed));
        std::fflush(stdout);
        const std::string kept =
            (fs::path(shift.failures) / (shift.kind + "-" + std::to_string(seed))).generic_string();
        const Outcome outcome = run_case(*kind, seed, kept);
        const Seed next = outcome.next != 0 ? outcome.next : seed + 1;
        std::printf("%s %llu %llu %llu%s%s\n", outcome.failure.empty() ? "done" : "failed",
                    static_cast<unsigned long long>(seed), static_cast<unsigned long long>(outcome.tried),
                    static_cast<unsigned long long>(next), outcome.failure.empty() ? "" : " ",
                    in_one_line(outcome.failure).c_str());
        std::fflush(stdout);
        seed = next;
    }
    return 0;
}

}  // namespace soak
