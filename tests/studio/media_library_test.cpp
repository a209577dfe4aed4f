// Statements and columns of the media library.
#include "studio/media_library.h"

#include <gtest/gtest.h>

#include "tests/studio/mapping_columns.h"

namespace {

using namespace studio;

TEST(MediaLibrary, groups_are_enumerated_as_a_whole) {
    LibGrpInfo group;
    group.GroupID = 3;
    group.Name = "Drums";
    EXPECT_EQ(kLibraryGroups.statement(&group), "SELECT * FROM [LibGroups]");
}

TEST(MediaLibrary, parent_is_a_condition_always) {
    MediaLibInfo library;
    library.LibID = 9;
    library.Name = "no condition";
    EXPECT_EQ(kMediaLibraries.statement(&library), "SELECT * FROM [MediaLibs] WHERE [GroupID]=0");
    library.GroupID = 3;
    EXPECT_EQ(kMediaLibraries.statement(&library), "SELECT * FROM [MediaLibs] WHERE [GroupID]=3");
    MediaFileInfo file;
    file.RecID = 9;
    file.Path = "no condition";
    EXPECT_EQ(kMediaFiles.statement(&file), "SELECT * FROM [MediaFiles] WHERE [LibID]=0");
    file.LibID = -4;
    EXPECT_EQ(kMediaFiles.statement(&file), "SELECT * FROM [MediaFiles] WHERE [LibID]=-4");
}

TEST(MediaLibrary, mappings_list_their_columns_in_order) {
    EXPECT_EQ(column_names(kLibraryGroups.read), "Name GroupID");
    EXPECT_EQ(column_names(kLibraryGroups.write), "Name");
    EXPECT_EQ(column_names(kMediaLibraries.read), "Name Descript GroupID LibID");
    EXPECT_EQ(column_names(kMediaLibraries.write), "Name Descript GroupID");
    EXPECT_EQ(column_names(kMediaFiles.read), "Path Descript LibID RecID");
    EXPECT_EQ(column_names(kMediaFiles.write), "Path Descript LibID");
}

}  // namespace
