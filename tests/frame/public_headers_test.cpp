// Every public header compiles alone, in both language versions, without a warning, as applications compile it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

// Whether the compiler accepts a source that includes only `header`.
bool compiles_alone(const testing_support::TempFolder& folder, const std::string& header, const std::string& standard) {
    const std::string source = folder.file("alone.cpp");
    std::ofstream(source) << "#include <kvdb/" << header << ">\n";
    const std::string command = "'" KVDB_CXX "' -std=" + standard +
                                " -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I'" KVDB_INCLUDE "' '" + source + "'";
    return std::system(command.c_str()) == 0;
}

void expect_all_compile(const std::string& standard) {
    const testing_support::TempFolder folder;
    int headers = 0;
    for (const auto& entry : fs::directory_iterator(KVDB_INCLUDE "/kvdb")) {
        EXPECT_TRUE(compiles_alone(folder, entry.path().filename().string(), standard)) << entry.path();
        ++headers;
    }
    EXPECT_GE(headers, 7);
}

}  // namespace

TEST(PublicHeaders, each_compiles_alone_as_cpp17) { expect_all_compile("c++17"); }

TEST(PublicHeaders, each_compiles_alone_as_cpp20) { expect_all_compile("c++20"); }
