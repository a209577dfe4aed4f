// The host of docs/hosting.md does what the document says.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_folder.h"

TEST(DocumentedHosts, host_makes_a_project) {
    const testing_support::TempFolder folder;
    const std::string library = folder.file("libkvdb.so");
    std::filesystem::copy_file(KVDB_LIBRARY, library);
    const std::string run = "'" KVDB_DOCUMENTED_HOST "' '" + library + "' >'" + folder.file("out") + "'";
    EXPECT_EQ(std::system(run.c_str()), 0);
    std::ifstream out(folder.file("out"));
    std::string line;
    std::getline(out, line);
    EXPECT_EQ(line, "project 1");
    // For a foreign file the host prints the engine's text.
    std::ofstream(folder.file("sldb.mdb")) << "this is no database";
    EXPECT_NE(std::system(run.c_str()), 0);
    std::ifstream again(folder.file("out"));
    std::getline(again, line);
    EXPECT_NE(line.find("sldb.mdb"), std::string::npos) << line;
}
