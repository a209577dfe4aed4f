// The installed tree, and a host that finds it by CMake package and by pkg-config.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class InstallSlow : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(run("'" KVDB_CMAKE "' --install '" KVDB_BUILD "' --prefix '" + prefix() + "'"), 0);
    }

    std::string prefix() const { return folder_.file("prefix"); }
    std::string file(const std::string& name) const { return folder_.file(name); }

    // Whether a host is linked to the library, and so needs the installed one at its start.
    static bool names_the_library(const std::string& host) {
        return run("readelf -d '" + host + "' | grep -E 'kvdb|R(UN)?PATH'") == 0;
    }
    static int run(const std::string& command) { return std::system((command + " >/dev/null").c_str()); }

private:
    testing_support::TempFolder folder_;
};

// A library built with a sanitizer needs it in its host.
#ifdef KVDB_SANITIZED
constexpr bool kForeignHosts = false;
#else
constexpr bool kForeignHosts = true;
#endif

constexpr const char* kHost = KVDB_TESTS "/frame/install_host";

}  // namespace

TEST_F(InstallSlow, tree_has_headers_library_and_packages) {
    for (const char* name :
         {"include/kvdb/kvdb.h", "include/kvdb/com.h", "include/kvdb/cstring.h", "include/kvdb/ctime.h",
          "include/kvdb/dao_exception.h", "include/kvdb/gates.h", "include/kvdb/records.h", "lib/libkvdb.so",
          "lib/cmake/kvdb/kvdb-config.cmake", "lib/pkgconfig/kvdb.pc"}) {
        EXPECT_TRUE(fs::exists(fs::path(prefix()) / name)) << name;
    }
#ifdef KVDB_TOOL
    for (const char* name : {"bin/kvdb", "share/man/man1/kvdb.1", "share/man/man5/kvdb-files.5",
                             "share/doc/kvdb/owners.md", "share/bash-completion/completions/kvdb",
                             "share/zsh/vendor-completions/_kvdb", "share/fish/vendor_completions.d/kvdb.fish"}) {
        EXPECT_TRUE(fs::exists(fs::path(prefix()) / name)) << name;
        EXPECT_NE(fs::file_size(fs::path(prefix()) / name), 0u) << name;
    }
#endif
}

TEST_F(InstallSlow, host_finds_the_cmake_package) {
    if (!kForeignHosts) GTEST_SKIP() << "the library is built with a sanitizer";
    ASSERT_EQ(run("'" KVDB_CMAKE "' -S '" + std::string(kHost) + "' -B '" + file("host") + "' -DCMAKE_PREFIX_PATH='" +
                  prefix() + "' -DCMAKE_CXX_COMPILER='" KVDB_CXX "'"),
              0);
    ASSERT_EQ(run("'" KVDB_CMAKE "' --build '" + file("host") + "'"), 0);
    EXPECT_EQ(run("'" + file("host/host") + "'"), 0);
    EXPECT_FALSE(names_the_library(file("host/host")));
}

TEST_F(InstallSlow, host_finds_the_pkg_config_package) {
    if (!kForeignHosts) GTEST_SKIP() << "the library is built with a sanitizer";
    if (run("pkg-config --version") != 0) GTEST_SKIP() << "pkg-config is not installed";
    const std::string with_path = "PKG_CONFIG_PATH='" + prefix() + "/lib/pkgconfig' ";
    ASSERT_EQ(run(with_path + "sh -c \"'" KVDB_CXX "' -std=c++17 -o '" + file("pc_host") + "' '" + kHost +
                  "/host.cpp' \\$(pkg-config --cflags --libs kvdb) -ldl\""),
              0);
    EXPECT_EQ(run(with_path + "sh -c \"'" + file("pc_host") + "' \\$(pkg-config --variable=library kvdb)\""), 0);
    EXPECT_FALSE(names_the_library(file("pc_host")));
}
