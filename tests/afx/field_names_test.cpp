#include "afx/field_names.h"

#include <gtest/gtest.h>

#include "os/system.h"

namespace {

TEST(FieldNames, find_ignores_case) {
    const afx::FieldNames names({u"ProjID", u"Name", u"ExData"});
    EXPECT_EQ(names.find("projid"), 0u);
    EXPECT_EQ(names.find("NAME"), 1u);
    EXPECT_EQ(names.find("ExData"), 2u);
    EXPECT_EQ(names.find("ExDat"), std::nullopt);
    EXPECT_EQ(names.find(""), std::nullopt);
}

TEST(FieldNames, every_one_of_255_is_found) {
    std::vector<std::u16string> wide;
    for (char16_t i = 0; i < 255; ++i)
        wide.push_back({u'F', static_cast<char16_t>(u'a' + i / 26), static_cast<char16_t>(u'a' + i % 26)});
    const afx::FieldNames names(wide);
    for (std::size_t i = 0; i < 255; ++i) EXPECT_EQ(names.find(os::narrow(wide[i]).c_str()), i);
}

TEST(FieldNames, letters_beyond_ascii_have_cases_too) {
    os::set_code_page(os::CodePage::kWindows1252);
    const afx::FieldNames names({u"Pri\u00E9"});
    EXPECT_EQ(names.find("pri\xE9"), 0u);
    EXPECT_EQ(names.find("PRI\xC9"), 0u);
    EXPECT_EQ(names.find("PRIE"), std::nullopt);
    os::set_code_page(os::CodePage::kSystem);
}

TEST(FieldNames, empty_list_finds_nothing) { EXPECT_EQ(afx::FieldNames({}).find("a"), std::nullopt); }

}  // namespace
