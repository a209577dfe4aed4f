// The tool in a folder that belongs to somebody else: nothing in it is loaded, nothing is left in it, and reading needs
// no right to write.
#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "jet/tables/database.h"
#include "tests/old_files/old_files.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class OtherFolder : public Tool {
protected:
    int run_as_nobody(const std::string& command);
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    std::vector<std::string> reading_commands() const {
        const std::string password = " --password KvStudio2005sl";
        return {"info " + in_quotes(studio_),
                "projects " + in_quotes(studio_),
                "list " + in_quotes(studio_) + " Songs ProjID=1",
                "list " + in_quotes(studio_) + " Gear",
                "list " + in_quotes(studio_) + " Def_ProjTypes",
                "show " + in_quotes(studio_) + " Invoices 1",
                "list " + in_quotes(studio_) + " Projects --where ProjID=1 --sort Name --limit 1",
                "search " + in_quotes(studio_) + " Aurora",
                "sql " + in_quotes(studio_) + " 'SELECT * FROM Projects'",
                "tables " + in_quotes(studio_),
                "rows " + in_quotes(studio_) + " Invoices",
                "tables " + main_file() + password,
                "schema " + main_file() + password,
                "rows " + main_file() + " Projects" + password,
                "check " + main_file() + password};
    }
};

// Reads what arrives, at least one byte of it.
void wait_for_output(int descriptor) {
    char first = 0;
    ASSERT_EQ(read(descriptor, &first, 1), 1);
}

TEST_F(OtherFolder, library_that_lies_there_is_not_loaded) {
    std::ofstream(file("libkvdb.so")) << "not the component";
    std::ofstream(file("kvdb.dll")) << "nor is this";
    for (const std::string& command : reading_commands()) {
        const Outcome outcome = run(command);
        EXPECT_EQ(outcome.code, 0) << command << ": " << outcome.errors;
    }
    EXPECT_EQ(run("add " + in_quotes(studio_) + " Projects Name=x").code, 0);
    EXPECT_EQ(run("set " + in_quotes(studio_) + " Projects 1 Name=y").code, 0);
    EXPECT_EQ(run("delete " + in_quotes(studio_) + " Projects 2").code, 0);
    EXPECT_EQ(contents(file("libkvdb.so")), "not the component");
}

TEST_F(OtherFolder, reading_commands_change_neither_files_nor_folder) {
    const std::string before = both_files();
    struct stat folder_before {};
    struct stat file_before {};
    ASSERT_EQ(stat(studio_.c_str(), &folder_before), 0);
    ASSERT_EQ(stat(file("sldb.mdb").c_str(), &file_before), 0);
    for (const std::string& command : reading_commands()) EXPECT_EQ(run(command).code, 0) << command;
    struct stat folder_after {};
    struct stat file_after {};
    ASSERT_EQ(stat(studio_.c_str(), &folder_after), 0);
    ASSERT_EQ(stat(file("sldb.mdb").c_str(), &file_after), 0);
    EXPECT_EQ(folder_after.st_mtim.tv_nsec, folder_before.st_mtim.tv_nsec);  // no name came or went
    EXPECT_EQ(file_after.st_mtim.tv_nsec, file_before.st_mtim.tv_nsec);
    EXPECT_EQ(both_files(), before);
    EXPECT_EQ(names(), kBothFiles);
}

constexpr int kCannotRun = 77;

// Runs the tool as a user without rights; its code, its errors in the file "errors".
int OtherFolder::run_as_nobody(const std::string& command) {
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_WRONLY);
        const int errors = open(scratch_.file("errors").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const bool is_nobody = setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
        if (!is_nobody || access(KVDB_TOOL, X_OK) != 0) _exit(kCannotRun);
        dup2(nothing, 1);
        dup2(errors, 2);
        execl("/bin/sh", "sh", "-c", (in_quotes(KVDB_TOOL) + " " + command).c_str(), nullptr);
        _exit(78);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
}

TEST_F(OtherFolder, reading_needs_no_right_to_write) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can become somebody else";
    for (const std::string& name : names()) ASSERT_EQ(chmod(file(name).c_str(), 0444), 0);
    ASSERT_EQ(chmod(studio_.c_str(), 0555), 0);
    ASSERT_EQ(chmod(scratch_.path().c_str(), 0755), 0);
    for (const std::string& command : reading_commands()) {
        const int code = run_as_nobody(command);
        if (code == kCannotRun) GTEST_SKIP() << "others may not run what was built here";
        EXPECT_EQ(code, 0) << command;
    }
}

TEST_F(OtherFolder, studio_that_may_not_be_looked_at_is_not_said_to_be_none) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can become somebody else";
    ASSERT_EQ(chmod(studio_.c_str(), 0700), 0);
    ASSERT_EQ(chmod(scratch_.path().c_str(), 0755), 0);
    const std::string folder = in_quotes(studio_);
    for (const std::string& command :
         {"check " + folder, "info " + folder, "tables " + folder, "schema " + folder, "rows " + folder + " Projects",
          "list " + folder + " Projects", "search " + folder + " x", "sql " + folder + " 'SELECT * FROM Projects'",
          "diff " + folder + " " + folder}) {
        const int code = run_as_nobody(command);
        if (code == kCannotRun) GTEST_SKIP() << "others may not run what was built here";
        EXPECT_EQ(code, 1) << command;
        EXPECT_NE(contents(scratch_.file("errors")).find("sldb.mdb\": Permission denied"), std::string::npos)
            << command << ": " << contents(scratch_.file("errors"));
    }
}

TEST_F(OtherFolder, interrupted_command_leaves_nothing_behind) {
    // More than a pipe holds, so that the command waits in its middle.
    {
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(file("sldb.mdb"), options);
        jet::Transaction filling(database->pager());
        jet::Table& table = *database->find_table(u"Projects");
        const std::size_t columns = table.def().columns.size();
        for (std::int32_t n = 100; n < 2000; ++n) {
            std::vector<jet::Value> row(columns);
            row[*table.def().find_column(u"ProjID")] = n;
            row[*table.def().find_column(u"Name")] = std::u16string(200, u'n');
            table.insert(row);
        }
        filling.commit();
        database->close();
    }
    for (const int signal : {SIGKILL, SIGINT, SIGTERM}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            dup2(ends[1], 1);
            close(ends[0]);
            close(ends[1]);
            execl(KVDB_TOOL, "kvdb", "list", studio_.c_str(), "Projects", nullptr);
            _exit(78);
        }
        close(ends[1]);
        wait_for_output(ends[0]);
        EXPECT_EQ(names(), kBothFiles) << "while it runs";
        kill(child, signal);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status));
        close(ends[0]);
        EXPECT_EQ(names(), kBothFiles);
    }
}

TEST_F(OtherFolder, copies_of_an_upgrade_have_mode_owner_and_times_of_the_files) {
    std::filesystem::remove_all(studio_);
    std::filesystem::create_directory(studio_);
    testing_support::make_old_studio(studio_, 200010);
    const bool is_superuser = geteuid() == 0;
    for (const std::string& name : kBothFiles) {
        ASSERT_EQ(chmod(file(name).c_str(), 0640), 0);
        if (is_superuser) {
            ASSERT_EQ(chown(file(name).c_str(), 12345, 23456), 0);
        }
        const timespec times[] = {{1000000000, 0}, {1000000001, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, file(name).c_str(), times, 0), 0);
    }
    ASSERT_EQ(run("upgrade " + in_quotes(studio_)).code, 0);
    std::size_t copies = 0;
    for (const std::string& name : names()) {
        if (name == "sldb.mdb" || name == "kvinvdb.mdb") continue;
        ++copies;
        struct stat copy {};
        ASSERT_EQ(stat(file(name).c_str(), &copy), 0);
        EXPECT_EQ(copy.st_mode & 0777u, 0640u) << name;
        EXPECT_EQ(copy.st_mtim.tv_sec, 1000000001) << name;
        if (is_superuser) {
            EXPECT_EQ(copy.st_uid, 12345u);
            EXPECT_EQ(copy.st_gid, 23456u);
        }
    }
    EXPECT_EQ(copies, 2u);
}

TEST_F(OtherFolder, link_to_a_studio_file_stays_a_link_when_it_is_taken_back) {
    std::filesystem::remove_all(studio_);
    std::filesystem::create_directory(studio_);
    testing_support::Oddities oddities;
    oddities.also = {"Services"};
    testing_support::OldFile(scratch_.file("real.mdb"), testing_support::OldFile::Kind::kStudio, 200010, oddities)
        .close();
    const std::string before = contents(scratch_.file("real.mdb"));
    std::filesystem::create_symlink(scratch_.file("real.mdb"), file("sldb.mdb"));
    expect_failure(run("upgrade " + in_quotes(studio_)), 1, "as they were before");
    EXPECT_TRUE(std::filesystem::is_symlink(file("sldb.mdb")));
    EXPECT_EQ(contents(scratch_.file("real.mdb")), before);
}

TEST_F(OtherFolder, file_that_a_host_has_open_is_in_use_for_every_command) {
    jet::OpenOptions options;
    options.ignore_password = true;
    const auto host = jet::Database::open(file("sldb.mdb"), options);
    std::vector<std::string> commands = reading_commands();
    commands.push_back("add " + in_quotes(studio_) + " Projects Name=x");
    commands.push_back("set " + in_quotes(studio_) + " Projects 1 Name=x");
    commands.push_back("delete " + in_quotes(studio_) + " Projects 1");
    commands.push_back("upgrade " + in_quotes(studio_));
    commands.push_back("export " + in_quotes(studio_) + " " + in_quotes(scratch_.file("x")) + " --to csv");
    std::ofstream(scratch_.file("in.csv")) << "Name\nx\n";
    commands.push_back("import " + in_quotes(studio_) + " Projects " + in_quotes(scratch_.file("in.csv")));
    for (const std::string& command : commands) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        expect_failure(outcome, 1, "sldb.mdb is in use by another program");
        EXPECT_TRUE(outcome.out.empty()) << outcome.out;
    }
    EXPECT_FALSE(std::filesystem::exists(scratch_.file("x")));
}

}  // namespace
