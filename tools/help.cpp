#include "tools/help.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

#include "tools/command.h"

namespace tools {
namespace {

constexpr std::size_t kWidth = 100;
constexpr std::size_t kColumn = 26;  // where the explanations stand

constexpr const char* kNotes =
    "FOLDER is the one that holds a studio's two files, sldb.mdb and kvinvdb.mdb; FILE is one of them or any other Jet "
    "file. Where a command takes a folder it takes one of the two files as well, and where it takes a file, a folder: "
    "then it looks into both. The studio's own passwords are known; another one is given with --password.\n"
    "Only demo, upgrade and the commands below \"Change\" write to a studio, and only upgrade changes its version. "
    "Nothing is loaded from a studio's folder.\n"
    "Exit codes: 0 done, 1 failed, 2 not understood. Output that cannot be written is a failure; a pipe whose reader "
    "has gone ends the command quietly, with 1.\n";

bool is_help(const CLI::App& command, const CLI::Option* option) { return option == command.get_help_ptr(); }

// "--where TEXT", "-h, --help", "FOLDER", "member=value ..."
std::string name_of(const CLI::Option& option) {
    if (option.get_positional()) {
        return option.get_name(true, false) +
               (option.get_expected_max() >= CLI::detail::expected_max_vector_size ? " ..." : "");
    }
    std::string text;
    for (const std::string& name : option.get_snames()) text += (text.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames()) text += (text.empty() ? "--" : ", --") + name;
    if (option.get_type_size() != 0 && !option.get_type_name().empty()) text += " " + option.get_type_name();
    return text;
}

bool may_be_repeated(const CLI::Option& option) {
    return !option.get_positional() && option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
}

std::string usage_of(const CLI::Option& option) {
    const std::string text = name_of(option) + (may_be_repeated(option) ? " ..." : "");
    return option.get_required() ? text : "[" + text + "]";
}

std::string explained(const std::string& name, const std::string& text) {
    std::string lines = wrapped(text, kColumn, kWidth);
    const std::string front = "  " + name;
    if (front.size() + 2 > kColumn) return front + "\n" + lines;
    return front + lines.substr(front.size());
}

std::string first_sentence(const std::string& text) {
    const std::size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
}

// The command, then what stands together: a word, or an option with its value.
Names usage_parts(const CLI::App& command) {
    Names parts{command.get_parent() != nullptr ? "kvdb " + command.get_name() : "kvdb COMMAND"};
    for (const bool positional : {true, false}) {
        for (const CLI::Option* const option : command.get_options()) {
            if (is_help(command, option) || option->get_positional() != positional) continue;
            parts.push_back(usage_of(*option));
        }
    }
    return parts;
}

}  // namespace

Names command_names(const CLI::App& tree) {
    Names names;
    for (const CLI::App* const command : tree.get_subcommands({})) names.push_back(command->get_name());
    return names;
}

std::string wrapped(const std::string& text, std::size_t indent, std::size_t width) {
    std::string lines;
    std::istringstream paragraphs(text);
    for (std::string paragraph; std::getline(paragraphs, paragraph);) {
        std::istringstream words(paragraph);
        std::string line(indent, ' ');
        bool is_empty = true;
        for (std::string word; words >> word;) {
            if (!is_empty && line.size() + 1 + word.size() > width) {
                lines += line + "\n";
                line.assign(indent, ' ');
                is_empty = true;
            }
            line += (is_empty ? "" : " ") + word;
            is_empty = false;
        }
        lines += line + "\n";
    }
    return lines;
}

std::string usage_line(const CLI::App& command) {
    std::string text;
    for (const std::string& part : usage_parts(command)) text += (text.empty() ? "" : " ") + part;
    return text;
}

std::string help_of(const CLI::App& command) {
    std::string text = "usage:";
    std::size_t width = text.size();
    for (const std::string& part : usage_parts(command)) {
        if (width + 1 + part.size() > kWidth) {
            text += "\n         ";
            width = 9;
        }
        text += " " + part;
        width += 1 + part.size();
    }
    text += "\n\n" + wrapped(command.get_description(), 0, kWidth) + "\n";
    for (const bool positional : {true, false}) {
        for (const CLI::Option* const option : command.get_options()) {
            if (is_help(command, option) || option->get_positional() != positional) continue;
            text += explained(name_of(*option), option->get_description());
        }
    }
    return text + explained(name_of(*command.get_help_ptr()), command.get_help_ptr()->get_description());
}

std::string help_notes() { return kNotes; }

std::string help_of_all(const CLI::App& tree) {
    std::string text = tree.get_description() + "\n";
    for (const char* const group : kCommandGroups) {
        const auto commands = tree.get_subcommands([&](const CLI::App* app) { return app->get_group() == group; });
        if (commands.empty()) continue;
        text += std::string("\n") + group + ":\n";
        for (const CLI::App* const command : commands) {
            text += wrapped(usage_line(*command), 6, kWidth).substr(4);
            text += wrapped(first_sentence(command->get_description()), 6, kWidth);
        }
    }
    text +=
        "\nkvdb help COMMAND, or kvdb COMMAND --help, tells all of a command; kvdb --version tells the version.\n\n";
    return text + wrapped(kNotes, 0, kWidth);
}

}  // namespace tools
