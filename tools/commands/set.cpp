// set: members of a record, through the gate of its table.
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/gate_table.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string table;
    std::string key;
    std::vector<std::string> members;
};

void bind(Declaration& declare, Options& options) {
    declare.folder(options.folder);
    declare.table(options.table);
    declare.word("KEY", options.key, "key of the record");
    declare.words("member=value", options.members, "what to change; nothing after = empties the member");
}

int run(const Options& options) {
    const Assignments members = assignments_of(options.members);
    const GateTable& table = gate_table(options.table);
    Studio studio(options.folder, Studio::Purpose::kChange);
    table.set(studio, options.key, members);
    return 0;
}

}  // namespace

const Command kSetCommand{"set", kChangeGroup, "Change members of a record.", declared<Options, bind, run>};

}  // namespace tools
