// CString alone: layout, sharing, and the members that applications use.
#include <kvdb/cstring.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST(CStringLayout, object_is_one_pointer_to_its_characters) {
    EXPECT_EQ(sizeof(CString), sizeof(void*));
    const CString text("Drums");
    const char* characters = nullptr;
    std::memcpy(&characters, &text, sizeof characters);
    EXPECT_STREQ(characters, "Drums");
    EXPECT_EQ(characters, text.GetString());
}

TEST(CString, default_is_empty_text) {
    const CString text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_STREQ(text, "");
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
    EXPECT_TRUE(CString("").IsEmpty());
}

TEST(CString, construction_and_assignment_copy_the_characters) {
    std::string source = "Bass";
    CString text(source.c_str());
    source[0] = 'M';
    EXPECT_STREQ(text, "Bass");
    text = "Guitar";
    EXPECT_STREQ(text, "Guitar");
    EXPECT_EQ(text.GetLength(), 6);
    text = static_cast<const char*>(nullptr);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_STREQ(CString("Guitar", 3), "Gui");
    EXPECT_STREQ(CString('x', 3), "xxx");
    text = 'y';
    EXPECT_STREQ(text, "y");
}

TEST(CString, assignment_of_its_own_characters_keeps_them) {
    CString text("Guitar");
    text = text.GetString() + 3;
    EXPECT_STREQ(text, "tar");
    const CString& alias = text;
    text = alias;
    EXPECT_STREQ(text, "tar");
}

TEST(CString, copies_share_until_one_is_written) {
    CString first("Bass");
    CString second = first;
    EXPECT_EQ(first.GetString(), second.GetString());
    second.SetAt(0, 'M');
    EXPECT_STREQ(first, "Bass");
    EXPECT_STREQ(second, "Mass");
    CString third = first;
    third += "oon";
    EXPECT_STREQ(first, "Bass");
    EXPECT_STREQ(third, "Bassoon");
    CString fourth = first;
    fourth.Empty();
    EXPECT_STREQ(first, "Bass");
    EXPECT_TRUE(fourth.IsEmpty());
}

TEST(CString, moved_from_text_is_usable) {
    CString first("Bass");
    CString second(std::move(first));
    EXPECT_STREQ(second, "Bass");
    first = "Drums";
    EXPECT_STREQ(first, "Drums");
    second = std::move(first);
    EXPECT_STREQ(second, "Drums");
}

TEST(CString, comparison_is_by_bytes) {
    const CString text("Bass");
    EXPECT_TRUE(text == "Bass");
    EXPECT_TRUE("Bass" == text);
    EXPECT_TRUE(text == CString("Bass"));
    EXPECT_TRUE(text != "bass");
    EXPECT_TRUE(text < "Bast");
    EXPECT_TRUE(text > CString("Bas"));
    EXPECT_TRUE(CString() == "");
    EXPECT_EQ(text.CompareNoCase("bASS"), 0);
    EXPECT_LT(text.CompareNoCase("bat"), 0);
    EXPECT_LT(CString("a").Compare("\xE4"), 0);
}

TEST(CString, appending_grows_and_accepts_itself) {
    CString text;
    for (int i = 0; i < 1000; ++i) text += "ab";
    EXPECT_EQ(text.GetLength(), 2000);
    text = "ab";
    text += text;
    EXPECT_STREQ(text, "abab");
    text += text.GetString() + 1;
    EXPECT_STREQ(text, "ababbab");
    text += '!';
    EXPECT_STREQ(text, "ababbab!");
    EXPECT_STREQ(CString("a") + "b" + CString("c") + 'd', "abcd");
    EXPECT_STREQ("x" + CString("y"), "xy");
}

TEST(CString, parts_are_cut_to_what_there_is) {
    const CString text("Guitar");
    EXPECT_STREQ(text.Left(3), "Gui");
    EXPECT_STREQ(text.Left(99), "Guitar");
    EXPECT_STREQ(text.Left(-1), "");
    EXPECT_STREQ(text.Right(3), "tar");
    EXPECT_STREQ(text.Right(99), "Guitar");
    EXPECT_STREQ(text.Right(0), "");
    EXPECT_STREQ(text.Mid(2), "itar");
    EXPECT_STREQ(text.Mid(2, 2), "it");
    EXPECT_STREQ(text.Mid(6, 2), "");
    EXPECT_STREQ(text.Mid(4, 2147483647), "ar");
}

TEST(CString, search_gives_positions_from_zero) {
    const CString text("3;12;7");
    EXPECT_EQ(text.Find(';'), 1);
    EXPECT_EQ(text.Find(';', 2), 4);
    EXPECT_EQ(text.Find("12"), 2);
    EXPECT_EQ(text.Find("8"), -1);
    EXPECT_EQ(text.Find(';', 99), -1);
    EXPECT_EQ(text.ReverseFind(';'), 4);
    EXPECT_EQ(text.FindOneOf("27"), 3);
}

TEST(CString, case_and_blanks_can_be_changed) {
    CString text(" \tGuitar 2\r\n");
    text.TrimLeft();
    text.TrimRight();
    EXPECT_STREQ(text, "Guitar 2");
    text.MakeUpper();
    EXPECT_STREQ(text, "GUITAR 2");
    text.MakeLower();
    EXPECT_STREQ(text, "guitar 2");
}

TEST(CString, format_is_printf_and_accepts_its_own_text) {
    CString text("Songs");
    text.Format("SELECT * FROM [%s] WHERE [%s]=%d", text.GetString(), "ProjID", -4);
    EXPECT_STREQ(text, "SELECT * FROM [Songs] WHERE [ProjID]=-4");
    text.Format("%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(text.GetLength(), 5000);
    text.Format("%s", "");
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CString, buffer_can_be_written_and_released) {
    CString text("ab");
    const CString copy = text;
    std::strcpy(text.GetBuffer(10), "0123456789");
    text.ReleaseBuffer();
    EXPECT_STREQ(text, "0123456789");
    EXPECT_EQ(text.GetLength(), 10);
    EXPECT_STREQ(copy, "ab");
    text.GetBuffer(0);
    text.ReleaseBuffer(4);
    EXPECT_STREQ(text, "0123");
    std::memcpy(text.GetBufferSetLength(2), "xy", 2);
    EXPECT_STREQ(text, "xy");
}
