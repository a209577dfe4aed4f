// What a command declares of its command line: words by their place, and options by their name. The parser behind it is
// known to declaration.cpp and command_line.cpp alone.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/row_printer.h"

namespace CLI {
class App;
}

namespace tools {

// --json and --csv, of which one at most is given.
struct FormatOption {
    bool json = false;
    bool csv = false;
    RowFormat format() const { return json ? RowFormat::kJson : csv ? RowFormat::kCsv : RowFormat::kPlain; }
};

// Each function takes the place of the value, which keeps what it holds when nothing is typed, and the help.
class Declaration {
public:
    explicit Declaration(CLI::App& app) : app_(app) {}

    // Words in the order of the calls: one that must be there, one that may be missing, and the last ones.
    void word(const char* name, std::string& value, const char* help);
    void optional_word(const char* name, std::string& value, const char* help);
    void words(const char* name, std::vector<std::string>& values, const char* help);
    void optional_words(const char* name, std::vector<std::string>& values, const char* help);

    void flag(const char* name, bool& value, const char* help);
    // `type` stands for the value in the help.
    void option(const char* name, std::optional<std::string>& value, const char* type, const char* help);
    void option(const char* name, std::optional<int>& value, const char* type, const char* help);
    void required_option(const char* name, std::string& value, const char* type, const char* help);
    // Takes one value each time it is given.
    void repeated_option(const char* name, std::vector<std::string>& values, const char* type, const char* help);

    // What several commands have alike.
    void folder(std::string& value);
    void file(std::string& value);
    void table(std::string& value);
    void format(FormatOption& value);
    void password(std::optional<std::string>& value);

private:
    CLI::App& app_;
};

}  // namespace tools
