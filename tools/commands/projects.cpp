// projects: a list of them for people.
#include <optional>

#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/gate_table.h"
#include "tools/output.h"
#include "tools/record_reader.h"
#include "tools/terminal.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::optional<int> client;
    std::optional<std::string> type;
    FormatOption format;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.option("--client", options.client, "N", "those of the client with this key");
    declare.option("--type", options.type, "TEXT", "those of this type");
    declare.format(options.format);
}

int run(const Options& options) {
    Assignments filter;
    if (options.client) filter.push_back({"ClientID", std::to_string(*options.client)});
    if (options.type) filter.push_back({"Type", *options.type});
    const GateTable& table = gate_table("Projects");
    const std::string statement = table.statement(filter);
    const bool is_plain = options.format.format() == RowFormat::kPlain;
    SelectionOptions selection;
    if (is_plain) selection.columns = "ProjID,Name,Client,Type,ProjCreateDate,DiscountVal";
    const RecordReader records(table, options.folder, selection);
    if (!is_plain) {
        RowPrinter printer(options.format.format(), records.names());
        print_rows(printer, [&](const RowVisitor& print) { records.for_each(statement, print); });
    } else {
        std::size_t count = 0;
        AlignedPrinter printer(records.names(), terminal_columns());
        records.for_each(statement, [&](const Row& row) {
            ++count;
            printer.print(row);
            return !output().is_lost();
        });
        printer.finish();
        output().print("%zu project%s\n", count, count == 1 ? "" : "s");
    }
    require_undamaged();
    return 0;
}

}  // namespace

const Command kProjectsCommand{"projects", kLookGroup, "List the projects of a studio.", declared<Options, bind, run>};

}  // namespace tools
