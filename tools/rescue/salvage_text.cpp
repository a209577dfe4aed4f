#include "tools/rescue/salvage_text.h"

#include <algorithm>

#include "tools/text_width.h"
#include "tools/value_text.h"

namespace tools {
namespace {

// What happened to the table besides its rows, as one line.
std::string story_of(const SalvagedTable& table) {
    std::string text;
    const auto add = [&](const std::string& what) { text += (text.empty() ? "" : "; ") + what; };
    if (table.is_made_anew) add("nothing of it was found: made anew, without rows");
    if (table.is_rebuilt) add("its definition was lost or damaged: the studio's own took its place");
    if (table.is_named_by_guess) add("its name was lost: found by its columns and its place in the file");
    if (table.lost_pages > 0) add(plural(table.lost_pages, "page", "pages") + " of it no longer there");
    if (table.unreadable > 0) add(plural(table.unreadable, "row", "rows") + " too damaged to be read");
    if (table.left_out > 0) add(plural(table.left_out, "row", "rows") + " not taken");
    if (table.cut_values > 0) add(plural(table.cut_values, "long text", "long texts") + " cut or lost");
    return text;
}

std::string field(const char* name, std::size_t value) { return json_string(name) + ": " + std::to_string(value); }
std::string flag(const char* name, bool value) { return json_string(name) + ": " + (value ? "true" : "false"); }

std::string list(const std::vector<std::string>& texts) {
    std::string json = "[";
    for (std::size_t i = 0; i < texts.size(); ++i) json += (i == 0 ? "" : ", ") + json_string(texts[i]);
    return json + "]";
}

std::size_t missing(const SalvagedTable& table) { return std::max(table.lost_rows, table.unreadable) + table.left_out; }

const char* file_text(const SalvageReport& report) {
    if (!report.studio_file) return "no studio's file: a database of another program";
    return *report.studio_file == db::DatabaseFile::kMain ? "the studio's main file (sldb.mdb)"
                                                          : "the studio's invoices (kvinvdb.mdb)";
}

}  // namespace

std::string salvage_text(const SalvageReport& report, const std::string& from, const std::string& to) {
    std::string text = from + " looks like " + file_text(report) + "\n\n";
    std::size_t width = 5;
    for (const SalvagedTable& table : report.tables) width = std::max(width, table.name.size());
    text += "  " + padded("table", width) + "     saved  doubtful      lost\n";
    const auto number = [](std::size_t n) {
        const std::string digits = std::to_string(n);
        return std::string(digits.size() < 10 ? 10 - digits.size() : 1, ' ') + digits;
    };
    for (const SalvagedTable& table : report.tables) {
        text +=
            "  " + padded(table.name, width) + number(table.saved) + number(table.doubtful) + number(missing(table));
        const std::string story = story_of(table);
        text += (story.empty() ? "" : "  " + story) + "\n";
    }
    text +=
        "  " + padded("all", width) + number(report.saved()) + number(report.doubtful()) + number(report.lost()) + "\n";
    bool has_title = false;
    for (const SalvagedTable& table : report.tables) {
        for (const std::string& note : table.notes) {
            if (!has_title) text += "\nWhat to look at:\n";
            has_title = true;
            text += "  " + table.name + ": " + note + "\n";
        }
    }
    if (!report.notes.empty()) text += "\n";
    for (const std::string& note : report.notes) text += note + "\n";
    text += "\n" + to + " holds " + plural(report.saved(), "row", "rows") + " and was found to be sound.\n";
    if (report.is_complete()) {
        text += "Nothing is known to be missing.\n";
    } else {
        text +=
            "\"Doubtful\" rows were saved, but their place or a value of theirs was damaged: look them over. \"Lost\" "
            "is "
            "what the\nold file itself counts beyond them, as far as its counts can be read. Keep the damaged file.\n";
    }
    return text;
}

std::string salvage_json(const SalvageReport& report, const std::string& from, const std::string& to) {
    std::string json = "{" + json_string("from") + ": " + json_string(from) + ", " + json_string("to") + ": " +
                       json_string(to) + ", " + json_string("kind") + ": ";
    json += report.studio_file ? json_string(*report.studio_file == db::DatabaseFile::kMain ? "studio" : "invoices")
                               : json_string("other");
    json += ", " + field("saved", report.saved()) + ", " + field("doubtful", report.doubtful()) + ", " +
            field("lost", report.lost()) + ", " + json_string("notes") + ": " + list(report.notes) + ",\n" +
            json_string("tables") + ": [";
    for (std::size_t i = 0; i < report.tables.size(); ++i) {
        const SalvagedTable& table = report.tables[i];
        json += std::string(i == 0 ? "\n" : ",\n") + "{" + json_string("table") + ": " + json_string(table.name) +
                ", " + field("saved", table.saved) + ", " + field("doubtful", table.doubtful) + ", " +
                field("lost", missing(table)) + ", " + field("cut", table.cut_values) + ", " +
                flag("definition_rebuilt", table.is_rebuilt) + ", " + flag("made_anew", table.is_made_anew) + ", " +
                json_string("notes") + ": " + list(table.notes) + "}";
    }
    return json + "\n]}\n";
}

}  // namespace tools
