// compact: a studio's files made anew, smaller.
#include "tools/rescue/compact.h"

#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    bool to_jet4 = false;
    bool encode = false;
    bool decode = false;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.flag("--to-jet4", options.to_jet4, "write files of Access 97 as files of Access 2000 to 2003");
    declare.flag("--encode", options.encode,
                 "encode the pages; hides texts from a glance, and from nobody who knows the format");
    declare.flag("--decode", options.decode, "write encoded files without the encoding");
}

CompactOptions options_of(const Options& options) {
    if (options.encode && options.decode) throw UsageError("--encode and --decode are opposites");
    CompactOptions wanted;
    wanted.to_jet4 = options.to_jet4;
    if (options.encode) wanted.encoding = Encoding::kEncoded;
    if (options.decode) wanted.encoding = Encoding::kDecoded;
    return wanted;
}

int run(const Options& options) {
    const CompactOptions wanted = options_of(options);
    const StudioFiles files(options.folder);
    files.require_studio();
    catch_interrupts("the file that was being made anew is as it was");
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        if (!file->exists()) continue;
        const CompactOutcome outcome = compact_file(file->path(), wanted);
        const double share =
            outcome.bytes_before == 0
                ? 0
                : 100.0 * (static_cast<double>(outcome.bytes_before) - static_cast<double>(outcome.bytes_after)) /
                      static_cast<double>(outcome.bytes_before);
        output().print("%s: %ju bytes, now %ju (%.0f %% less); %zu rows, compared one by one\n", file->path().c_str(),
                       static_cast<std::uintmax_t>(outcome.bytes_before),
                       static_cast<std::uintmax_t>(outcome.bytes_after), share > 0 ? share : 0.0, outcome.rows);
    }
    return 0;
}

}  // namespace

const Command kCompactCommand{
    "compact", kKeepGroup,
    "Make both files of a studio anew, without the room that deleted rows have left. The new file has the same tables, "
    "rows in the same order, keys, next numbers, properties and password; it is compared with the old one row by row "
    "before it takes its place.",
    declared<Options, bind, run>};

}  // namespace tools
