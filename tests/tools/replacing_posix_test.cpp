// Commands that put another file in the place of a studio's: until the last moment nobody else can open the old one,
// and what a host writes is never in a file that is gone.
#include <gtest/gtest.h>

#include "jet/tables/database.h"
#include "os/file.h"
#include "tests/old_files/old_files.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/forwarding_file_system.h"
#include "tests/support/temp_folder.h"
#include "tools/file_copies.h"
#include "tools/rescue/backup.h"
#include "tools/rescue/compact.h"
#include "tools/studio_draft.h"
#include "tools/studio_files.h"

namespace {

using namespace testing_support;

// Tries to open each file as a host does at the moment when another one takes its place.
class HostAtTheLastMoment : public ForwardingFileSystem {
public:
    void replace(const std::string& from, const std::string& to) override {
        ++replaced;
        try {
            os::native_file_system().open(to, os::OpenMode::kExclusive);
            ++opened;
        } catch (const os::FileError& error) {
            EXPECT_EQ(error.fault(), os::FileFault::kLocked) << error.what();
        }
        ForwardingFileSystem::replace(from, to);
    }

    int replaced = 0;
    int opened = 0;
};

class ReplacedFiles : public testing::Test {
protected:
    ReplacedFiles() {
        OldFile(studio_, OldFile::Kind::kStudio, 200010).close();
        OldFile(invoices_, OldFile::Kind::kInvoice, 200010).close();
    }
    void expect_no_host(int replaced) {
        EXPECT_EQ(host_.replaced, replaced);
        EXPECT_EQ(host_.opened, 0);
        for (const std::string& path : {studio_, invoices_}) {
            jet::OpenOptions options;
            options.ignore_password = true;
            EXPECT_NO_THROW(jet::Database::open(path, options)->close()) << "nothing stays locked";
        }
    }

    TempFolder folder_;
    std::string studio_ = folder_.file("sldb.mdb");
    std::string invoices_ = folder_.file("kvinvdb.mdb");
    HostAtTheLastMoment host_;
    UseFileSystem use_{host_};
};

TEST_F(ReplacedFiles, compacted_file_is_locked_until_the_new_one_is_there) {
    tools::compact_file(studio_);
    expect_no_host(1);
}

TEST_F(ReplacedFiles, file_taken_back_is_locked_until_the_copy_is_there) {
    tools::take_back(tools::dated_copy(studio_).path, studio_);
    expect_no_host(1);
}

TEST_F(ReplacedFiles, restored_files_are_locked_until_the_copies_are_there) {
    const TempFolder backups;
    const auto made = tools::make_backup(folder_.path(), backups.path(), "2026-03-05-142233", std::nullopt);
    tools::restore_backup(made.set, folder_.path(), "2026-03-06-080000");
    expect_no_host(2);
}

TEST_F(ReplacedFiles, imported_file_is_locked_until_the_new_one_is_there) {
    const tools::StudioFiles files(folder_.path());
    {
        tools::StudioDraft draft(files);
        draft.publish(files.studio);
    }
    expect_no_host(1);
}

}  // namespace
