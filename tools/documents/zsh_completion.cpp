#include "tools/documents/documents.h"

namespace tools {
namespace {

using Value = OutlineItem::Value;

// For the arguments of _arguments in single quotes, where brackets and colons have a meaning.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'') {
            result += "'\\''";
        } else {
            if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
            result += c;
        }
    }
    return result;
}

// ":what:how"
std::string value_of(const OutlineItem& item, const std::string& name) {
    std::string how;
    if (item.value == Value::kPath) how = "_files";
    if (item.value == Value::kChoice) {
        for (const std::string& choice : item.choices) how += (how.empty() ? "(" : " ") + choice;
        how += ")";
    }
    return ":" + escaped(name) + ":" + how;
}

std::string case_of(const OutlineCommand& command) {
    std::string text = "        " + command.name + ")\n            _arguments -S";
    for (const OutlineItem& option : command.options) {
        for (const std::string& name : option.names) {
            const std::string value = option.value == Value::kNone ? "" : value_of(option, option.type);
            text += " \\\n                '" + std::string(option.is_repeated ? "*" : "") + name + "[" +
                    escaped(option.help) + "]" + value + "'";
        }
    }
    int place = 1;
    for (const OutlineItem& word : command.words) {
        const std::string where = word.is_repeated ? "*" : std::to_string(place++);
        text += " \\\n                '" + where + value_of(word, word.names[0]) + "'";
    }
    return text + " ;;\n";
}

}  // namespace

std::string zsh_completion(const Outline& outline) {
    std::string script = R"(#compdef kvdb
# Completion of kvdb's command line by zsh; made by "kvdb help --completion zsh".
_kvdb() {
    local -a commands
    commands=(
)";
    for (const OutlineCommand& command : outline.commands) {
        script += "        '" + command.name + ":" + escaped(command.help.substr(0, command.help.find(". "))) + "'\n";
    }
    script += "    )\n    if (( CURRENT == 2 )); then\n        _describe command commands\n        _arguments";
    for (const OutlineItem& option : outline.options) {
        for (const std::string& name : option.names) {
            script += " \\\n            '" + name + "[" + escaped(option.help) + "]'";
        }
    }
    script += R"(
        return
    fi
    shift words
    (( CURRENT-- ))
    case $words[1] in
)";
    for (const OutlineCommand& command : outline.commands) script += case_of(command);
    return script + R"(    esac
}
if [ "${funcstack[1]}" = _kvdb ]; then
    _kvdb "$@"
else
    compdef _kvdb kvdb
fi
)";
}

}  // namespace tools
