// The three levels of the media library through the main gate.
#include "tests/gates/media_library_cases.h"
#include "tests/gates/record_round_trip.h"

namespace {

using namespace testing_support;

TEST(LibraryGroupsGate, members_make_the_round_trip) { expect_round_trip(kGroups); }
TEST(LibraryGroupsGate, columns_hold_the_members_of_their_name) { expect_columns(kGroups); }
TEST(LibraryGroupsGate, failure_leaves_the_record_alone) { expect_failures(kGroups); }
TEST(LibraryGroupsGate, mappings_go_in_their_order) { expect_orders(kGroups); }
TEST(LibraryGroupsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kGroups); }

TEST(MediaLibrariesGate, members_make_the_round_trip) { expect_round_trip(kLibraries); }
TEST(MediaLibrariesGate, columns_hold_the_members_of_their_name) { expect_columns(kLibraries); }
TEST(MediaLibrariesGate, failure_leaves_the_record_alone) { expect_failures(kLibraries); }
TEST(MediaLibrariesGate, mappings_go_in_their_order) { expect_orders(kLibraries); }
TEST(MediaLibrariesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kLibraries); }

TEST(MediaFilesGate, members_make_the_round_trip) { expect_round_trip(kFiles); }
TEST(MediaFilesGate, columns_hold_the_members_of_their_name) { expect_columns(kFiles); }
TEST(MediaFilesGate, failure_leaves_the_record_alone) { expect_failures(kFiles); }
TEST(MediaFilesGate, mappings_go_in_their_order) { expect_orders(kFiles); }
TEST(MediaFilesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kFiles); }

LONG add_group(IDBgate1& gate, const char* name) {
    LibGrpInfo record;
    record.Name = name;
    EXPECT_EQ(gate.AddLibGrp(address_of(record)), S_OK);
    return record.GroupID;
}
LONG add_library(IDBgate1& gate, LONG group, const char* name) {
    MediaLibInfo record;
    record.GroupID = group;
    record.Name = name;
    EXPECT_EQ(gate.AddMediaLib(address_of(record)), S_OK);
    return record.LibID;
}
LONG add_file(IDBgate1& gate, LONG library, const char* path) {
    MediaFileInfo record;
    record.LibID = library;
    record.Path = path;
    EXPECT_EQ(gate.AddMediaFile(address_of(record)), S_OK);
    return record.RecID;
}
std::string libraries_of(IDBgate1& gate, LONG group) {
    std::string names;
    MediaLibInfo record;
    record.GroupID = group;
    for (HRESULT result = gate.EnumFirstMediaLib(address_of(record)); result == S_OK;
         result = gate.EnumNextMediaLib(address_of(record))) {
        names += std::string(record.Name) + " ";
    }
    return names;
}
std::string files_of(IDBgate1& gate, LONG library) {
    std::string paths;
    MediaFileInfo record;
    record.LibID = library;
    for (HRESULT result = gate.EnumFirstMediaFile(address_of(record)); result == S_OK;
         result = gate.EnumNextMediaFile(address_of(record))) {
        paths += std::string(record.Path) + " ";
    }
    return paths;
}

TEST(LibraryGroupsGate, name_may_be_added_twice) {
    const OpenGate<IDBgate1> gate;
    const LONG first = add_group(*gate, "Drums");
    EXPECT_NE(add_group(*gate, "Drums"), first);
    LibGrpInfo record;
    ASSERT_EQ(gate->EnumFirstLibGrp(address_of(record)), S_OK);
    EXPECT_EQ(gate->EnumNextLibGrp(address_of(record)), S_OK);
    EXPECT_EQ(record.Name, "Drums");
    EXPECT_EQ(gate->EnumNextLibGrp(address_of(record)), E_FAIL);
}

TEST(LibraryGroupsGate, quote_in_the_name_and_an_empty_name_fail) {
    const OpenGate<IDBgate1> gate;
    for (const char* name : {"12\" vinyl", ""}) {
        LibGrpInfo record;
        record.GroupID = kNoKey;
        record.Name = name;
        EXPECT_EQ(gate->AddLibGrp(address_of(record)), E_FAIL) << name;
    }
    LibGrpInfo record;
    EXPECT_EQ(gate->EnumFirstLibGrp(address_of(record)), E_FAIL);
}

TEST(LibraryGroupsGate, update_changes_the_name_and_not_the_key) {
    const OpenGate<IDBgate1> gate;
    const LONG other = add_group(*gate, "Strings");
    LibGrpInfo record;
    record.GroupID = add_group(*gate, "Drums");
    const LONG key = record.GroupID;
    record.Name = "Percussion";
    ASSERT_EQ(gate->UpdateLibGrp(address_of(record)), S_OK);
    EXPECT_EQ(record.GroupID, key);
    record.Name.Empty();
    ASSERT_EQ(gate->FindLibGrp(address_of(record)), S_OK);
    EXPECT_EQ(record.Name, "Percussion");
    record.GroupID = other;
    ASSERT_EQ(gate->FindLibGrp(address_of(record)), S_OK);
    EXPECT_EQ(record.Name, "Strings");
}

TEST(MediaLibrariesGate, enumeration_gives_the_libraries_of_one_group) {
    const OpenGate<IDBgate1> gate;
    const LONG a = add_group(*gate, "A");
    const LONG b = add_group(*gate, "B");
    add_library(*gate, a, "L1");
    add_library(*gate, b, "L3");
    add_library(*gate, a, "L2");
    add_library(*gate, 0, "L0");
    EXPECT_EQ(libraries_of(*gate, a), "L1 L2 ");
    EXPECT_EQ(libraries_of(*gate, b), "L3 ");
    EXPECT_EQ(libraries_of(*gate, 0), "L0 ");  // group 0 is a group, not all of them
    EXPECT_EQ(libraries_of(*gate, 99), "");
}

TEST(MediaLibrariesGate, null_record_leaves_an_enumeration_alone) {
    const OpenGate<IDBgate1> gate;
    add_library(*gate, 1, "L1");
    add_library(*gate, 1, "L2");
    MediaLibInfo record;
    record.GroupID = 1;
    ASSERT_EQ(gate->EnumFirstMediaLib(address_of(record)), S_OK);
    EXPECT_EQ(gate->EnumFirstMediaLib(0), E_FAIL);
    EXPECT_EQ(gate->EnumNextMediaLib(address_of(record)), S_OK);
    EXPECT_EQ(record.Name, "L2");
}

TEST(MediaLibrariesGate, deleted_group_leaves_its_libraries) {
    const OpenGate<IDBgate1> gate;
    LibGrpInfo group;
    group.GroupID = add_group(*gate, "A");
    add_library(*gate, group.GroupID, "L1");
    ASSERT_EQ(gate->DeleteLibGrp(address_of(group)), S_OK);
    EXPECT_EQ(libraries_of(*gate, group.GroupID), "L1 ");
}

TEST(MediaFilesGate, library_without_files_fails) {
    const OpenGate<IDBgate1> gate;
    add_file(*gate, 1, "a.wav");
    MediaFileInfo record;
    record.LibID = 2;
    record.Path = "untouched";
    EXPECT_EQ(gate->EnumFirstMediaFile(address_of(record)), E_FAIL);
    EXPECT_EQ(record.Path, "untouched");
    EXPECT_EQ(gate->EnumNextMediaFile(address_of(record)), E_FAIL);
}

TEST(MediaFilesGate, library_of_a_file_need_not_exist) {
    const OpenGate<IDBgate1> gate;
    MediaFileInfo record;
    record.RecID = add_file(*gate, 999, "a.wav");
    ASSERT_EQ(gate->FindMediaFile(address_of(record)), S_OK);
    EXPECT_EQ(record.LibID, 999);
    EXPECT_EQ(record.Path, "a.wav");
}

TEST(MediaFilesGate, deleted_library_leaves_its_files) {
    const OpenGate<IDBgate1> gate;
    MediaLibInfo library;
    library.LibID = add_library(*gate, 1, "L1");
    add_file(*gate, library.LibID, "a.wav");
    add_file(*gate, library.LibID, "b.wav");
    ASSERT_EQ(gate->DeleteMediaLib(address_of(library)), S_OK);
    EXPECT_EQ(files_of(*gate, library.LibID), "a.wav b.wav ");
}

TEST(MediaFilesGate, three_levels_are_walked_at_once) {
    const OpenGate<IDBgate1> gate;
    for (const char* group : {"A", "B"}) {
        const LONG group_key = add_group(*gate, group);
        for (const char* library : {"x", "y"}) {
            const LONG key = add_library(*gate, group_key, (std::string(group) + library).c_str());
            for (const char* file : {"1", "2"}) add_file(*gate, key, (std::string(group) + library + file).c_str());
        }
    }
    std::string walk;
    LibGrpInfo group;
    for (HRESULT a = gate->EnumFirstLibGrp(address_of(group)); a == S_OK; a = gate->EnumNextLibGrp(address_of(group))) {
        walk += std::string(group.Name) + ": ";
        MediaLibInfo library;
        library.GroupID = group.GroupID;
        for (HRESULT b = gate->EnumFirstMediaLib(address_of(library)); b == S_OK;
             b = gate->EnumNextMediaLib(address_of(library))) {
            walk += files_of(*gate, library.LibID);
        }
    }
    EXPECT_EQ(walk, "A: Ax1 Ax2 Ay1 Ay2 B: Bx1 Bx2 By1 By2 ");
}

}  // namespace
