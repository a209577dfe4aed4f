// Every public header compiles alone, in both language versions, without a warning, as applications compile it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

// Whether the compiler accepts the source.
bool compiles(const testing_support::TempFolder& folder, const std::string& text, const std::string& options) {
    const std::string source = folder.file("alone.cpp");
    std::ofstream(source) << text;
    const std::string command = "'" KVDB_CXX "' " + options +
                                " -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I'" KVDB_INCLUDE "' '" + source + "'";
    return std::system(command.c_str()) == 0;
}

void expect_all_compile(const std::string& options) {
    const testing_support::TempFolder folder;
    int headers = 0;
    for (const auto& entry : fs::directory_iterator(KVDB_INCLUDE "/kvdb")) {
        EXPECT_TRUE(compiles(folder, "#include <kvdb/" + entry.path().filename().string() + ">\n", options))
            << entry.path();
        ++headers;
    }
    EXPECT_GE(headers, 7);
}

}  // namespace

TEST(PublicHeaders, each_compiles_alone_as_cpp17) { expect_all_compile("-std=c++17"); }

TEST(PublicHeaders, each_compiles_alone_as_cpp20) { expect_all_compile("-std=c++20"); }

TEST(PublicHeaders, host_without_exceptions_compiles) {
    const testing_support::TempFolder folder;
    EXPECT_TRUE(compiles(folder, "#include <kvdb/kvdb.h>\n", "-std=c++17 -fno-exceptions"));
}

// There is nobody to tell.
TEST(PublicHeaders, host_without_exceptions_ends_where_a_text_gets_no_memory) {
    const testing_support::TempFolder folder;
    const std::string source = folder.file("host.cpp");
    const std::string program = folder.file("host");
    std::ofstream(source) << R"(
        #include <kvdb/kvdb.h>
        #include <sys/resource.h>
        int main(int argc, char**) {
            const rlimit little{64 << 20, 64 << 20};
            if (setrlimit(RLIMIT_AS, &little) != 0) return 2;
            CString text;
            text.GetBuffer(argc > 1 ? 1 << 30 : 1 << 10);
            return 0;
        }
    )";
    const std::string compile =
        "'" KVDB_CXX "' -std=c++17 -fno-exceptions -I'" KVDB_INCLUDE "' -o '" + program + "' '" + source + "'";
    ASSERT_EQ(std::system(compile.c_str()), 0);
    EXPECT_EQ(std::system(("'" + program + "'").c_str()), 0);
    EXPECT_NE(std::system(("'" + program + "' much 2>/dev/null").c_str()), 0);
}

// A host whose framework has classes of these names; the records' members are ours all the same.
TEST(PublicHeaders, host_with_value_classes_of_its_own_gets_the_same_records) {
    const testing_support::TempFolder folder;
    const std::string host = R"(
        class CString { char own[100]; };
        class CTime { char own[100]; };
        class CDaoException { char own[100]; };
        #include <kvdb/kvdb.h>
        static_assert(sizeof(SongInfo) == (sizeof(void*) == 8 ? 128 : 76));
        static_assert(sizeof(::CString) == 100 && sizeof(::CTime) == 100 && sizeof(::CDaoException) == 100);
        kvdb::CString name_of(const SongInfo& song) { return song.Name; }
        kvdb::CTime date_of(const BookingInfo& booking) { return booking.DateStart; }
    )";
    EXPECT_TRUE(compiles(folder, "#define KVDB_NO_VALUE_CLASSES\n" + host, "-std=c++17"));
    EXPECT_FALSE(compiles(folder, host, "-std=c++20 -w 2>/dev/null"));
}
