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
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.flag("--system", options.system, "the engine's own tables too");
    declare.password(options.password);
}

int run(const Options& options) {
    for (const std::string& file : jet_files_of(options.file)) {
        const auto database = open_to_read(file, options.password);
        for (const jet::CatalogEntry& entry : database->catalog()) {
            if (entry.is_system() && !options.system) continue;
            if (entry.type == 1) output().print("%s\n", jet::to_utf8(entry.name).c_str());
        }
    }
    return 0;
}

}  // namespace

const Command kTablesCommand{"tables", kLookGroup, "Print the names of the tables of a Jet file.",
                             declared<Options, bind, run>};

}  // namespace tools
