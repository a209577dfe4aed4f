// The location of a session's files and the other things found there: drafts, links, other hosts, a system that
// refuses.
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "db/create_files.h"
#include "db/database_files.h"
#include "os/draft.h"
#include "os/file.h"
#include "os/system.h"
#include "tests/afx/dao_test_support.h"
#include "tests/db/session_fixture.h"
#include "tests/support/forwarding_file_system.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

TEST_F(Session, drafts_left_by_a_crash_are_cleared_and_files_of_others_are_not) {
    const std::string left[] = {"sldb.mdb-new-0123456789abcdef", "sldb.mdb-new-0123456789abcdef-journal",
                                "sldb.mdb-new-0123456789abcdef-new-fedcba9876543210"};
    const std::string others[] = {"sldb.mdb-new", "sldb.mdb-new-2", "sldb.mdb-new-0123456789abcdeX", "sldb.mdb-news"};
    for (const std::string& name : left) std::ofstream(path(name.c_str())) << "half a file";
    for (const std::string& name : others) std::ofstream(path(name.c_str())) << "the owner's";
    std::filesystem::create_directory(path("kvinvdb.mdb-new"));
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_EQ(row_count(gate_.main, "DBHeader"), 1);
    for (const std::string& name : left) EXPECT_FALSE(std::filesystem::exists(path(name.c_str()))) << name;
    for (const std::string& name : others) EXPECT_TRUE(std::filesystem::exists(path(name.c_str()))) << name;
    EXPECT_TRUE(std::filesystem::exists(path("kvinvdb.mdb-new")));
}

TEST_F(Session, journal_left_by_a_crash_on_its_way_out_is_cleared) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    std::ofstream(path("sldb.mdb-journal-new-0123456789abcdef")) << "what was a journal";
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_EQ(files(), 2u);
}

TEST_F(Session, draft_somebody_works_on_is_left_alone) {
    CDaoDatabase other;
    const std::string draft = path("sldb.mdb-new-0123456789abcdef");
    other.Create(draft.c_str());
    EXPECT_EQ(db::attach(gate_), S_OK);
    EXPECT_TRUE(std::filesystem::exists(draft));
}

#ifndef _WIN32
TEST_F(Session, link_that_leads_nowhere_is_an_error_and_never_replaced) {
    for (const char* const target : {"nowhere/sldb.mdb", "sldb.mdb"}) {
        std::filesystem::create_symlink(target, path("sldb.mdb"));
        EXPECT_NE(error_of([&] { db::open(gate_); }), 0) << target;
        EXPECT_TRUE(std::filesystem::is_symlink(path("sldb.mdb")));
        EXPECT_EQ(files(), 1u) << target;
        std::filesystem::remove(path("sldb.mdb"));
    }
}

TEST_F(Session, file_behind_a_link_is_the_database_and_its_journal_lies_beside_it) {
    std::filesystem::create_directory(path("far"));
    db::set_database_folder(path("far"));
    db::attach(gate_);
    db::close(db::kCloseAll);
    std::filesystem::rename(path("far/kvinvdb.mdb"), path("kvinvdb.mdb"));
    std::filesystem::create_symlink("far/sldb.mdb", path("sldb.mdb"));
    db::set_database_folder(folder_.string());
    EXPECT_EQ(db::open(gate_), S_OK);
    const HeadInfo head{0, 7, 8};
    EXPECT_EQ(db::set_head(gate_, &head), S_OK);
    EXPECT_TRUE(std::filesystem::exists(path("far/sldb.mdb-journal")));
    EXPECT_FALSE(std::filesystem::exists(path("sldb.mdb-journal")));
    db::close(db::kCloseAll);
    EXPECT_TRUE(std::filesystem::is_symlink(path("sldb.mdb")));
}

TEST_F(Session, new_invoice_file_and_journals_take_the_permissions_of_the_main_file) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    std::filesystem::remove(path("kvinvdb.mdb"));
    const auto owner_only = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    std::filesystem::permissions(path("sldb.mdb"), owner_only);
    EXPECT_EQ(db::open(gate_), S_OK);
    const HeadInfo head{0, 7, 8};
    EXPECT_EQ(db::set_head(gate_, &head), S_OK);
    for (const std::string name : {"kvinvdb.mdb", "sldb.mdb-journal"}) {
        EXPECT_EQ(std::filesystem::status(path(name.c_str())).permissions(), owner_only) << name;
    }
}

constexpr int kHasIt = 0;
constexpr int kToldInUse = 1;
constexpr int kOther = 2;

// Runs db::open in a child that keeps its databases open until `release` is closed; the exit code is one of the above.
pid_t open_in_child(int start, int told, int release) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    ::alarm(60);
    char byte = 0;
    db::GateDatabases gate;
    static_cast<void>(::read(start, &byte, 1));
    const int code = error_of([&] { db::open(gate); });
    static_cast<void>(::write(told, &byte, 1));
    static_cast<void>(::read(release, &byte, 1));
    db::close(db::kCloseAll);
    ::_exit(code == 0 ? kHasIt : code == 3356 ? kToldInUse : kOther);
}

TEST_F(Session, of_two_hosts_that_open_an_empty_folder_at_once_one_has_it_and_one_is_told_that_it_is_in_use) {
    constexpr int kRounds = 40;
    for (int round = 0; round < kRounds; ++round) {
        int start[2];
        int told[2];
        int release[2];
        ASSERT_EQ(::pipe(start) | ::pipe(told) | ::pipe(release), 0);
        pid_t children[2];
        for (pid_t& child : children) {
            child = ::fork();
            if (child != 0) continue;
            ::close(start[1]);
            ::close(release[1]);
            const pid_t inner = open_in_child(start[0], told[1], release[0]);
            int status = 0;
            ::waitpid(inner, &status, 0);
            ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : kOther);
        }
        ::close(start[1]);
        char bytes[2];
        for (int got = 0; got < 2;) {
            const auto count = ::read(told[0], bytes, 2);
            ASSERT_GT(count, 0);
            got += static_cast<int>(count);
        }
        ::close(release[1]);
        int codes[2];
        for (int i = 0; i < 2; ++i) {
            int status = 0;
            ::waitpid(children[i], &status, 0);
            codes[i] = WIFEXITED(status) ? WEXITSTATUS(status) : kOther;
        }
        for (const int fd : {start[0], told[0], told[1], release[0]}) ::close(fd);
        EXPECT_EQ(std::min(codes[0], codes[1]), kHasIt) << "one has it";
        EXPECT_EQ(std::max(codes[0], codes[1]), kToldInUse) << "the other is told";
        EXPECT_EQ(files(), 2u) << "nothing is left behind";
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) std::filesystem::remove(entry);
    }
}
#endif

TEST_F(Session, folder_of_any_length_that_the_system_takes_works_and_a_longer_one_is_an_error) {
    std::string deep = folder_.string();
    while (deep.size() < 500) deep = (std::filesystem::path(deep) / std::string(60, 'n')).string();
#ifdef _WIN32
    std::filesystem::create_directories("\\\\?\\" + deep);
#else
    std::filesystem::create_directories(deep);
#endif
    db::set_database_folder(deep);
    EXPECT_EQ(db::open(gate_), S_OK);
    EXPECT_TRUE(db::main_file_exists());
    db::close(db::kCloseAll);
    EXPECT_EQ(files(), 1u) << "nothing appears anywhere else";
    db::set_database_folder(folder_.string() + "/" + std::string(40000, 'n'));
    EXPECT_NE(error_of([&] { db::open(gate_); }), 0);
    EXPECT_EQ(files(), 1u);
}

// The machine's own file system, with one operation that fails from a given call on.
class FailingFileSystem final : public testing_support::ForwardingFileSystem {
public:
    enum class Fails { kRename, kFolderSync, kExists };

    explicit FailingFileSystem(Fails fails) : fails_(fails) { os::set_file_system(this); }
    ~FailingFileSystem() override { os::set_file_system(nullptr); }

    bool exists(const std::string& path) override {
        if (fails_ == Fails::kExists) throw os::FileError(os::FileFault::kIo, "cannot tell");
        return ForwardingFileSystem::exists(path);
    }
    void rename(const std::string& from, const std::string& to) override {
        if (fails_ == Fails::kRename) throw os::FileError(os::FileFault::kAccessDenied, "rename refused");
        ForwardingFileSystem::rename(from, to);
    }
    void sync_folder_of(const std::string& path) override {
        if (fails_ == Fails::kFolderSync) throw os::FileError(os::FileFault::kDiskFull, "no space");
        ForwardingFileSystem::sync_folder_of(path);
    }

private:
    Fails fails_;
};

TEST_F(Session, creation_that_fails_leaves_no_file_and_no_open_database) {
    for (const auto& [fails, number] :
         {std::pair{FailingFileSystem::Fails::kRename, 3051}, std::pair{FailingFileSystem::Fails::kFolderSync, 3026}}) {
        const FailingFileSystem failing(fails);
        EXPECT_EQ(error_of([&] { db::attach(gate_); }), number);
        EXPECT_EQ(gate_.main, nullptr);
        EXPECT_EQ(files(), 0u);
    }
    EXPECT_EQ(db::attach(gate_), S_OK);
}

TEST_F(Session, file_whose_presence_cannot_be_told_is_an_error_and_never_replaced) {
    db::attach(gate_);
    db::close(db::kCloseAll);
    const auto size = std::filesystem::file_size(path("sldb.mdb"));
    const FailingFileSystem failing(FailingFileSystem::Fails::kExists);
    EXPECT_EQ(error_of([&] { db::attach(gate_); }), 3043);
    EXPECT_EQ(error_of([&] { db::open(gate_); }), 3043);
    EXPECT_EQ(error_of([&] { db::main_file_exists(); }), 3043);
    EXPECT_EQ(files(), 2u);
    EXPECT_EQ(std::filesystem::file_size(path("sldb.mdb")), size);
}

}  // namespace
