#include "tools/command.h"
#include "tools/documents/documents.h"
#include "tools/help.h"

namespace tools {
namespace {

constexpr const char* kDate = "2026-11-22";  // of the texts that only this page has

// A text as a line of the page: nothing in it is a command or an escape of the language.
std::string escaped(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c == '\\') {
            line += "\\e";
        } else if (c == '-') {
            line += "\\-";
        } else {
            line += c;
        }
    }
    return !line.empty() && (line[0] == '.' || line[0] == '\'') ? "\\&" + line : line;
}

// Each sentence on a line of its own, as the language wants it.
std::string paragraph(const std::string& text) {
    std::string lines;
    std::size_t begin = 0;
    for (std::size_t end = text.find(". "); end != std::string::npos; end = text.find(". ", begin)) {
        lines += escaped(text.substr(begin, end + 1 - begin)) + "\n";
        begin = text.find_first_not_of(' ', end + 1);
        if (begin == std::string::npos) return lines;
    }
    return lines + escaped(text.substr(begin)) + "\n";
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string name_of(const OutlineItem& item, bool is_word) {
    if (is_word) return italic(item.names[0]);
    std::string text;
    for (const std::string& name : item.names) text += (text.empty() ? "" : ", ") + bold(name);
    return item.type.empty() ? text : text + " " + italic(item.type);
}

std::string usage_line(const OutlineCommand& command) {
    std::string line = bold("kvdb " + command.name);
    for (const OutlineItem& word : command.words) line += " " + escaped(usage_of(word, true));
    for (const OutlineItem& option : command.options) {
        if (option.names.back() != "--help") line += " " + escaped(usage_of(option, false));
    }
    return line;
}

std::string items(const std::vector<OutlineItem>& items, bool is_word) {
    std::string text;
    for (const OutlineItem& item : items) {
        if (item.names.back() == "--help") continue;
        text += ".TP\n" + name_of(item, is_word) + "\n" + paragraph(item.help);
    }
    return text;
}

std::string command_text(const OutlineCommand& command) {
    std::string text = ".TP\n" + usage_line(command) + "\n" + paragraph(command.help);
    const std::string details = items(command.words, true) + items(command.options, false);
    return details.empty() ? text : text + ".RS\n" + details + ".RE\n";
}

}  // namespace

std::string man_page(const Outline& outline) {
    const std::string about = outline.help.substr(outline.help.find(": ") + 2);
    std::string page =
        std::string(".TH KVDB 1 ") + kDate + " \"kvdb " KVDB_VERSION "\" \"User Commands\"\n.nh\n.ad l\n";
    page += ".SH NAME\nkvdb \\- " + escaped(about.substr(0, about.size() - 1)) + "\n";
    page += ".SH SYNOPSIS\n" + bold("kvdb") + " " + italic("COMMAND") + " [" + italic("WORD") + " ...] [" +
            italic("OPTION") + " ...]\n";
    page += ".SH DESCRIPTION\n";
    const std::string notes = help_notes();
    for (std::size_t begin = 0; begin < notes.size();) {
        const std::size_t end = notes.find('\n', begin);
        page += (begin == 0 ? "" : ".PP\n") + paragraph(notes.substr(begin, end - begin));
        begin = end + 1;
    }
    page += ".SH COMMANDS\nEvery command takes " + bold("--help") + ", which tells all of it.\n";
    for (const char* const group : kCommandGroups) {
        page += ".SS " + escaped(group) + "\n";
        for (const OutlineCommand& command : outline.commands) {
            if (command.group == group) page += command_text(command);
        }
    }
    page += ".SH OPTIONS\n";
    for (const OutlineItem& item : outline.options) {
        page += ".TP\n" + name_of(item, false) + "\n" + paragraph(item.help);
    }
    page += ".SH EXIT STATUS\n.TP\n0\nDone.\n.TP\n1\nFailed; one line on standard error says why.\n";
    page += ".TP\n2\nWhat was typed is not understood: a word, an option, a table or a column that is not there.\n";
    page += ".SH SEE ALSO\n.BR kvdb\\-files (5)\n";
    return page;
}

}  // namespace tools
