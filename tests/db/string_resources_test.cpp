#include "db/string_resources.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(StringResources, welcome_note_has_its_heading_and_paragraphs) {
    const std::string note = db::string_resource(101);
    const std::string line = std::string(17, ' ') + std::string(27, '=') + "\n";
    EXPECT_EQ(note.substr(0, line.size() * 2 + 19 + 21), line + std::string(19, ' ') + "Welcome to Korvane !\n" + line);
    EXPECT_EQ(note.find('\r'), std::string::npos);
    // Blanks at the ends of lines and the lower-case letter are deliberate.
    for (const char* paragraph :
         {"first time, a new sample project is created. \n\n",
          "\n\nKorvane is simple and intuitive application. it won't take you long", " before start using it. \n\n"}) {
        EXPECT_NE(note.find(paragraph), std::string::npos) << paragraph;
    }
    EXPECT_TRUE(note.ends_with("\n\nHope it will be useful to your studio and your music."));
    EXPECT_EQ(std::count(note.begin(), note.end(), '\n'), 12);
}

TEST(StringResources, verse_is_there_and_nothing_else) {
    EXPECT_FALSE(db::string_resource(102).empty());
    EXPECT_EQ(db::string_resource(100), "");
    EXPECT_EQ(db::string_resource(103), "");
}
