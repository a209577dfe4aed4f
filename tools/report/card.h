// A card of the page: a heading, a sentence, a picture, and the numbers behind it as a table.
#pragma once

#include <string>
#include <vector>

namespace tools {

// The numbers behind a picture. The first columns tell what a row is, the others are numbers.
struct NumberTable {
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> rows;
    std::size_t names = 1;  // columns that tell
    // As HTML, folded away below `title`; "" without rows.
    std::string html(const std::string& title) const;
};

struct Card {
    const char* id;     // of the page's elements
    const char* title;  // its heading
    const char* table;  // the one behind it
    std::string sentence;
    std::string body;  // HTML
    bool is_wide = false;
    std::string html() const;
};

// What a mark of a picture means: a colour's class and its name.
struct LegendItem {
    const char* kind;
    const char* name;
};
std::string legend_html(const std::vector<LegendItem>& items);

// An SVG picture as wide as the page leaves it: widths are shares, heights pixels. `title` and `description` are what a
// screen reader says.
std::string picture_html(const std::string& id, const std::string& title, const std::string& description, int height,
                         const std::string& content);

}  // namespace tools
