#include "tools/documents/documents.h"

namespace tools {
namespace {

using Value = OutlineItem::Value;

std::string joined(const Names& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

// What the script's own function takes: "files", "nothing", or the words.
std::string value_of(const OutlineItem& item) {
    if (item.value == Value::kPath) return "files";
    return item.value == Value::kChoice ? joined(item.choices) : "nothing";
}

std::string case_of(const OutlineCommand& command) {
    Names options;
    std::string values;
    for (const OutlineItem& option : command.options) {
        options.insert(options.end(), option.names.begin(), option.names.end());
        if (option.value == Value::kNone) continue;
        for (const std::string& name : option.names) values += "[" + name + "]='" + value_of(option) + "' ";
    }
    std::string words;
    std::string rest = "nothing";
    for (const OutlineItem& word : command.words) {
        words += (words.empty() ? "'" : " '") + value_of(word) + "'";
        if (word.is_repeated) rest = value_of(word);
    }
    return "        " + command.name + ")\n            options='" + joined(options) + "'\n            values=(" +
           values + ")\n            words=(" + words + ") rest='" + rest + "' ;;\n";
}

}  // namespace

std::string bash_completion(const Outline& outline) {
    Names first;
    for (const OutlineCommand& command : outline.commands) first.push_back(command.name);
    for (const OutlineItem& option : outline.options) {
        first.insert(first.end(), option.names.begin(), option.names.end());
    }
    std::string script = R"(# Completion of kvdb's command line by bash; made by "kvdb help --completion bash".
_kvdb() {
    local word=${COMP_WORDS[COMP_CWORD]} options='' words=() rest=nothing wanted i place=0
    local -A values=()
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W ')" +
                         joined(first) +
                         R"(' -- "$word"))
        return
    fi
    case ${COMP_WORDS[1]} in
)";
    for (const OutlineCommand& command : outline.commands) script += case_of(command);
    return script + R"(        *) return ;;
    esac
    wanted=${values[${COMP_WORDS[COMP_CWORD - 1]}]-}
    if [ -z "$wanted" ]; then
        if [[ $word == -* ]]; then
            COMPREPLY=($(compgen -W "$options" -- "$word"))
            return
        fi
        for ((i = 2; i < COMP_CWORD; i++)); do
            [[ ${COMP_WORDS[i]} == -* || -n ${values[${COMP_WORDS[i - 1]}]-} ]] || place=$((place + 1))
        done
        wanted=${words[place]-$rest}
    fi
    case $wanted in
        nothing) ;;
        files)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        *) COMPREPLY=($(compgen -W "$wanted" -- "$word")) ;;
    esac
}
complete -F _kvdb kvdb
)";
}

}  // namespace tools
