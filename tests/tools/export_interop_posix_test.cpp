// Exports read back by the programs that they are for, and compared value by value: SQLite by its own library and
// shell, CSV by another reader, PostgreSQL by a server that the test starts in a folder of its own.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/old_files/old_files.h"
#include "tests/tools/rich_file.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class ExportInterop : public Tool {
protected:
    static bool has_program(const std::string& name) {
        return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
    }
    // What a shell's command prints.
    std::string output_of(const std::string& command) {
        const int status = std::system((command + " >" + in_quotes(scratch_.file("shell")) + " 2>&1").c_str());
        EXPECT_EQ(status, 0) << contents(scratch_.file("shell"));
        return contents(scratch_.file("shell"));
    }
    // Exports the file beside the others, and adds both to the words of the comparison.
    void write(const std::string& form, const std::string& source, const std::string& name, const std::string& more) {
        const std::string to = scratch_.file(name + "." + form);
        const Outcome outcome = run("export " + in_quotes(source) + " " + in_quotes(to) + " --to " + form + more);
        ASSERT_EQ(outcome.code, 0) << outcome.errors;
        pairs_ += " " + in_quotes(source) + " " + in_quotes(to);
    }
    void compare_all(const std::string& form, const std::string& more = "") {
        if (!has_program("python3")) GTEST_SKIP() << "no python3";
        ASSERT_EQ(demo().code, 0);
        ASSERT_EQ(run("set " + in_quotes(studio_) + " Projects 1 'Notes=one, \"two\"; three\n\\. four'").code, 0);
        write(form, studio_, "studio", more);
        make_rich_file(scratch_.file("rich.mdb"));
        write(form, scratch_.file("rich.mdb"), "rich", more);
        // Texts in bytes of a code page, pages of half the size.
        std::filesystem::create_directory(scratch_.file("jet3"));
        {
            const testing_support::UseOldFormat use(jet::kJet3);
            testing_support::make_old_studio(scratch_.file("jet3"), 200010);
        }
        write(form, scratch_.file("jet3"), "jet3", more);
        // Types that no new file has: numerics of many digits, and identities.
        for (const char* const sample : {"fixedNumericTestV2000", "testV2000"}) {
            const std::string path = std::string(KVDB_SAMPLES "/") + sample + ".mdb";
            if (std::filesystem::exists(path)) write(form, path, sample, more);
        }
        const std::string report = scratch_.file("report");
        const std::string command = "python3 " + in_quotes(KVDB_TEST_SCRIPTS "/compare_export.py") + " " +
                                    in_quotes(KVDB_TOOL) + " " + form + pairs_ + " >" + in_quotes(report) + " 2>&1";
        const int status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "not on this machine: what reads " << form;
        EXPECT_EQ(WEXITSTATUS(status), 0) << contents(report);
        EXPECT_NE(contents(report).find(" 0 differences"), std::string::npos) << contents(report);
    }

private:
    std::string pairs_;
};

TEST_F(ExportInterop, sqlite_reads_the_same_values) {
    compare_all("sqlite");
    if (IsSkipped()) return;
    if (!has_program("sqlite3")) GTEST_SKIP() << "no shell of SQLite";
    const std::string shell = "sqlite3 -batch " + in_quotes(scratch_.file("studio.sqlite")) + " ";
    EXPECT_EQ(output_of(shell + "'PRAGMA integrity_check'"), "ok\n");
    EXPECT_EQ(output_of(shell + "'SELECT Total, Paymetns FROM Invoices WHERE Total > 900'"), "930.56|200.0\n");
    EXPECT_EQ(output_of(shell + "'SELECT pk FROM pragma_table_info(\"Projects\") WHERE name=\"ProjID\"'"), "1\n");
    EXPECT_EQ(output_of(shell + "'SELECT count(*) FROM pragma_index_list(\"Songs\")'"), "7\n");
    EXPECT_EQ(output_of(shell + "'SELECT Name, project_name FROM list_of_songs'"),
              "Last Departure|Night Trains\nPlatform 9|Night Trains\n");
    EXPECT_EQ(output_of(shell + "'SELECT client_name, room_name FROM list_of_bookings'"),
              "Aurora Quartet|Studio A\nNorth Radio|Studio A\n");
    EXPECT_EQ(output_of(shell + "'SELECT Payments FROM list_of_invoices'"), "200.0\n");
    EXPECT_EQ(output_of(shell + "'SELECT type FROM kvdb_columns WHERE column_name=\"Total\" AND "
                                "table_name=\"Invoices\"'"),
              "currency\n");
    const std::string rich = "sqlite3 -batch " + in_quotes(scratch_.file("rich.sqlite")) + " ";
    EXPECT_EQ(output_of(rich + "'SELECT Money FROM \"Rich; table \"\"1\"\"\" LIMIT 2'"),
              "922337203685477.5807\n-922337203685477.5808\n");
}

TEST_F(ExportInterop, sqlite_script_gives_the_same_database) {
    if (!has_program("sqlite3")) GTEST_SKIP() << "no shell of SQLite";
    make_rich_file(scratch_.file("rich.mdb"));
    const auto write_as = [&](const std::string& form, const std::string& name) {
        const Outcome outcome = run("export " + in_quotes(scratch_.file("rich.mdb")) + " " +
                                    in_quotes(scratch_.file(name)) + " --to " + form);
        ASSERT_EQ(outcome.code, 0) << outcome.errors;
    };
    write_as("sqlite", "by library");
    write_as("sqlite-script", "script");
    output_of("sqlite3 -batch " + in_quotes(scratch_.file("by script")) + " <" + in_quotes(scratch_.file("script")));
    const auto dump = [&](const std::string& name) {
        return output_of("sqlite3 -batch " + in_quotes(scratch_.file(name)) + " .dump");
    };
    const std::string by_library = dump("by library");
    EXPECT_GT(by_library.size(), 100000U);
    EXPECT_TRUE(dump("by script") == by_library);
}

TEST_F(ExportInterop, csv_reads_the_same_values) { compare_all("csv"); }

TEST_F(ExportInterop, json_lines_read_the_same_values) { compare_all("jsonl"); }

TEST_F(ExportInterop, html_page_holds_the_same_values) { compare_all("html"); }

TEST_F(ExportInterop, postgres_loads_the_same_values) { compare_all("postgres", " --schema 'the \"studio\"'"); }

// Starts the tool, and gives its process.
pid_t start(const std::vector<std::string>& words) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    std::vector<char*> arguments{const_cast<char*>(KVDB_TOOL)};
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    std::fclose(stderr);
    ::execv(KVDB_TOOL, arguments.data());
    std::_Exit(127);
}

TEST_F(ExportInterop, interrupted_export_leaves_nothing) {
    make_rich_file(scratch_.file("rich.mdb"), 300000);
    for (const std::string form : {"sqlite", "jsonl", "postgres", "html"}) {
        SCOPED_TRACE(form);
        const std::string to = scratch_.file("interrupted." + form);
        const pid_t child = start({"export", scratch_.file("rich.mdb"), to, "--to", form});
        ASSERT_GT(child, 0);
        while (!std::filesystem::exists(to + ".kvdb-draft")) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ::kill(child, SIGINT);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_FALSE(std::filesystem::exists(to));
        EXPECT_FALSE(std::filesystem::exists(to + ".kvdb-draft"));
    }
}

TEST_F(ExportInterop, export_that_cannot_be_written_leaves_nothing) {
    make_rich_file(scratch_.file("rich.mdb"), 20000);
    for (const std::string form : {"sqlite", "sqlite-script", "csv", "jsonl", "postgres", "html"}) {
        SCOPED_TRACE(form);
        const std::string to = scratch_.file("full." + form);
        const std::string errors = scratch_.file("errors");
        // A file of this process may have 100 KiB.
        const std::string command = "ulimit -f 200; " + in_quotes(KVDB_TOOL) + " export " +
                                    in_quotes(scratch_.file("rich.mdb")) + " " + in_quotes(to) + " --to " + form +
                                    " 2>" + in_quotes(errors);
        const int status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_NE(contents(errors).find("cannot be written"), std::string::npos) << contents(errors);
        EXPECT_FALSE(std::filesystem::exists(to));
        EXPECT_FALSE(std::filesystem::exists(to + ".kvdb-draft"));
    }
}

}  // namespace
