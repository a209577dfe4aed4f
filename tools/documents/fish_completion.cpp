#include <set>

#include "tools/documents/documents.h"

namespace tools {
namespace {

using Value = OutlineItem::Value;

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return result + "'";
}

std::string value_of(const OutlineItem& item) {
    if (item.value == Value::kPath) return " -F";
    if (item.value != Value::kChoice) return "";
    std::string choices;
    for (const std::string& choice : item.choices) choices += (choices.empty() ? "" : " ") + choice;
    return " -a " + quoted(choices);
}

std::string option_line(const std::string& condition, const OutlineItem& option) {
    std::string line = "complete -c kvdb -n " + quoted(condition);
    for (const std::string& name : option.names) {
        line += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (option.value != Value::kNone) line += " -r" + value_of(option);
    return line + " -d " + quoted(option.help) + "\n";
}

std::string lines_of(const OutlineCommand& command) {
    std::string lines;
    for (const OutlineItem& option : command.options) lines += option_line("__kvdb_in " + command.name, option);
    int place = 1;
    for (const OutlineItem& word : command.words) {
        const std::string value = value_of(word);
        const std::string where = "__kvdb_in " + command.name + "; and __kvdb_at " + std::to_string(place++) +
                                  (word.is_repeated ? " more" : "");
        if (!value.empty()) lines += "complete -c kvdb -n " + quoted(where) + value + "\n";
    }
    return lines;
}

}  // namespace

std::string fish_completion(const Outline& outline) {
    std::set<std::string> valued;
    for (const OutlineCommand& command : outline.commands) {
        for (const OutlineItem& option : command.options) {
            if (option.value != Value::kNone) valued.insert(option.names.begin(), option.names.end());
        }
    }
    std::string list;
    for (const std::string& name : valued) list += " " + name;
    std::string script = R"(# Completion of kvdb's command line by fish; made by "kvdb help --completion fish".
function __kvdb_in
    set -l typed (commandline -opc)
    test (count $typed) -gt 1; and test $typed[2] = $argv[1]
end

# Whether the word being typed is the command's word of that place, or a later one.
function __kvdb_at
    set -l place 0
    set -l skip no
    for word in (commandline -opc)[2..-1]
        if test $skip = yes
            set skip no
        else if contains -- $word)" +
                         list + R"(
            set skip yes
        else if not string match -q -- '-*' $word
            set place (math $place + 1)
        end
    end
    test $place -eq $argv[1]; or test (count $argv) -gt 1 -a $place -gt $argv[1]
end

complete -c kvdb -f
)";
    for (const OutlineItem& option : outline.options) script += option_line("__fish_use_subcommand", option);
    for (const OutlineCommand& command : outline.commands) {
        script += "complete -c kvdb -n __fish_use_subcommand -a " + command.name + " -d " +
                  quoted(command.help.substr(0, command.help.find(". "))) + "\n";
    }
    for (const OutlineCommand& command : outline.commands) script += lines_of(command);
    return script;
}

}  // namespace tools
