// The lists of names: the table of each, and copying names to a buffer.
#include "studio/lookup_lists.h"

#include <array>
#include <string>

#include "tests/studio/studio_test_support.h"

namespace {

using namespace studio;

class LookupLists : public StudioTest {};

TEST_F(LookupLists, statements_name_their_table) {
    const std::pair<const TableMapping<ListName>*, const char*> cases[] = {
        {&kTrackTypes, "SELECT * FROM [Def_TrackTypes]"},
        {&kProjectTypes, "SELECT * FROM [Def_ProjTypes]"},
        {&kTrackDestinations, "SELECT * FROM [Def_TrackDestination]"},
        {&kEquipmentActions, "SELECT * FROM [Def_EquipActs]"},
    };
    const ListName any;
    for (const auto& [mapping, statement] : cases) EXPECT_EQ(mapping->statement(&any), statement);
}

TEST_F(LookupLists, name_is_added_with_its_own_case_and_found_in_any) {
    NameList list(kTrackTypes, database_);
    ASSERT_EQ(list.Add("Drums"), S_OK);
    ASSERT_EQ(list.Add("DRUMS"), S_OK);
    EXPECT_EQ(row_count("Def_TrackTypes"), 1);
    char name[kListNameSize];
    ASSERT_EQ(list.EnumFirst(name), S_OK);
    EXPECT_STREQ(name, "Drums");
    EXPECT_EQ(list.Delete("drums"), S_OK);
    EXPECT_EQ(row_count("Def_TrackTypes"), 0);
}

TEST_F(LookupLists, delete_takes_the_first_of_equal_names) {
    NameList list(kEquipmentActions, database_);
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "Def_EquipActs", 0);
    for (const char* name : {"Repair", "repair"}) {
        rows.AddNew();
        rows.SetFieldValue("Name", name);
        rows.Update();
    }
    rows.Close();
    ASSERT_EQ(list.Delete("REPAIR"), S_OK);
    char name[kListNameSize];
    ASSERT_EQ(list.EnumFirst(name), S_OK);
    EXPECT_STREQ(name, "repair");
    EXPECT_EQ(list.EnumNext(name), E_FAIL);
}

// In a multi-byte code page a name can be longer than its buffer.
TEST_F(LookupLists, name_longer_than_the_buffer_is_cut_and_ended) {
    NameList list(kTrackTypes, database_);
    os::set_code_page(os::CodePage::kUtf8);
    std::string name;
    for (int i = 0; i < 200; ++i) name += "\xC3\xA4";
    ASSERT_EQ(list.Add(name.c_str()), S_OK);
    std::array<char, kListNameSize + 4> buffer;
    buffer.fill('\x5A');
    ASSERT_EQ(list.EnumFirst(buffer.data()), S_OK);
    EXPECT_EQ(std::string(buffer.data()), name.substr(0, kListNameSize - 2));
    EXPECT_EQ(std::string(buffer.data() + kListNameSize, 4), "\x5A\x5A\x5A\x5A");
}

TEST_F(LookupLists, truncated_name_deletes_nothing) {
    NameList list(kTrackTypes, database_);
    os::set_code_page(os::CodePage::kUtf8);
    std::string name;
    for (int i = 0; i < 200; ++i) name += "\xC3\xA4";
    ASSERT_EQ(list.Add(name.c_str()), S_OK);
    char truncated[kListNameSize];
    ASSERT_EQ(list.EnumFirst(truncated), S_OK);
    EXPECT_EQ(list.Delete(truncated), S_OK);  // as of any unknown name
    EXPECT_EQ(list.EnumFirst(truncated), S_OK) << "it is still there";
    EXPECT_EQ(list.Delete(name.c_str()), S_OK);
    EXPECT_EQ(list.EnumFirst(truncated), E_FAIL);
}

TEST_F(LookupLists, name_is_cut_between_two_characters) {
    os::set_code_page(os::CodePage::kUtf8);
    NameList list(kTrackTypes, database_);
    for (const std::size_t ahead : {0u, 1u, 2u}) {
        std::string name(ahead, 'a');
        for (int i = 0; i < 100; ++i) name += "\xE2\x82\xAC";  // three bytes each
        ASSERT_EQ(list.Add(name.c_str()), S_OK);
        char buffer[kListNameSize];
        ASSERT_EQ(list.EnumFirst(buffer), S_OK);
        EXPECT_EQ(std::string(buffer), name.substr(0, ahead + (255 - ahead) / 3 * 3));
        ASSERT_EQ(list.Delete(name.c_str()), S_OK);
    }
    os::set_code_page(os::CodePage::kSystem);
}

TEST_F(LookupLists, null_column_is_an_empty_name) {
    NameList list(kTrackTypes, database_);
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "Def_TrackTypes", 0);
    rows.AddNew();
    rows.Update();
    rows.Close();
    char name[kListNameSize] = "x";
    EXPECT_EQ(list.EnumFirst(name), S_OK);
    EXPECT_STREQ(name, "");
}

TEST_F(LookupLists, other_changes_leave_an_enumeration_alone) {
    NameList list(kTrackTypes, database_);
    for (const char* name : {"a", "b", "c"}) ASSERT_EQ(list.Add(name), S_OK);
    char name[kListNameSize];
    ASSERT_EQ(list.EnumFirst(name), S_OK);
    ASSERT_EQ(list.Delete("b"), S_OK);
    ASSERT_EQ(list.Add("d"), S_OK);
    ASSERT_EQ(list.EnumNext(name), S_OK);
    EXPECT_STREQ(name, "c");
    EXPECT_EQ(list.EnumNext(name), E_FAIL);
}

TEST_F(LookupLists, list_without_database_fails) {
    CDaoDatabase* none = nullptr;
    NameList list(kTrackTypes, none);
    char name[kListNameSize] = "x";
    EXPECT_EQ(list.EnumFirst(name), E_FAIL);
    EXPECT_EQ(list.EnumNext(name), E_FAIL);
    EXPECT_EQ(list.Add(name), E_FAIL);
    EXPECT_EQ(list.Delete(name), E_FAIL);
    none = &file_;  // the gate attaches later
    EXPECT_EQ(list.Add(name), S_OK);
    ASSERT_EQ(list.EnumFirst(name), S_OK);
    list.ReleaseCursor();
    EXPECT_EQ(list.EnumNext(name), E_FAIL);
}

}  // namespace
