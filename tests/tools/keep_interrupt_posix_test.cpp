// Ctrl-C in the middle of a long piece of work: nothing half done stays, and what was there is as it was.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <thread>

#include "jet/tables/database.h"
#include "tests/old_files/old_files.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
namespace fs = std::filesystem;

std::map<std::string, std::string> all_files(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        std::string bytes(entry.file_size(), 0);
        std::ifstream(entry.path(), std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        files[entry.path().string()] = std::move(bytes);
    }
    return files;
}

class KeepInterrupted : public Tool {
protected:
    void SetUp() override {
        ASSERT_EQ(demo().code, 0);
        fill(file("sldb.mdb"), 30000);
    }

    static void fill(const std::string& path, int rows) {
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(path, options);
        jet::Table& table = *database->find_table(u"Projects");
        const std::size_t name = table.def().find_column(u"Name").value();
        jet::Transaction filling(database->pager());
        for (int i = 0; i < rows; ++i) {
            std::vector<jet::Value> values(table.def().columns.size());
            values[name] = std::u16string(200, u'n');
            table.insert(std::move(values));
        }
        filling.commit();
        database->close();
    }

    // The command as a process, its messages in the file.
    static pid_t start(std::vector<std::string> words, const std::string& out) {
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child != 0) return child;
        std::vector<char*> arguments{const_cast<char*>(KVDB_TOOL)};
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        static_cast<void>(std::freopen(out.c_str(), "w", stdout));
        static_cast<void>(std::freopen(out.c_str(), "a", stderr));
        ::execv(KVDB_TOOL, arguments.data());
        std::_Exit(127);
    }

    // Its status at its end.
    int interrupt_after(std::vector<std::string> words, std::chrono::milliseconds delay) {
        const pid_t child = start(std::move(words), scratch_.file("messages"));
        std::this_thread::sleep_for(delay);
        ::kill(child, SIGINT);
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return status;
    }

    // Starts the command, waits until `is_under_way`, sends it the signal, and expects it to end as one that failed
    // and to leave what is in the test's folder as it was.
    void expect_taken_back(std::vector<std::string> words, const std::function<bool(pid_t)>& is_under_way) {
        SCOPED_TRACE(words[0] + " " + words.back());
        const auto before = all_files(scratch_.path());
        const std::string out = scratch_.file("messages");
        const pid_t child = start(std::move(words), out);
        int status = 0;
        bool has_ended = false;
        while (!is_under_way(child) && !has_ended) {
            has_ended = ::waitpid(child, &status, WNOHANG) == child;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ASSERT_FALSE(has_ended) << contents(out);
        ::kill(child, SIGINT);
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << contents(out);
        EXPECT_EQ(WEXITSTATUS(status), 1) << contents(out);
        EXPECT_NE(contents(out).find("interrupted"), std::string::npos) << contents(out);
        fs::remove(out);
        const auto after = all_files(scratch_.path());
        for (const auto& [path, bytes] : after) EXPECT_TRUE(before.contains(path)) << path;
        EXPECT_EQ(before, after) << "the files differ";
    }
    // Until a file of that beginning lies in the folder.
    static std::function<bool(pid_t)> appears(const std::string& folder, const std::string& begin) {
        return [=](pid_t) {
            std::error_code error;
            for (const auto& entry : fs::directory_iterator(folder, error)) {
                if (entry.path().filename().string().starts_with(begin)) return true;
            }
            return false;
        };
    }
};

bool catches_the_signal(pid_t process) {
    const std::string status = contents("/proc/" + std::to_string(process) + "/status");
    const std::size_t at = status.find("SigCgt:");
    if (at == std::string::npos) return false;
    return (std::stoull(status.substr(at + 7), nullptr, 16) >> (SIGINT - 1) & 1) != 0;
}

TEST_F(KeepInterrupted, backup_leaves_no_draft_and_no_half_set) {
    const std::string copies = scratch_.file("copies");
    fs::create_directory(copies);
    expect_taken_back({"backup", studio_, copies}, appears(copies, "sldb-"));
}

TEST_F(KeepInterrupted, restore_leaves_the_studio_as_it_was) {
    const std::string copies = scratch_.file("copies");
    ASSERT_EQ(run("backup " + in_quotes(studio_) + " " + in_quotes(copies)).code, 0);
    ASSERT_EQ(run("add " + in_quotes(studio_) + " Projects Name=later").code, 0);
    expect_taken_back({"restore", copies, studio_}, appears(studio_, "sldb.mdb-new-"));
}

TEST_F(KeepInterrupted, compact_leaves_the_file_as_it_was) {
    expect_taken_back({"compact", studio_}, appears(studio_, "sldb.mdb-new-"));
}

TEST_F(KeepInterrupted, salvage_leaves_no_new_file) {
    expect_taken_back({"salvage", file("sldb.mdb"), scratch_.file("saved.mdb")},
                      appears(scratch_.path(), "saved.mdb-new-"));
}

TEST_F(KeepInterrupted, report_and_exports_leave_nothing) {
    expect_taken_back({"report", studio_, "-o", scratch_.file("page.html")},
                      appears(scratch_.path(), "page.html.kvdb-draft"));
    for (const char* const form : {"csv", "sqlite"}) {
        expect_taken_back({"export", studio_, scratch_.file("exported"), "--to", form},
                          appears(scratch_.path(), "exported.kvdb-draft"));
    }
}

// Wherever in its short work it is: there is a whole studio in the folder, or nothing at all.
TEST_F(KeepInterrupted, demo_leaves_a_whole_studio_or_nothing) {
    int interrupted = 0;
    for (int delay = 1; delay < 150; delay += 1 + delay / 8) {
        SCOPED_TRACE(delay);
        const std::string folder = scratch_.file("demo of " + std::to_string(delay));
        const bool is_there = delay % 2 == 0;
        if (is_there) fs::create_directory(folder);
        const int status = interrupt_after({"demo", folder}, std::chrono::milliseconds(delay));
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
            EXPECT_EQ(all_files(folder).size(), 2u);
            EXPECT_EQ(run("check " + in_quotes(folder)).code, 0);
            continue;
        }
        if (WIFEXITED(status)) ++interrupted;
        EXPECT_EQ(fs::exists(folder), is_there);
        EXPECT_TRUE(!is_there || fs::is_empty(folder));
        EXPECT_EQ(run("demo " + in_quotes(folder)).code, 0);
    }
    EXPECT_GT(interrupted, 0);
}

TEST_F(KeepInterrupted, upgrade_to_jet4_leaves_the_file_as_it_was) {
    using namespace testing_support;
    fs::remove_all(studio_);
    fs::create_directory(studio_);
    {
        const UseOldFormat use(jet::kJet3);
        make_old_studio(studio_, 200010);
    }
    ASSERT_EQ(run("upgrade --no-copy " + in_quotes(studio_)).code, 0);
    fill(file("sldb.mdb"), 30000);
    // The copies stay; this one is there already.
    fs::copy_file(file("sldb.mdb"), file("sldb-2026-01-01.mdb"));
    expect_taken_back({"upgrade", "--to-jet4", studio_}, appears(studio_, "sldb.mdb-new-"));
}

TEST_F(KeepInterrupted, diff_says_that_it_is_not_all) {
    const std::string other = scratch_.file("other");
    fs::copy(studio_, other);
    expect_taken_back({"diff", studio_, other}, catches_the_signal);
}

TEST_F(KeepInterrupted, upgrade_takes_both_files_back) {
    fs::remove_all(studio_);
    fs::create_directory(studio_);
    using namespace testing_support;
    OldFile(file("sldb.mdb"), OldFile::Kind::kStudio, 100005).close();
    OldFile(file("kvinvdb.mdb"), OldFile::Kind::kInvoice, 100005).close();
    fill(file("sldb.mdb"), 30000);
    // The copies stay; this one is there already.
    ASSERT_EQ(run("backup " + in_quotes(studio_) + " " + in_quotes(scratch_.file("copies"))).code, 0);
    for (const char* const name : {"sldb", "kvinvdb"}) {
        fs::copy_file(file(std::string(name) + ".mdb"), file(std::string(name) + "-2026-01-01.mdb"));
    }
    expect_taken_back({"upgrade", studio_}, appears(studio_, "sldb.mdb-journal"));
}

}  // namespace
