// The memory of commands: it does not grow with the table.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/tools/rich_file.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class ToolMemory : public Tool {
protected:
    // The most that the process had, in KiB.
    static long peak_of(const std::vector<std::string>& words) {
        const pid_t child = ::fork();
        if (child == 0) {
            const int nothing = ::open("/dev/null", O_WRONLY);
            ::dup2(nothing, 1);
            std::vector<char*> arguments{const_cast<char*>(KVDB_TOOL)};
            for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
            arguments.push_back(nullptr);
            ::execv(KVDB_TOOL, arguments.data());
            std::_Exit(127);
        }
        int status = 0;
        rusage usage{};
        EXPECT_EQ(::wait4(child, &status, 0, &usage), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        return usage.ru_maxrss;
    }
};

TEST_F(ToolMemory, import_needs_no_more_for_many_lines) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs memory of its own";
#endif
    ASSERT_EQ(demo().code, 0);
    {
        std::ofstream csv(scratch_.file("many.csv"), std::ios::binary);
        csv << "Name,Producer\n";
        for (int n = 0; n < 60000; ++n) csv << std::string(250, 'n') << "," << std::string(250, 'p') << "\n";
    }
    constexpr long kMostKibibytes = 32 * 1024;
    EXPECT_LT(peak_of({"import", studio_, "Projects", scratch_.file("many.csv")}), kMostKibibytes);
    ASSERT_GT(std::filesystem::file_size(file("sldb.mdb")), kMostKibibytes * 1024);
    EXPECT_LT(peak_of({"set", studio_, "Projects", "50000", "Name=x"}), kMostKibibytes);
}

TEST_F(ToolMemory, reading_needs_no_more_for_a_large_table) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs memory of its own";
#endif
    ASSERT_EQ(demo().code, 0);
    {
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(file("sldb.mdb"), options);
        jet::Transaction filling(database->pager());
        jet::Table& table = *database->find_table(u"Projects");
        const std::size_t columns = table.def().columns.size();
        const std::size_t name = *table.def().find_column(u"Name");
        const std::size_t producer = *table.def().find_column(u"Producer");
        for (int n = 0; n < 60000; ++n) {
            std::vector<jet::Value> row(columns);
            row[name] = std::u16string(250, static_cast<char16_t>(u'a' + n * 7919 % 26));
            row[producer] = std::u16string(250, u'p');
            table.insert(row);
        }
        filling.commit();
        database->close();
    }
    constexpr long kMostKibibytes = 32 * 1024;
    ASSERT_GT(std::filesystem::file_size(file("sldb.mdb")), kMostKibibytes * 1024);
    const std::string studio = studio_;
    const std::vector<std::vector<std::string>> commands{
        {"list", studio, "Projects"},
        {"list", studio, "Projects", "--json"},
        {"list", studio, "Projects", "--where", "Name~nnn", "--csv"},
        {"list", studio, "Projects", "--sort", "Name,-ProjID", "--csv"},
        {"list", studio, "Projects", "--filter", "ClientID=0", "--sort", "-ProjID"},
        {"rows", studio, "Projects", "--sort", "ProjID", "--csv"},
        {"rows", studio, "Projects", "--csv"},
        {"search", studio, "pz"},
        {"sql", studio, "SELECT * FROM Projects"},
        {"sql", studio, "SELECT * FROM Projects WHERE ProjID > 5 ORDER BY Name"},
        {"projects", studio},
        {"export", studio, scratch_.file("x.sqlite"), "--to", "sqlite"},
        {"export", studio, scratch_.file("x.csv"), "--to", "csv"},
        {"export", studio, scratch_.file("x.postgres"), "--to", "postgres"},
        {"report", studio, "-o", scratch_.file("x.html")},
    };
    for (const std::vector<std::string>& words : commands) {
        EXPECT_LT(peak_of(words), kMostKibibytes) << words[0] << " " << words.back();
    }
}

}  // namespace
