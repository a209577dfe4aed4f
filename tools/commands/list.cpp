// list: the records of a table.
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/gate_table.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string table;
    std::vector<std::string> filter;
    std::vector<std::string> more_filter;
    FormatOption format;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.table(options.table);
    declare.repeated_option("--filter", options.filter, "member=value", "filter as the gate's enumeration does");
    // One --filter may be followed by several assignments.
    declare.optional_words("member=value", options.more_filter, "more of the filter");
    declare.format(options.format);
}

int run(const Options& options) {
    Assignments filter = assignments_of(options.filter);
    for (const Assignment& more : assignments_of(options.more_filter)) filter.push_back(more);
    const GateTable& table = gate_table(options.table);
    Studio studio(options.folder, Studio::Purpose::kRead);
    tell_damage_of_gates();
    RowPrinter printer(options.format.format(), table.columns());
    print_rows(printer, [&](const RowVisitor& print) { table.list(studio, filter, print); });
    require_undamaged();
    return 0;
}

}  // namespace

const Command kListCommand{"list", kLookGroup, "Print the records of a table of a studio.",
                           declared<Options, bind, run>};

}  // namespace tools
