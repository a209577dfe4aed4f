// diff: what two studios, or two files, hold otherwise.
#include <filesystem>
#include <map>

#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/interrupt.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/rescue/data_diff.h"
#include "tools/value_text.h"

namespace tools {
namespace {

namespace fs = std::filesystem;
using Kind = RowDifference::Kind;

struct Options {
    std::string a;
    std::string b;
    bool json = false;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.word("A", options.a, "folder of a studio, or a Jet file: as it was");
    declare.word("B", options.b, "the same kind of thing: as it is");
    declare.flag("--json", options.json, "one JSON object for each difference, in one array");
    declare.password(options.password);
}

constexpr std::size_t kShownCharacters = 60;

// A value as a person reads it in one line.
std::string shown(const jet::Value& value) {
    if (jet::is_null(value)) return "nothing";
    if (!std::holds_alternative<std::u16string>(value)) return plain_text(value);
    std::u16string text = std::get<std::u16string>(value);
    const bool is_cut = text.size() > kShownCharacters;
    if (is_cut) text.resize(kShownCharacters);
    return json_string(jet::to_utf8(text)) + (is_cut ? "..." : "");
}

class Teller {
public:
    explicit Teller(bool json) : json_(json) {}

    bool compare(const std::string& a, const std::string& b, const std::optional<std::string>& password) {
        const OpenedFile left = open_to_look(a, password);
        const OpenedFile right = open_to_look(b, password);
        const DiffVisitor visitor{[&](const RowDifference& row) { tell(row); },
                                  [&](const std::string& table, const std::string& what) { tell_schema(table, what); }};
        return diff_databases(left, right, visitor);
    }

    void only_one(const std::string& file, const char* which) {
        if (json_) {
            begin_object();
            output().print("{\"file\": %s, \"change\": \"file\", \"in\": \"%s\"}", json_string(file).c_str(), which);
        } else {
            output().print("%s is in the %s only\n", file.c_str(), which);
        }
    }

    // What was told before a failure is a whole array.
    void break_off() {
        if (json_ && any_) output().write("\n]\n");
    }

    void finish(bool is_same) {
        if (json_) {
            output().write(any_ ? "\n]\n" : "[]\n");
        } else if (is_same) {
            output().write("both hold the same\n");
        } else {
            output().print("%zu added, %zu removed, %zu changed\n", counts_[0], counts_[1], counts_[2]);
        }
    }

private:
    void begin_object() {
        output().write(any_ ? ",\n" : "[\n");
        any_ = true;
    }

    void tell_schema(const std::string& table, const std::string& what) {
        if (json_) {
            begin_object();
            output().print("{\"table\": %s, \"change\": \"schema\", \"what\": %s}", json_string(table).c_str(),
                           json_string(what).c_str());
        } else {
            output().print("%s: %s\n", table.c_str(), what.c_str());
        }
    }

    void tell(const RowDifference& row) {
        static constexpr const char* kNames[] = {"added", "removed", "changed"};
        static constexpr char kMarks[] = {'+', '-', '~'};
        const auto kind = static_cast<std::size_t>(row.kind);
        ++counts_[kind];
        if (json_) {
            begin_object();
            std::string text = "{\"table\": " + json_string(row.table) + ", \"change\": \"" + kNames[kind] +
                               "\", \"key\": " + (row.key ? std::to_string(*row.key) : "null");
            if (row.kind != Kind::kAdded) text += ", \"before\": " + object(row, &ChangedValue::before);
            if (row.kind != Kind::kRemoved) text += ", \"after\": " + object(row, &ChangedValue::after);
            output().write(text + "}");
            return;
        }
        output().print("%c %s%s\n", kMarks[kind], row.table.c_str(),
                       row.key ? (" " + std::to_string(*row.key)).c_str() : "");
        for (const ChangedValue& value : row.values) {
            const std::string text = row.kind == Kind::kChanged
                                         ? shown(value.before) + " -> " + shown(value.after)
                                         : shown(row.kind == Kind::kAdded ? value.after : value.before);
            output().print("    %s: %s\n", value.column.c_str(), text.c_str());
        }
    }

    static std::string object(const RowDifference& row, jet::Value ChangedValue::*member) {
        std::string text = "{";
        for (std::size_t i = 0; i < row.values.size(); ++i) {
            text += (i == 0 ? "" : ", ") + json_string(row.values[i].column) + ": " + json_value(row.values[i].*member);
        }
        return text + "}";
    }

    bool json_;
    bool any_ = false;
    std::size_t counts_[3] = {};
};

// The files of two studios in pairs; one that cannot be opened leaves the other pair to compare.
bool compare_folders(Teller& teller, const Options& options) {
    bool is_same = true;
    std::map<std::string, std::pair<std::string, std::string>> files;
    for (const std::string& path : jet_files_of(options.a)) files[file_name_of(path)].first = path;
    for (const std::string& path : jet_files_of(options.b)) files[file_name_of(path)].second = path;
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
        const auto& [a, b] = file->second;
        if (a.empty() || b.empty()) {
            is_same = false;
            teller.only_one(file->first, a.empty() ? "second" : "first");
            continue;
        }
        try {
            is_same = teller.compare(a, b, options.password) && is_same;
        } catch (const DamagedFile& error) {
            tell_damage(error.path(), "it cannot be opened: " + error.reason());
        }
    }
    return is_same;
}

int run(const Options& options) {
    for (const std::string& place : {options.a, options.b}) jet_files_of(place);  // whether there is one
    const bool a_is_folder = fs::is_directory(system_path(options.a));
    if (a_is_folder != fs::is_directory(system_path(options.b))) {
        throw UsageError("diff wants two folders or two files, and one of each was given");
    }
    catch_interrupts("this is not all that differs");
    Teller teller(options.json);
    bool is_same = false;
    try {
        is_same =
            a_is_folder ? compare_folders(teller, options) : teller.compare(options.a, options.b, options.password);
    } catch (...) {
        teller.break_off();
        throw;
    }
    teller.finish(is_same && damaged_places() == 0);
    require_undamaged();
    return is_same ? 0 : 1;
}

}  // namespace

const Command kDiffCommand{"diff", kKeepGroup,
                           "Show what two studios, or two files, hold otherwise: rows added (+), removed (-) and "
                           "changed (~), by their keys, and "
                           "tables and columns that only one of them has. The exit code is 1 when they differ.",
                           declared<Options, bind, run>};

}  // namespace tools
