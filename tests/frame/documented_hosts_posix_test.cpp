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

// The host in Python does what it says; its failures are exceptions with the words that the gate left.
TEST(DocumentedHosts, python_host_calls_gates_and_gets_failures_as_exceptions) {
#ifdef KVDB_SANITIZED
    GTEST_SKIP() << "a library built with a sanitizer needs it in its host";
#endif
    if (std::system("python3 -c 'import ctypes' 2>/dev/null") != 0) GTEST_SKIP() << "python3 is not installed";
    std::ifstream in(KVDB_DOCS "/hosting.md");
    const std::string document{std::istreambuf_iterator<char>(in), {}};
    const std::size_t begin = document.find("```python\n") + 10;
    ASSERT_NE(begin, std::string::npos + 10);
    const testing_support::TempFolder folder;
    std::ofstream(folder.file("host.py")) << document.substr(begin, document.find("```", begin) - begin);
    const std::string library = folder.file("libkvdb.so");
    std::filesystem::copy_file(KVDB_LIBRARY, library);
    const std::string run = "LC_ALL=C.UTF-8 python3 -W error '" + folder.file("host.py") + "' '" + library + "' >'" +
                            folder.file("out") + "' 2>&1";
    EXPECT_EQ(std::system(run.c_str()), 0);
    std::ifstream out_file(folder.file("out"));
    const std::string out{std::istreambuf_iterator<char>(out_file), {}};
    EXPECT_EQ(out.rfind("version 210000\nproject 1 Night Trains\nfirst Guitar\nfailed DeleteProj: "
                        "Nothing was deleted from Projects in ",
                        0),
              0u)
        << out;
    EXPECT_NE(out.find("sldb.mdb. No row has the key 999. "), std::string::npos) << out;
}
