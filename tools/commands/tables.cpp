// tables: the names of a file's tables.
#include <functional>

#include "tools/commands.h"
#include "tools/damage.h"
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
    const std::vector<OpenedFile> files = open_all_to_look(options.file, options.password);
    const auto each = [&](const std::function<void(const OpenedFile&, const std::u16string&)>& visit) {
        for (const OpenedFile& file : files) {
            for (const jet::CatalogEntry& entry : file.database->catalog()) {
                if (entry.type == 1 && (options.system || !entry.is_system())) visit(file, entry.name);
            }
        }
    };
    if (is_plain) {
        each([](const OpenedFile&, const std::u16string& name) { output().print("%s\n", jet::to_utf8(name).c_str()); });
    } else {
        RowPrinter printer(options.format.format(), {"File", "Table", "Rows"});
        print_rows(printer, [&](const RowVisitor& print) {
            each([&](const OpenedFile& file, const std::u16string& name) {
                const jet::Table* const table = look_at_table(file, name).table;
                print({jet::from_utf8(file.path), name,
                       table == nullptr ? jet::Value(jet::Null{})
                                        : jet::Value(static_cast<std::int32_t>(table->def().row_count))});
            });
        });
    }
    require_undamaged();
    return 0;
}

}  // namespace

const Command kTablesCommand{
    "tables", kLookGroup, "Print the names of the tables of a Jet file. As JSON or CSV, with the number of their rows.",
    declared<Options, bind, run>};

}  // namespace tools
