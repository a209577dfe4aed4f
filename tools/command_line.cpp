#include "tools/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/documents/documents.h"
#include "tools/errors.h"
#include "tools/help.h"
#include "tools/names.h"
#include "tools/output.h"

namespace tools {
namespace {

Names option_names(const CLI::App& command) {
    Names names;
    for (const CLI::Option* const option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

const CLI::App& command_called(const CLI::App& tree, const std::string& name) {
    for (const CLI::App* const command : tree.get_subcommands({})) {
        if (command->get_name() == name) return *command;
    }
    const std::string hint = suggestion(name, command_names(tree));
    throw UsageError("unknown command '" + name + "'" + (hint.empty() ? "; kvdb --help lists them" : hint));
}

// What CLI11 has to say, in one line of ours.
std::string usage_text(const CLI::App& command, const CLI::ParseError& error) {
    const std::string usage = "; usage: " + usage_line(command);
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const Names extras = command.remaining();
        const std::string word = extras.empty() ? "" : extras.front();
        if (word.rfind("-", 0) != 0) return "'" + word + "' is one word too many" + usage;
        const std::string hint = suggestion(word.substr(0, word.find('=')), option_names(command));
        return "unknown option " + word + (hint.empty() ? usage : hint);
    }
    // "Could not convert: --limit = many": only numbers are converted.
    const std::string text = error.what();
    const std::size_t option = text.find(": --");
    const std::size_t value = text.find(" = ");
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr && option < value && value != std::string::npos) {
        return text.substr(option + 2, value - option - 2) + " takes a whole number, not '" + text.substr(value + 3) +
               "'";
    }
    return text + usage;
}

}  // namespace

CommandLine::CommandLine() : tree_(std::make_unique<CLI::App>(kProgramHelp, "kvdb")) {
    // Before the commands, which inherit it: a path may begin with the sign of an option of Windows.
    tree_->allow_windows_style_options(false);
    tree_->set_help_flag("-h,--help", "print help and exit");
    tree_->set_version_flag("--version", "kvdb " KVDB_VERSION, "print the version and exit");
    for (const Command* const command : all_commands()) {
        CLI::App* const app = tree_->add_subcommand(command->name, command->help);
        app->group(command->group);
        Declaration declaration(*app);
        runs_[command->name] = command->declare(declaration);
    }
    CLI::App* const help = tree_->add_subcommand(
        "help", "Print the help of a command, or what is made of the commands' declarations to be installed.");
    help->group(kLookGroup);
    Declaration declaration(*help);
    declaration.optional_word("COMMAND", help_topic_, "name of the command; without it, all of them are listed");
    declaration.flag("--man", wants_man_page_, "print the man page kvdb(1)");
    declaration.option("--completion", completion_shell_, "SHELL",
                       "print the script that lets a shell complete kvdb's command line: bash, zsh or fish");
    runs_["help"] = [this] { return run_help(); };
}

CommandLine::~CommandLine() = default;

int CommandLine::run_help() {
    if (wants_man_page_) {
        output().write(man_page(outline_of(*tree_)));
    } else if (completion_shell_) {
        output().write(completion_script(outline_of(*tree_), *completion_shell_));
    } else {
        output().write(help_topic_.empty() ? help_of_all(*tree_) : help_of(command_called(*tree_, help_topic_)));
    }
    return 0;
}

int CommandLine::run(const std::vector<std::string>& words) {
    if (words.empty()) throw UsageError("no command; kvdb --help lists them");
    if (words[0].rfind("-", 0) != 0) command_called(*tree_, words[0]);  // a name that is none gets its suggestion
    // The parser takes a command's name for the command itself wherever it stands.
    if (words[0] == "help" && words.size() == 2 && words[1].rfind("-", 0) != 0) {
        output().write(help_of(command_called(*tree_, words[1])));
        return 0;
    }
    try {
        // From the last to the first, as CLI11 takes them.
        Names reversed(words.rbegin(), words.rend());
        tree_->parse(reversed);
    } catch (const CLI::CallForHelp&) {
        const auto chosen = tree_->get_subcommands();
        output().write(chosen.empty() ? help_of_all(*tree_) : help_of(*chosen.back()));
        return 0;
    } catch (const CLI::CallForVersion& version) {
        output().write(std::string(version.what()) + "\n");
        return 0;
    } catch (const CLI::ParseError& error) {
        const auto chosen = tree_->get_subcommands();
        throw UsageError(usage_text(chosen.empty() ? *tree_ : *chosen.back(), error));
    }
    const auto chosen = tree_->get_subcommands();
    if (chosen.empty()) throw UsageError("no command; kvdb --help lists them");
    return runs_.at(chosen.back()->get_name())();
}

}  // namespace tools
