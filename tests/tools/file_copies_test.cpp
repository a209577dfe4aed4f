// The dated copies that an upgrade keeps: a copy that a power loss could take away again is none.
#include "tools/file_copies.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "os/file.h"
#include "tests/old_files/old_files.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace testing_support;

// The machine's own files, but the folder of a dated copy cannot be synced.
class NoSyncOfCopies : public os::FileSystem {
public:
    std::unique_ptr<os::File> open(const std::string& path, os::OpenMode mode) override {
        return own_.open(path, mode);
    }
    bool exists(const std::string& path) override { return own_.exists(path); }
    void remove(const std::string& path) override { own_.remove(path); }
    void rename(const std::string& from, const std::string& to) override { own_.rename(from, to); }
    void replace(const std::string& from, const std::string& to) override { own_.replace(from, to); }
    void sync_folder_of(const std::string& path) override {
        if (path.find("sldb-2") == std::string::npos) return own_.sync_folder_of(path);
        ++asked;
        if (refuses) throw os::FileError(os::FileFault::kIo, "The folder of " + path + " cannot be synced.");
    }
    std::string resolved(const std::string& path) override { return own_.resolved(path); }
    std::vector<std::string> longer_names(const std::string& path) override { return own_.longer_names(path); }

    bool refuses = false;
    int asked = 0;

private:
    os::FileSystem& own_ = os::native_file_system();
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
