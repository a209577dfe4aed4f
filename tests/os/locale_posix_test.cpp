// The environment's locale, in child processes with their own environment.
#ifndef _WIN32
#include "os/locale_posix.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using os::DateOrder;
using os::detail::date_format_of_pattern;
using testing_support::TempFolder;

struct PatternCase {
    const char* pattern;
    const char* separator;
    DateOrder order;
};

class DatePattern : public testing::TestWithParam<PatternCase> {};

TEST_P(DatePattern, pattern_read_gives_separator_and_order) {
    const auto format = date_format_of_pattern(GetParam().pattern);
    EXPECT_EQ(format.separator, GetParam().separator) << GetParam().pattern;
    EXPECT_EQ(format.order, GetParam().order) << GetParam().pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, DatePattern,
    testing::Values(
        PatternCase{"%m/%d/%y", "/", DateOrder::kMonthDayYear}, PatternCase{"%D", "/", DateOrder::kMonthDayYear},
        PatternCase{"%d.%m.%Y", ".", DateOrder::kDayMonthYear}, PatternCase{"%e.%-m.%Y", ".", DateOrder::kDayMonthYear},
        PatternCase{"%d. %m. %Y", ".", DateOrder::kDayMonthYear},
        PatternCase{"%d-%m-%Y", "-", DateOrder::kDayMonthYear}, PatternCase{"%F", "-", DateOrder::kYearMonthDay},
        PatternCase{"%Y-%m-%d", "-", DateOrder::kYearMonthDay}, PatternCase{"%Y.%m.%d.", ".", DateOrder::kYearMonthDay},
        PatternCase{"%Oy/%Om/%Od", "/", DateOrder::kYearMonthDay},
        PatternCase{"%a, %d/%m/%y", "/", DateOrder::kDayMonthYear},
        PatternCase{"%A %d %b %Y", "/", DateOrder::kDayMonthYear},
        PatternCase{"%Y\xE5\xB9\xB4%m\xE6\x9C\x88%d", "/", DateOrder::kYearMonthDay},
        PatternCase{"%d#%m#%Y", "/", DateOrder::kDayMonthYear}, PatternCase{"%d%m%Y", "/", DateOrder::kDayMonthYear},
        PatternCase{"%d....%m", "/", DateOrder::kDayMonthYear}, PatternCase{"%Y", "/", DateOrder::kYearMonthDay},
        PatternCase{"", "/", DateOrder::kMonthDayYear}, PatternCase{"%", "/", DateOrder::kMonthDayYear}));

TEST(LocaleName, codeset_in_any_spelling_says_utf8) {
    using os::detail::locale_name_says_utf8;
    EXPECT_TRUE(locale_name_says_utf8("de_DE.UTF-8"));
    EXPECT_TRUE(locale_name_says_utf8("C.utf8"));
    EXPECT_TRUE(locale_name_says_utf8("sr_RS.utf-8@latin"));
    EXPECT_FALSE(locale_name_says_utf8("de_DE"));
    EXPECT_FALSE(locale_name_says_utf8("de_DE.ISO-8859-15@euro"));
    EXPECT_FALSE(locale_name_says_utf8("de_DE@utf8"));
    EXPECT_FALSE(locale_name_says_utf8(""));
}

struct Answers {
    std::string separator;
    int order = -1;
    std::string code_page;
    double local_time = 0;
    std::string module;
};

// Runs `command` in a shell and returns its output lines.
std::vector<std::string> output_of(const std::string& command) {
    std::FILE* pipe = ::popen(command.c_str(), "r");
    std::vector<std::string> lines;
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), line.size(), pipe) != nullptr) {
        lines.emplace_back(line.data());
        lines.back().pop_back();
    }
    EXPECT_EQ(::pclose(pipe), 0) << command;
    return lines;
}

std::string quoted(const std::string& text) { return "'" + text + "'"; }

// The answers to a process whose only locale variables are `environment` ("NAME=value ..."). The C library never frees
// what it allocates for LOCPATH, so leak detection is off.
Answers ask(const std::string& environment, const std::string& program = KVDB_OS_PROBE) {
    const std::vector<std::string> lines =
        output_of("env -u LC_ALL -u LC_TIME -u LC_CTYPE -u LANG -u LOCPATH ASAN_OPTIONS=detect_leaks=0 " + environment +
                  " " + quoted(program));
    if (lines.size() != 5) {
        ADD_FAILURE() << "the probe answered " << lines.size() << " lines";
        return {};
    }
    return {lines[0], std::stoi(lines[1]), lines[2], std::stod(lines[3]), lines[4]};
}

TEST(EnvironmentLocale, c_or_none_is_slash_month_first_and_1252) {
    for (const char* environment : {"", "LC_ALL=C", "LC_ALL=POSIX", "LANG=C"}) {
        const Answers answers = ask(environment);
        EXPECT_EQ(answers.separator, "/") << environment;
        EXPECT_EQ(answers.order, 0) << environment;
        EXPECT_EQ(answers.code_page, "1252") << environment;
    }
}

TEST(EnvironmentLocale, uninstalled_behaves_as_c_but_its_name_decides_the_code_page) {
    TempFolder nothing_installed;
    const std::string path = "LOCPATH=" + quoted(nothing_installed.path()) + " ";
    for (const char* name : {"LC_ALL=xx_XX.UTF-8", "LANG=xx_XX.utf8", "LC_ALL=de_DE.UTF-8"}) {
        const Answers answers = ask(path + name);
        EXPECT_EQ(answers.separator, "/") << name;
        EXPECT_EQ(answers.order, 0) << name;
        EXPECT_EQ(answers.code_page, "utf-8") << name;
    }
    EXPECT_EQ(ask(path + "LC_ALL=xx_XX").code_page, "1252");
    EXPECT_EQ(ask(path + "LC_ALL=xx_XX LANG=xx_XX.UTF-8").code_page, "1252") << "LC_ALL decides before LANG";
}

// Compiles locales for this test, so that nothing depends on those installed on the machine.
class InstalledLocale : public testing::Test {
protected:
    // False where the sources of the locales are not installed.
    bool install(const std::string& source, const std::string& charmap, const std::string& name) {
        const std::string command = "localedef -c --no-archive -i " + source + " -f " + charmap + " " +
                                    quoted(folder_.file(name)) + " >" + quoted(folder_.file("log")) + " 2>&1";
        return std::system(command.c_str()) == 0;
    }
    Answers ask_with(const std::string& environment) {
        return ask("LOCPATH=" + quoted(folder_.path()) + " " + environment);
    }

    TempFolder folder_;
};

TEST_F(InstalledLocale, german_utf8_has_points_day_first) {
    if (!install("de_DE", "UTF-8", "de_DE.UTF-8")) GTEST_SKIP() << "localedef or the locale sources are not installed";
    const Answers answers = ask_with("LC_ALL=de_DE.UTF-8");
    EXPECT_EQ(answers.separator, ".");
    EXPECT_EQ(answers.order, 1);
    EXPECT_EQ(answers.code_page, "utf-8");
    EXPECT_EQ(ask_with("LANG=de_DE.UTF-8").separator, ".");
    // Each category by itself.
    EXPECT_EQ(ask_with("LC_TIME=de_DE.UTF-8").separator, ".");
    EXPECT_EQ(ask_with("LC_TIME=de_DE.UTF-8").code_page, "1252");
    EXPECT_EQ(ask_with("LC_CTYPE=de_DE.UTF-8").separator, "/");
    EXPECT_EQ(ask_with("LC_CTYPE=de_DE.UTF-8").code_page, "utf-8");
}

TEST_F(InstalledLocale, german_latin1_is_code_page_1252) {
    if (!install("de_DE", "ISO-8859-1", "de_DE")) GTEST_SKIP() << "localedef or the locale sources are not installed";
    const Answers answers = ask_with("LC_ALL=de_DE");
    EXPECT_EQ(answers.separator, ".");
    EXPECT_EQ(answers.order, 1);
    EXPECT_EQ(answers.code_page, "1252");
}

TEST_F(InstalledLocale, swedish_has_hyphens_year_first) {
    if (!install("sv_SE", "UTF-8", "sv_SE.UTF-8")) GTEST_SKIP() << "localedef or the locale sources are not installed";
    const Answers answers = ask_with("LC_ALL=sv_SE.UTF-8");
    EXPECT_EQ(answers.separator, "-");
    EXPECT_EQ(answers.order, 2);
}

TEST_F(InstalledLocale, american_has_slashes_month_first) {
    if (!install("en_US", "UTF-8", "en_US.UTF-8")) GTEST_SKIP() << "localedef or the locale sources are not installed";
    const Answers answers = ask_with("LC_ALL=en_US.UTF-8");
    EXPECT_EQ(answers.separator, "/");
    EXPECT_EQ(answers.order, 0);
}

TEST(LocalTime, zone_of_the_environment_is_applied) {
    const double utc = ask("TZ=UTC0").local_time;
    const double east = ask("TZ=EAST-5").local_time;
    const double west = ask("TZ=WEST8").local_time;
    constexpr double kMinute = 1.0 / 1440;
    EXPECT_NEAR(east - utc, 5.0 / 24, kMinute);
    EXPECT_NEAR(utc - west, 8.0 / 24, kMinute);
    const double now = static_cast<double>(std::time(nullptr)) / 86400 + 25569;
    EXPECT_NEAR(utc, now, kMinute);
}

TEST(ModulePath, program_started_by_relative_or_linked_path_is_absolute_and_resolved) {
    const std::string real = fs::canonical(KVDB_OS_PROBE).string();
    EXPECT_EQ(ask("").module, real);
    TempFolder folder;
    fs::create_symlink(real, folder.file("link"));
    EXPECT_EQ(ask("", folder.file("link")).module, real);
    EXPECT_EQ(output_of("cd " + quoted(os::folder_of(real)) + " && ./" + fs::path(real).filename().string()).back(),
              real);
}

// Loads a copy of the module by the path `name` relative to `folder`, leaves the folder, and asks.
std::string module_path_after_leaving(const std::string& folder, const std::string& name) {
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    void* module = ::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    fs::current_path(before);
    if (module == nullptr) return ::dlerror();
    const auto ask_module = reinterpret_cast<const char* (*)()>(::dlsym(module, "probe_module_path"));
    const std::string answer = ask_module != nullptr ? ask_module() : "no such function";
    ::dlclose(module);
    return answer;
}

TEST(ModulePath, library_loaded_by_relative_path_is_found_after_the_folder_changed) {
    TempFolder folder;
    const std::string copy = folder.file("a copy.so");
    fs::copy_file(KVDB_OS_PROBE_MODULE, copy);
    EXPECT_EQ(module_path_after_leaving(folder.path(), "./a copy.so"), copy);
}

TEST(ModulePath, library_loaded_through_a_link_is_where_the_link_is) {
    TempFolder folder;
    TempFolder elsewhere;
    const std::string copy = elsewhere.file("copy.so");
    fs::copy_file(KVDB_OS_PROBE_MODULE, copy);
    fs::create_symlink(copy, folder.file("link.so"));
    EXPECT_EQ(module_path_after_leaving(folder.path(), folder.file("link.so")), folder.file("link.so"));
}

TEST(ModulePath, library_loaded_through_a_relative_link_is_where_the_link_is) {
    TempFolder folder;
    TempFolder elsewhere;
    fs::copy_file(KVDB_OS_PROBE_MODULE, elsewhere.file("copy.so"));
    fs::create_symlink(elsewhere.file("copy.so"), folder.file("link.so"));
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    void* module = ::dlopen("./link.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << ::dlerror();
    const std::string answer = reinterpret_cast<const char* (*)()>(::dlsym(module, "probe_module_path"))();
    fs::current_path(before);
    ::dlclose(module);
    EXPECT_EQ(answer, folder.file("link.so"));
}

TEST(ModulePath, two_copies_in_one_process_each_tell_their_own_place) {
    TempFolder one;
    TempFolder two;
    std::vector<std::string> answers;
    std::vector<void*> modules;
    for (const TempFolder* folder : {&one, &two}) {
        fs::copy_file(KVDB_OS_PROBE_MODULE, folder->file("m.so"));
        void* module = ::dlopen(folder->file("m.so").c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(module, nullptr) << ::dlerror();
        modules.push_back(module);
        answers.emplace_back(reinterpret_cast<const char* (*)()>(::dlsym(module, "probe_module_path"))());
    }
    EXPECT_EQ(answers, (std::vector<std::string>{one.file("m.so"), two.file("m.so")}));
    for (void* module : modules) ::dlclose(module);
}

}  // namespace
#endif
