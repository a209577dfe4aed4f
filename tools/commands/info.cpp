// info: both files of a studio, looked at.
#include <cstdint>
#include <filesystem>

#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/output.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
};

void bind(Declaration& declare, Options& options) { declare.folder(options.folder); }

void print_plan(const StudioFile& file) {
    const std::vector<const char*> plan = file.upgrade_plan();
    if (plan.empty()) {
        output().print("  upgrade: %s\n", file.version() ? "nothing to do" : "not possible");
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

void print_file(const char* what, const StudioFile& file) {
    if (!file.exists()) {
        output().print("%s: no file yet; the first opening by a host makes it\n", what);
        return;
    }
    output().print("%s: %s (%ju bytes), version %s\n", what, file.path().c_str(),
                   static_cast<std::uintmax_t>(std::filesystem::file_size(file.path())), file.version_text().c_str());
    print_plan(file);
    for (const auto& [table, rows] : file.row_counts()) {
        output().print("  %-24s %8u row%s\n", table.c_str(), rows, rows == 1 ? "" : "s");
    }
}

int run(const Options& options) {
    const StudioFiles files(options.folder);
    files.require_studio();
    output().print("schema version %s, colours %d and %d\n", files.studio.version_text().c_str(),
                   static_cast<int>(files.studio.header("Color1")), static_cast<int>(files.studio.header("Color2")));
    print_file("studio", files.studio);
    print_file("invoices", files.invoices);
    if (!files.invoices.exists()) throw CommandError(files.invoices.path() + " is not there");
    return 0;
}

}  // namespace

const Command kInfoCommand{
    "info", kLookGroup,
    "Print version, files, tables and rows of a studio, and what an upgrade would do. Changes nothing.",
    declared<Options, bind, run>};

}  // namespace tools
