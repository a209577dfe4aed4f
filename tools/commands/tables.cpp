// tables: the names of a file's tables.
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/open_file.h"
#include "tools/output.h"

namespace tools {
namespace {

struct Options {
    std::string file;
    bool system = false;
    FormatOption format;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.flag("--system", options.system, "the engine's own tables too");
    declare.format(options.format);
    declare.password(options.password);
}

int run(const Options& options) {
    const bool is_plain = options.format.format() == RowFormat::kPlain;
    RowPrinter printer(options.format.format(), {"File", "Table", "Rows"});
    for (const std::string& file : jet_files_of(options.file)) {
        const auto database = open_to_read(file, options.password);
        for (const jet::CatalogEntry& entry : database->catalog()) {
            if (entry.type != 1 || (entry.is_system() && !options.system)) continue;
            if (is_plain) {
                output().print("%s\n", jet::to_utf8(entry.name).c_str());
                continue;
            }
            const jet::Table* const table = database->find_table(entry.name);
            const jet::Value rows = table != nullptr ? jet::Value(static_cast<std::int32_t>(table->def().row_count))
                                                     : jet::Value(jet::Null{});
            printer.print({jet::from_utf8(file), entry.name, rows});
        }
    }
    if (!is_plain) printer.finish();
    return 0;
}

}  // namespace

const Command kTablesCommand{
    "tables", kLookGroup, "Print the names of the tables of a Jet file. As JSON or CSV, with the number of their rows.",
    declared<Options, bind, run>};

}  // namespace tools
