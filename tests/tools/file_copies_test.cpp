// The dated copies that an upgrade keeps: a copy that a power loss could take away again is none.
#include "tools/file_copies.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "os/file.h"
#include "tests/old_files/old_files.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/forwarding_file_system.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace testing_support;

// The machine's own files, but the folder of a dated copy cannot be synced.
class NoSyncOfCopies : public ForwardingFileSystem {
public:
    void sync_folder_of(const std::string& path) override {
        if (path.find("sldb-2") == std::string::npos) return ForwardingFileSystem::sync_folder_of(path);
        ++asked;
        if (refuses) throw os::FileError(os::FileFault::kIo, "The folder of " + path + " cannot be synced.");
    }

    bool refuses = false;
    int asked = 0;
};

TEST(DatedCopies, folder_of_a_copy_is_synced_and_a_refusal_is_an_error) {
    const TempFolder folder;
    const std::string path = folder.file("sldb.mdb");
    OldFile(path, OldFile::Kind::kStudio, 200010).close();
    NoSyncOfCopies files;
    const UseFileSystem use(files);
    const tools::DatedCopy first = tools::dated_copy(path);
    EXPECT_TRUE(first.is_new);
    EXPECT_EQ(files.asked, 1);
    std::filesystem::remove(first.path);
    files.refuses = true;
    EXPECT_THROW(tools::dated_copy(path), os::FileError);
    EXPECT_EQ(files.asked, 2);
}

}  // namespace
