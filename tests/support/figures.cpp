#include "tests/support/figures.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

namespace testing_support {
namespace {

constexpr const char* kNames[] = {"faults", "kills", "power-cuts", "damaged-files"};
std::array<std::uint64_t, std::size(kNames)> tried_by_test;

std::string name_of(const ::testing::TestInfo& test) { return std::string(test.test_suite_name()) + "." + test.name(); }

std::string first_line(std::string text) {
    if (text.starts_with("Skipped\n")) text.erase(0, 8);
    return text.substr(0, text.find('\n'));
}

class FiguresListener final : public ::testing::EmptyTestEventListener {
public:
    explicit FiguresListener(const std::string& folder)
        : file_(folder + "/" + std::to_string(std::random_device()()) + ".txt", std::ios::app) {}

    void OnTestStart(const ::testing::TestInfo&) override { tried_by_test = {}; }
    void OnTestEnd(const ::testing::TestInfo& test) override {
        const ::testing::TestResult& result = *test.result();
        for (std::size_t i = 0; i < tried_by_test.size(); ++i) {
            if (tried_by_test[i] == 0) continue;
            file_ << "tried " << kNames[i] << ' ' << tried_by_test[i] << (result.Failed() ? " failed " : " passed ")
                  << name_of(test) << std::endl;
        }
        for (int i = 0; result.Skipped() && i < result.total_part_count(); ++i) {
            const ::testing::TestPartResult& part = result.GetTestPartResult(i);
            if (part.skipped()) file_ << "skipped " << name_of(test) << ": " << first_line(part.message()) << std::endl;
        }
    }

private:
    std::ofstream file_;
};

// Runs at the start of every test program.
const bool is_listening = [] {
    const char* const folder = std::getenv("KVDB_TEST_FIGURES");
    if (folder == nullptr || *folder == 0) return false;
    ::testing::UnitTest::GetInstance()->listeners().Append(new FiguresListener(folder));  // gtest owns it from now on
    return true;
}();

}  // namespace

void count_tried(Figure figure, std::uint64_t count) { tried_by_test[static_cast<std::size_t>(figure)] += count; }

}  // namespace testing_support

// Programs refer to this symbol so that the linker keeps the listener, whether or not they count anything.
extern "C" int kvdb_test_figures() { return testing_support::is_listening ? 1 : 0; }

#ifdef __SANITIZE_ADDRESS__
// In every test program, as this file is. The C library loses a few bytes when a locale is read from a folder of the
// environment.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:__argz_add_sep\n"; }
#endif
