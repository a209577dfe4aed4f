// The tool run as a user runs it, in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/support/temp_folder.h"

namespace testing_tool {

struct Outcome {
    int code = -1;
    std::string out;
    std::string errors;
};

inline std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline std::string in_quotes(const std::string& text) { return "'" + text + "'"; }

class Tool : public ::testing::Test {
protected:
    Outcome run(const std::string& arguments) {
        const std::string command = "LC_ALL=C.UTF-8 " + in_quotes(KVDB_TOOL) + " " + arguments + " >" +
                                    in_quotes(scratch_.file("out")) + " 2>" + in_quotes(scratch_.file("err"));
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(scratch_.file("out")),
                contents(scratch_.file("err"))};
    }
    Outcome demo() { return run("demo " + in_quotes(studio_)); }
    std::string main_file() const { return in_quotes(studio_ + "/sldb.mdb"); }

    testing_support::TempFolder scratch_;
    std::string studio_ = scratch_.file("a studio");  // a blank in the name, as users have them
};

// One line on the error output, which names the trouble.
inline void expect_failure(const Outcome& outcome, int code, const std::string& text) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_NE(outcome.errors.find(text), std::string::npos) << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
}

}  // namespace testing_tool
