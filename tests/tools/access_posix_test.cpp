// Who may read what the tool makes of a studio: nobody who may not read the studio's own files.
#include <sys/stat.h>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
namespace fs = std::filesystem;

class Access : public Tool {
protected:
    void SetUp() override {
        ::umask(022);
        ASSERT_EQ(demo().code, 0);
    }

    static mode_t mode_of(const std::string& path) {
        struct stat info {};
        return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777 : 0;
    }
    void set_modes(mode_t studio, mode_t invoices) const {
        ASSERT_EQ(::chmod(file("sldb.mdb").c_str(), studio), 0);
        ASSERT_EQ(::chmod(file("kvinvdb.mdb").c_str(), invoices), 0);
    }
    std::string made(const std::string& name) const { return scratch_.file(name); }

    // Runs the command, and expects each file that it made to have the mode, folders that and the rights to enter.
    void expect_mode(const std::string& arguments, const std::string& made, mode_t mode) {
        SCOPED_TRACE(arguments);
        fs::remove_all(made);
        const Outcome outcome = run(arguments + " " + in_quotes(made));
        ASSERT_EQ(outcome.code, 0) << outcome.errors;
        if (!fs::is_directory(made)) {
            EXPECT_EQ(mode_of(made), mode);
            return;
        }
        EXPECT_EQ(mode_of(made), mode | (mode & 0444) >> 2);
        std::size_t files = 0;
        for (const auto& entry : fs::directory_iterator(made)) {
            ++files;
            EXPECT_EQ(mode_of(entry.path().string()), mode) << entry.path();
        }
        EXPECT_GT(files, 10u);
    }
    void expect_each_export(mode_t mode) {
        for (const char* const form : {"sqlite", "csv", "jsonl", "postgres", "html"}) {
            expect_mode("export --to " + std::string(form) + " " + in_quotes(studio_), made(form), mode);
        }
        expect_mode("report " + in_quotes(studio_) + " -o", made("page.html"), mode);
    }
};

TEST_F(Access, exports_and_report_take_the_files_mode) {
    for (const mode_t mode : {mode_t{0600}, mode_t{0640}, mode_t{0644}}) {
        set_modes(mode, mode);
        expect_each_export(mode);
    }
}

TEST_F(Access, export_of_two_files_takes_what_both_allow) {
    set_modes(0644, 0640);
    expect_each_export(0640);
    set_modes(0600, 0644);
    expect_each_export(0600);
}

TEST_F(Access, export_of_read_only_files_can_be_written) {
    set_modes(0440, 0440);
    expect_each_export(0640);
}

TEST_F(Access, salvaged_file_takes_the_damaged_ones_mode) {
    for (const mode_t mode : {mode_t{0600}, mode_t{0640}, mode_t{0644}}) {
        set_modes(mode, mode);
        expect_mode("salvage " + main_file(), made("saved.mdb"), mode);
    }
}

TEST_F(Access, backup_restore_and_compact_keep_the_mode) {
    set_modes(0600, 0600);
    ASSERT_EQ(run("backup " + in_quotes(studio_) + " " + in_quotes(made("copies"))).code, 0);
    ASSERT_EQ(run("restore " + in_quotes(made("copies")) + " " + in_quotes(made("back"))).code, 0);
    ASSERT_EQ(run("compact " + in_quotes(made("back"))).code, 0);
    for (const char* const folder : {"copies", "back"}) {
        for (const auto& entry : fs::directory_iterator(made(folder))) {
            EXPECT_EQ(mode_of(entry.path().string()), 0600u) << entry.path();
        }
    }
}

}  // namespace
