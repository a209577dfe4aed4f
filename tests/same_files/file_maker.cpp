// Uses a studio in a fixed way with the clock stopped, and keeps its files, which are the same on every system.
//
//     file_maker FOLDER     writes the files to FOLDER
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/same_files/fixed_clock.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: file_maker FOLDER\n");
        return 2;
    }
    const std::string folder = argv[1];
#ifdef _WIN32
    _putenv_s("KVDB_KEEP_FILES", folder.c_str());
#else
    setenv("KVDB_KEEP_FILES", folder.c_str(), 1);
#endif
    testing_support::stop_clock();
    argc = 1;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
