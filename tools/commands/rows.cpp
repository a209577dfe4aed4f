// rows: all rows of a file's table.
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/open_file.h"
#include "tools/output.h"

namespace tools {
namespace {

struct Options {
    std::string file;
    std::string table;
    FormatOption format;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.table(options.table);
    declare.format(options.format);
    declare.password(options.password);
}

int run(const Options& options) {
    const FoundTable found(options.file, options.table, options.password, damage_teller);
    const jet::Table& table = found.table();
    Names names;
    for (const jet::ColumnDef& column : table.def().columns) names.push_back(jet::to_utf8(column.name));
    RowPrinter printer(options.format.format(), names);
    jet::RowView view;
    for (auto id = table.next_row({}); id && !output().is_lost(); id = table.next_row(*id)) {
        if (!table.read(*id, view)) continue;
        Row row;
        for (std::size_t i = 0; i < names.size(); ++i) row.push_back(view.value(i));
        printer.print(row);
    }
    printer.finish();
    require_undamaged();
    return 0;
}

}  // namespace

const Command kRowsCommand{"rows", kLookGroup, "Print all rows of a Jet file's table.", declared<Options, bind, run>};

}  // namespace tools
