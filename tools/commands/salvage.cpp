// salvage: a sound new file from a damaged one.
#include "tools/rescue/salvage.h"

#include <filesystem>

#include "os/system.h"
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/interrupt.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/rescue/salvage_text.h"

namespace tools {
namespace {

struct Options {
    std::string from;
    std::string to;
    bool json = false;
};

void bind(Declaration& declare, Options& options) {
    declare.word("FILE", options.from, "the damaged file; it is only read");
    declare.word("NEW", options.to, "the file to make, which must not be there yet");
    declare.flag("--json", options.json, "the report as one JSON object");
}

// Each of a studio's two files makes a file of its own.
void require_file(const Options& options) {
    if (!std::filesystem::is_directory(system_path(options.from))) {
        jet_files_of(options.from);  // there is one
        return;
    }
    std::string commands;
    for (const char* const name : {kStudioFile, kInvoiceFile}) {
        commands += (commands.empty() ? "" : " and ") +
                    ("kvdb salvage " + typed_path(os::join_path(options.from, name))) + " saved-" + name;
    }
    throw UsageError(options.from + " is a folder, and salvage takes one file; those of a studio are saved with " +
                     commands);
}

int run(const Options& options) {
    require_file(options);
    catch_interrupts();
    const SalvageReport report = salvage(options.from, options.to);
    output().write((options.json ? salvage_json : salvage_text)(report, options.from, options.to));
    return 0;
}

}  // namespace

const Command kSalvageCommand{
    "salvage", kKeepGroup,
    "Save what is left in a damaged file into a sound new one. The file is read page by page, without its list of "
    "tables, its definitions or its maps; a studio's tables are known without them. Rows keep their keys and their "
    "values, deleted ones stay deleted, and the report says what was saved, what is doubtful, and what is lost. The "
    "new file is of the damaged one's format, and encoded if that is. The exit code is 0 when a new file was made, "
    "whatever is missing in it.",
    declared<Options, bind, run>};

}  // namespace tools
