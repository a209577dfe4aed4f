// rows: all rows of a file's table.
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/open_file.h"
#include "tools/row_selection.h"

namespace tools {
namespace {

struct Options {
    std::string file;
    std::string table;
    SelectionOptions selection;
    FormatOption format;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.table(options.table);
    options.selection.declare(declare);
    declare.format(options.format);
    declare.password(options.password);
}

int run(const Options& options) {
    const FoundTable found(options.file, options.table, options.password);
    const RowSelection selection(found.database(), found.table(), options.selection);
    RowPrinter printer(options.format.format(), selection.names());
    print_rows(printer, [&](const RowVisitor& print) { selection.for_each(print); });
    require_undamaged();
    return 0;
}

}  // namespace

const Command kRowsCommand{"rows", kLookGroup, "Print the rows of a Jet file's table, all or those that are asked for.",
                           declared<Options, bind, run>};

}  // namespace tools
