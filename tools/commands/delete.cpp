// delete: a record, through the gate of its table.
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/gate_table.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string table;
    std::string key;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.table(options.table);
    declare.word("KEY", options.key, "key of the record");
}

int run(const Options& options) {
    const GateTable& table = gate_table(options.table);
    Studio studio(options.folder, Studio::Purpose::kChange);
    table.remove(studio, options.key);
    return 0;
}

}  // namespace

const Command kDeleteCommand{"delete", kChangeGroup, "Delete a record.", declared<Options, bind, run>};

}  // namespace tools
