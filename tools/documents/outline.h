// The command line as data, for whoever makes documents of it: the man page and the completions say what the help says.
#pragma once

#include <string>
#include <vector>

#include "tools/names.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tools {

// A word by its place, or an option.
struct OutlineItem {
    enum class Value { kNone, kText, kPath, kChoice };

    Names names;       // "-o", "--out"; of a word its one name
    std::string type;  // what stands for the value of an option: "TEXT"
    std::string help;
    Value value = Value::kNone;  // what can be typed as the value, or as the word
    Names choices;               // of kChoice
    bool is_repeated = false;
    bool is_required = false;
};

struct OutlineCommand {
    std::string name;
    std::string group;
    std::string help;
    std::vector<OutlineItem> words;
    std::vector<OutlineItem> options;
};

struct Outline {
    std::string help;
    std::vector<OutlineItem> options;  // of the program itself
    std::vector<OutlineCommand> commands;
};

Outline outline_of(const CLI::App& tree);

// "[--columns A,B]", "FOLDER", "member=value ..."
std::string usage_of(const OutlineItem& item, bool is_word);

}  // namespace tools
