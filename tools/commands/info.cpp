// info: both files of a studio, looked at.
#include <cstdint>
#include <filesystem>

#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/info_json.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    bool json = false;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.word("FOLDER", options.folder, "folder of the studio, one of its two files, or another Jet file");
    declare.flag("--json", options.json, "one JSON object");
    declare.password(options.password);
}

void print_plan(const StudioFile& file) {
    const std::vector<const char*> plan = file.upgrade_plan();
    if (const std::string reason = file.version() ? file.why_not_upgraded() : ""; !reason.empty()) {
        output().print("  upgrade: none: %s\n", reason.c_str());
    } else if (plan.empty()) {
        output().print("  upgrade: %s\n", file.version() ? "nothing to do"
                                          : has_damage(file.path())
                                              ? "not possible, for what tells its version cannot be read"
                                              : "not possible, for its table DBHeader has no row that tells the "
                                                "version; kvdb rows and kvdb export read the tables as they are");
    } else if (file.is_newer()) {
        output().print(
            "  upgrade: none, it is newer than this program; the next opening by a host of this version would\n");
    } else {
        output().print("  upgrade: the next opening by a host would\n");
    }
    for (const char* const effect : plan) output().print("    - %s\n", effect);
    if (const std::string missing = file.missing_text(); !missing.empty()) {
        output().print("  incomplete: not there: %s\n", missing.c_str());
    }
}

// The kind of file, in words that its owner knows.
std::string format_text(const std::string& path) {
    std::unique_ptr<jet::Database> database;
    try {
        database = open_to_read(path, damage_teller(path));
    } catch (const DamagedFile&) {
        return ", which cannot be opened";  // why is told already
    }
    std::string text = std::string(", ") + format_words(*database);
    if (database->header().encryption_key != 0) text += ", encoded";
    return text;
}

void print_file(const char* what, const StudioFile& file) {
    if (!file.exists()) {
        output().print("%s: no file yet; the first opening by a host makes it\n", what);
        return;
    }
    output().print("%s: %s (%ju bytes), version %s%s\n", what, file.path().c_str(),
                   static_cast<std::uintmax_t>(std::filesystem::file_size(system_path(file.path()))),
                   file.version_text().c_str(), format_text(file.path()).c_str());
    print_plan(file);
    for (const auto& [table, rows] : file.row_counts()) {
        output().print("  %-24s %8u row%s\n", table.c_str(), rows, rows == 1 ? "" : "s");
    }
}

// Any Jet file.
int print_other_file(const std::string& path, const std::optional<std::string>& password) {
    const OpenedFile file = open_to_look(path, password);
    const auto& database = file.database;
    output().print("%s (%ju bytes), a %s file%s that is none of a studio's\n", path.c_str(),
                   static_cast<std::uintmax_t>(std::filesystem::file_size(system_path(path))),
                   database->pager().format().name, database->header().encryption_key != 0 ? ", encoded," : "");
    if (database->is_replica()) {
        output().print("  a replica: what is changed here, the programs that keep its set in line do not learn of\n");
    }
    for (const jet::Table* const table : readable_tables(file)) {
        const std::uint32_t rows = table->def().row_count;
        output().print("  %-24s %8u row%s\n", jet::to_utf8(table->def().name).c_str(), rows, rows == 1 ? "" : "s");
    }
    for (const jet::CatalogEntry& entry : database->catalog()) {
        if (entry.type != jet::kTableObject) output().print("  %s\n", database->why_no_table(entry.name).c_str());
    }
    require_undamaged();
    return 0;
}

int run(const Options& options) {
    if (is_other_file(options.folder)) {
        if (!options.json) return print_other_file(options.folder, options.password);
        output().write(other_file_json(open_to_look(options.folder, options.password)));
        require_undamaged();
        return 0;
    }
    const StudioFiles files(options.folder);
    files.require_studio();
    if (options.json) {
        output().write(studio_json(files));
        require_undamaged();
        if (!files.invoices.exists()) throw CommandError(files.invoices.path() + " is not there");
        return 0;
    }
    const bool has_header = files.studio.version().has_value();
    output().print("schema version %s", files.studio.version_text().c_str());
    if (has_header) {
        output().print(", colours %d and %d", static_cast<int>(files.studio.header("Color1")),
                       static_cast<int>(files.studio.header("Color2")));
    }
    output().print("\n");
    print_file("studio", files.studio);
    print_file("invoices", files.invoices);
    require_undamaged();
    if (!files.invoices.exists()) throw CommandError(files.invoices.path() + " is not there");
    return 0;
}

}  // namespace

const Command kInfoCommand{
    "info", kLookGroup,
    "Print version, files, tables and rows of a studio, and what an upgrade would do. Changes nothing. Of another Jet "
    "file its tables and rows.",
    declared<Options, bind, run>};

}  // namespace tools
