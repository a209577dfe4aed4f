#include "tests/support/silence.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string_view>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace testing_support {
namespace {

#ifdef _WIN32
int duplicate(int descriptor) { return ::_dup(descriptor); }
void put_in_place(int from, int to) { ::_dup2(from, to); }
void close_descriptor(int descriptor) { ::_close(descriptor); }
int descriptor_of(std::FILE* file) { return ::_fileno(file); }
#else
int duplicate(int descriptor) { return ::dup(descriptor); }
void put_in_place(int from, int to) { ::dup2(from, to); }
void close_descriptor(int descriptor) { ::close(descriptor); }
int descriptor_of(std::FILE* file) { return ::fileno(file); }
#endif

constexpr int kStreams[] = {1, 2};

// Standard output and standard error while a test runs.
class Capture {
public:
    void begin() {
        file_ = std::tmpfile();
        if (file_ == nullptr) return;
        flush();
        for (const int stream : kStreams) {
            kept_[stream - 1] = duplicate(stream);
            put_in_place(descriptor_of(file_), stream);
        }
    }
    std::string end() {
        if (file_ == nullptr) return {};
        flush();
        for (const int stream : kStreams) {
            put_in_place(kept_[stream - 1], stream);
            close_descriptor(kept_[stream - 1]);
        }
        const std::string printed = take();
        std::fclose(file_);
        file_ = nullptr;
        return printed;
    }
    std::string take() {
        if (file_ == nullptr) return {};
        flush();
        std::string printed;
        std::fseek(file_, taken_to_, SEEK_SET);
        for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) printed.push_back(static_cast<char>(c));
        taken_to_ = std::ftell(file_);
        std::fseek(file_, 0, SEEK_END);
        return printed;
    }
    bool is_open() const { return file_ != nullptr; }
    void forget() { taken_to_ = 0; }

private:
    static void flush() {
        std::fflush(stdout);
        std::fflush(stderr);
    }

    std::FILE* file_ = nullptr;
    int kept_[2] = {-1, -1};
    long taken_to_ = 0;
};

Capture capture;

class SilenceListener final : public ::testing::EmptyTestEventListener {
public:
    void OnTestStart(const ::testing::TestInfo& test) override {
        const std::string_view suite = test.test_suite_name();
        // Hosts that are killed are this program once more, and say so where they inherit its output.
        if (suite.ends_with("Slow") || suite.ends_with("Crash")) return;
        capture.forget();
        capture.begin();
    }
    // Before the one that prints the result, which asks for the failure.
    void OnTestEnd(const ::testing::TestInfo& test) override {
        const std::string printed = capture.end();
        if (printed.empty()) return;
        if (!test.result()->Failed() && !test.result()->Skipped()) {
            ADD_FAILURE() << "printed by " << test.test_suite_name() << "." << test.name();
        }
        std::fwrite(printed.data(), 1, printed.size(), stdout);
    }
};

}  // namespace

bool expect_silence() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    ::testing::UnitTest::GetInstance()->listeners().Append(new SilenceListener);  // theirs from now on
    return true;
#endif
}

std::string take_printed() { return capture.take(); }

bool is_capturing() { return capture.is_open(); }

void expect_printing_to_be_noticed() {
    EXPECT_EQ(take_printed(), "");
    std::fputs("to the one", stdout);
    std::fputs(" and the other", stderr);
    const std::string printed = take_printed();
    EXPECT_NE(printed.find("to the one"), std::string::npos);
    EXPECT_NE(printed.find("and the other"), std::string::npos);
    EXPECT_EQ(take_printed(), "");
}

}  // namespace testing_support
