#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using testing_support::TempFolder;

TEST(TempFolderTest, new_folder_is_empty_and_its_own) {
    const TempFolder one;
    const TempFolder two;
    EXPECT_NE(one.path(), two.path());
    EXPECT_TRUE(fs::is_directory(one.path()));
    EXPECT_TRUE(fs::is_empty(one.path()));
}

TEST(TempFolderTest, folder_gone_out_of_scope_is_removed_with_its_content) {
    std::string path;
    {
        const TempFolder folder;
        path = folder.path();
        fs::create_directory(folder.file("inner"));
        std::ofstream(folder.file("inner") + "/x") << "x";
        fs::permissions(path, fs::perms::owner_write, fs::perm_options::remove);
    }
    EXPECT_FALSE(fs::exists(path));
}

}  // namespace
